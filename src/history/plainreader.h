/** Reads histories of the very form in which they are written. Internal to history. */
#ifndef VIDEODOWN_HISTORY_PLAINREADER_H
#define VIDEODOWN_HISTORY_PLAINREADER_H

#include "history/cxmlhistory.h"

#include <QIODevice>

#include <optional>

namespace historyfile {

/**
 * The tasks of a history of the form in which `serialize` writes: every element in its place, in
 * UTF-8, with no references but those it makes. Reads straight from bytes to records, block by
 * block, so that there is never more than one block, or one task, beside the records.
 * @param blockSize bytes to read at a time
 * @return new records, the caller's, made for `history`; nothing at the first byte that is not of
 * that form, for then only a general parser can tell what the file holds
 */
std::optional<QList<CXMLInfo *>> plainTasks(QIODevice &file, CXMLHistory *history,
                                            qsizetype blockSize = 262144);

} // namespace historyfile

#endif
