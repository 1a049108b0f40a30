#include "commands.h"

#include "driver/addresscheck.h"
#include "resultwriter.h"
#include "standardstreams.h"

#include <QDir>
#include <QFileInfo>

namespace {

// An absolute path of a folder that can be used, made when it is missing; else empty, and the
// reason is reported.
QString usableFolder(const QString &typed)
{
    QString folder = QDir::cleanPath(QDir::current().absoluteFilePath(typed));
    QString cause;
    QString advice = QStringLiteral("Choose another folder.");
    if (const auto problem = folderNameProblem(folder)) {
        cause = problem->cause;
    } else if (QFileInfo::exists(folder) && !QFileInfo(folder).isDir()) {
        cause = QStringLiteral("\"%1\" is not a folder").arg(folder);
    } else if (!QDir().mkpath(folder)) {
        cause = QStringLiteral("the folder \"%1\" cannot be made").arg(folder);
    } else if (!QFileInfo(folder).isWritable()) {
        cause = QStringLiteral("the folder \"%1\" cannot be written to").arg(folder);
    } else {
        return folder;
    }
    standardstreams::writeMessage(QStringLiteral("videodown: %1. %2").arg(cause, advice));
    return {};
}

QList<DownloadRequest> requestsFor(const CommandLine &line, const QString &outputFolder)
{
    DownloadRequest request;
    request.outputFolder = outputFolder;
    request.profile = line.profile;
    request.keepSource = line.keepSource;
    request.again = line.again;
    QList<DownloadRequest> requests;
    for (const QString &address : line.arguments) {
        request.address = address;
        requests << request;
    }
    return requests;
}

} // namespace

ExitStatus runGet(const CommandLine &line)
{
    if (line.dryRun)
        return runDryRun(line);
    const QString output = usableFolder(line.outputFolder);
    if (output.isEmpty())
        return {ExitFolder, 0};
    const QString downloads =
        line.downloadFolder.isEmpty() ? output : usableFolder(line.downloadFolder);
    if (downloads.isEmpty())
        return {ExitFolder, 0};
    Session session(line, downloads);
    if (const int code = session.prepare())
        return {code, 0};
    resultwriter::attach(session, line);
    return session.run(requestsFor(line, output));
}
