/** The stored fields of a task record as a row of texts. Internal to the library and its driver. */
#ifndef VIDEODOWN_HISTORY_STOREDTEXTS_H
#define VIDEODOWN_HISTORY_STOREDTEXTS_H

#include "engine/visibility.h"
#include "history/cxmlinfo.h"

#include <QLatin1String>
#include <QStringList>

#include <vector>

namespace VIDEODOWN_PUBLIC storedtexts {

struct Name
{
    QLatin1String element;
    bool isOfProfile; ///< its element stands in "Profile"
};

/** The names of the fields, in the order in which a history has them: those of the profile last. */
const std::vector<Name> &names();

/** The texts in the same order, as the record has them: a history gets what XML can carry of them.
 */
QStringList of(const CXMLInfo &record);

} // namespace storedtexts

#endif
