/** The file that tells what runs did. */
#ifndef VIDEODOWN_CLI_RUNLOG_H
#define VIDEODOWN_CLI_RUNLOG_H

#include <QFile>
#include <QString>

/** Appends lines to a file, each with the time before it. Several programs may use one file. */
class RunLog
{
public:
    /** Opens the file, and makes it when it is missing. @return why it cannot be used, or empty */
    QString open(const QString &path);

    /** Appends a line, if a file is open. @return why it cannot be, the first time only; or empty
     */
    QString append(const QString &line);

private:
    QFile m_file;
    bool m_failed = false;
};

namespace runlog {

/** A line as it may be kept: without the user and password of an address in it. */
QString withoutUsers(QString line);

} // namespace runlog

#endif
