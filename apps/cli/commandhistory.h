/** The history as the commands see it. Problems are reported on standard error. */
#ifndef VIDEODOWN_CLI_COMMANDHISTORY_H
#define VIDEODOWN_CLI_COMMANDHISTORY_H

#include "commandline.h"
#include "driver/downloadsession.h"

#include <optional>

namespace commandhistory {

/** Which files the engine leaves of an unfinished download to `path`. Thread-safe. */
QStringList unfinishedFiles(const QString &path);

/** The history file of a command. */
QString pathFor(const CommandLine &line);

/** Takes the history into use. @return whether that worked */
bool open(HistoryKeeper &keeper);
/** The same for a session. */
bool open(DownloadSession &session, const QString &path);

/** @return whether `problem`, a reason why the history cannot be saved, is empty */
bool reportProblem(const QString &problem);

/** Writes the history. @return whether that worked */
bool save(HistoryKeeper &keeper);

/**
 * The keys of the tasks that the user named, by address or by the beginning of a key; nothing when
 * a name fits none, or more than one.
 */
std::optional<QStringList> keysOf(CDown &controller, const QStringList &names);

/** The one task that the command names; empty when there is none. */
QString keyOf(CDown &controller, const CommandLine &line);

/** How to name a task to the user: its title, else its address. The caller holds the lock. */
QString titleOf(const CXMLInfo &record);

/** A history without engine, for commands that transfer nothing. */
struct History
{
    explicit History(const CommandLine &line);

    CDown controller;
    HistoryKeeper keeper;
};

} // namespace commandhistory

#endif
