#include "sessionsettings.h"

#include "commandhistory.h"
#include "driver/extractor.h"
#include "taskengine/failure.h"
#include "taskengine/options.h"

#include <QFile>

namespace {

bool asksSite(const CommandLine &line)
{
    return line.videoInfoCommand.isEmpty();
}

/** The program to ask where the site has no answer; empty: none. */
QString extractorFor(const CommandLine &line)
{
    return asksSite(line) && line.useExtractor ? extractor::findProgram() : QString();
}

bool isFaultOfCommand(double code)
{
    const auto is = [code](taskengine::Failure failure) { return code == double(failure); };
    return is(taskengine::Failure::CommandNotFound) || is(taskengine::Failure::CommandFailed) ||
           is(taskengine::Failure::UnusableOutput);
}

} // namespace

namespace sessionsettings {

void configureEngine(const CommandLine &line)
{
    taskengine::Options options = taskengine::options();
    for (const QString &word : line.videoInfoCommand)
        options.videoInfoCommand.push_back(word.toLocal8Bit().toStdString());
    options.rateLimit = std::size_t(line.limitRate);
    options.connections = line.connections;
    options.tries = line.retries + 1; // 0: not set
    options.proxyFromEnvironment = line.proxyFromEnvironment;
    if (!line.userAgent.isEmpty())
        options.userAgent = line.userAgent.toStdString();
    const QString extractor = extractorFor(line);
    if (!extractor.isEmpty())
        options.fallbackCommand = {QFile::encodeName(extractor).toStdString()};
    taskengine::setOptions(options);
}

DownloadDriver::Settings forDriver(const CommandLine &line, const QString &downloadFolder)
{
    DownloadDriver::Settings settings;
    settings.downloadFolder = downloadFolder;
    settings.videoLimit = line.jobs;
    settings.thumbnails = line.thumbnails;
    settings.proxy = line.proxy;
    if (!asksSite(line))
        settings.offerAdvice = QStringLiteral("Run the video-info command by hand with this "
                                              "address to see what it says.");
    settings.unfinishedFiles = commandhistory::unfinishedFiles;
    settings.failureText = [asksSite = asksSite(line)](double code) {
        const QString text = QString::fromStdString(taskengine::failureText(code));
        return asksSite && isFaultOfCommand(code)
                   ? QStringLiteral("the site has no video info, and the extractor failed: ") + text
                   : text;
    };
    settings.failureAdvice = [](double code) {
        return QString::fromStdString(taskengine::failureAdvice(code));
    };
    settings.hasNoVideoInfo = taskengine::meansNoVideoInfo;
    if (asksSite(line) && line.useExtractor)
        settings.missingExtractor = extractor::missingProgram;
    settings.hasExpired = [](double code) { return code == 403 || code == 410; };
    return settings;
}

} // namespace sessionsettings
