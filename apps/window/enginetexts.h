/** The engine's texts in the user's language. */
#ifndef VIDEODOWN_WINDOW_ENGINETEXTS_H
#define VIDEODOWN_WINDOW_ENGINETEXTS_H

#include <QString>

#include <string>

namespace enginetexts {

/** @param text cause or advice of a failure, as taskengine/failure.h gives it. Any thread */
QString translated(const std::string &text);

} // namespace enginetexts

#endif
