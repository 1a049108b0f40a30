/** Making foreign texts harmless to show and to name files with. */
#ifndef VIDEODOWN_DRIVER_PLAINTEXT_H
#define VIDEODOWN_DRIVER_PLAINTEXT_H

#include "engine/visibility.h"

#include <QString>

namespace VIDEODOWN_PUBLIC plaintext {

/**
 * The text with each control character, line separator, direction override and lone surrogate
 * replaced by `replacement` (null: dropped). Joiners stay, because scripts need them.
 */
QString withoutControls(const QString &text, QChar replacement = QChar());

/** What a site's title contributes to a file name; `fallback` when nothing of it is usable. */
QString fileTitle(const QString &title, const QString &fallback);

} // namespace plaintext

#endif
