#include "session.h"

#include "commandhistory.h"
#include "driver/extractor.h"
#include "driver/resulttext.h"
#include "standardstreams.h"
#include "taskengine/failure.h"
#include "taskengine/options.h"

#include <QEventLoop>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

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

void configureEngine(const CommandLine &line)
{
    taskengine::Options options = taskengine::options();
    for (const QString &word : line.videoInfoCommand)
        options.videoInfoCommand.push_back(word.toLocal8Bit().toStdString());
    options.rateLimit = std::size_t(line.limitRate);
    options.tries = line.retries + 1; // 0: not set
    options.proxyFromEnvironment = line.proxyFromEnvironment;
    if (!line.userAgent.isEmpty())
        options.userAgent = line.userAgent.toStdString();
    const QString extractor = extractorFor(line);
    if (!extractor.isEmpty())
        options.fallbackCommand = {QFile::encodeName(extractor).toStdString()};
    taskengine::setOptions(options);
}

bool isFaultOfCommand(double code)
{
    const auto is = [code](taskengine::Failure failure) { return code == double(failure); };
    return is(taskengine::Failure::CommandNotFound) || is(taskengine::Failure::CommandFailed) ||
           is(taskengine::Failure::UnusableOutput);
}

DownloadDriver::Settings settingsFor(const CommandLine &line, const QString &downloadFolder)
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
    settings.hasExpired = [](double code) { return code == 403 || code == 410; };
    return settings;
}

} // namespace

Session::Session(const CommandLine &line, const QString &downloadFolder)
    : m_line(line),
      m_view(makeProgressView(line.quiet ? ProgressMode::Never : line.progress)),
      m_session(settingsFor(line, downloadFolder))
{
    configureEngine(line);
    connect(&m_signals, &SignalWatch::interrupted, this, &Session::interrupt);
    follow();
}

void Session::follow()
{
    connect(&driver(), &DownloadDriver::started, this, [this](const QString &key) {
        const ControllerLock lock;
        if (CXMLInfo *record = m_session.controller().getXMLInfo(key))
            m_view->started(key, CDown::getOrgWebSite(record));
    });
    connect(&driver(), &DownloadDriver::described, this,
            [this](const QString &key, const QString &title) {
                if (!title.isEmpty())
                    m_view->renamed(key, title);
            });
    connect(&driver(), &DownloadDriver::retrying, this,
            [this](const QString &key, int attempt) { m_view->retrying(key, attempt); });
    connect(&m_session, &DownloadSession::progressed, this,
            [this](const DownloadProgress &progress) { m_view->progressed(progress); });
    connect(&m_session, &DownloadSession::converting, this, [this](const DownloadResult &result) {
        m_view->ended(result.key);
        m_view->converting(result.key, result.title);
    });
    connect(&m_session, &DownloadSession::ended, this, &Session::settle);
    connect(&m_session, &DownloadSession::saveFailed, this, [this](const QString &reason) {
        m_view->say(QStringLiteral("videodown: the history cannot be saved: ") + reason);
    });
}

void Session::settle(const DownloadResult &result)
{
    count(result);
    emit settled(result);
}

bool Session::canConvert()
{
    if (!m_line.convert || Converter::isAvailable())
        return true;
    m_view->say(QStringLiteral("videodown: --convert needs ffmpeg, which is not installed"));
    return false;
}

bool Session::openHistory()
{
    return commandhistory::open(m_session, commandhistory::pathFor(m_line));
}

ExitStatus Session::run(const QList<DownloadRequest> &requests)
{
    if (requests.isEmpty())
        return m_status;
    for (const DownloadRequest &request : requests) {
        if (m_line.convert)
            m_session.addAndConvert(request, m_line.profile);
        else
            m_session.add(request);
    }
    QEventLoop loop;
    connect(&m_session, &DownloadSession::idle, &loop, &QEventLoop::quit);
    loop.exec();
    const bool saved = commandhistory::reportProblem(m_session.save());
    if (!m_line.quiet && m_line.command != Command::Formats && !m_line.dryRun)
        announceSummary();
    if (m_failed + m_stopped > 0 || m_outputBroken || !saved)
        m_status.code = ExitFailed;
    return m_status;
}

void Session::count(const DownloadResult &result)
{
    m_view->ended(result.key);
    m_finished += int(result.outcome == DownloadOutcome::Finished);
    m_failed += int(result.outcome == DownloadOutcome::Failed);
    m_stopped += int(result.outcome == DownloadOutcome::Stopped);
    const QString summary = resulttext::summaryOf(result);
    if (!summary.isEmpty() && (!m_line.quiet || result.outcome == DownloadOutcome::Failed))
        m_view->say(summary);
}

void Session::announceSummary()
{
    QString summary = QStringLiteral("%1 finished, %2 failed").arg(m_finished).arg(m_failed);
    if (m_stopped > 0)
        summary += QStringLiteral(", %1 stopped").arg(m_stopped);
    m_view->say(summary);
}

void Session::deliver(const QByteArray &result)
{
    int error = 0;
    const auto write = [&] { error = standardstreams::writeOutput(result); };
    if (standardstreams::outputIsTerminal())
        m_view->uncovered(write);
    else
        write();
    if (error == 0 || m_outputBroken)
        return;
    m_outputBroken = true;
    if (error == EPIPE)
        interrupt(SIGPIPE); // nobody reads the results any more
    else
        m_view->say(QStringLiteral("the results cannot be written: %1")
                        .arg(QString::fromLocal8Bit(std::strerror(error))));
}

void Session::interrupt(int number)
{
    m_status.signal = number;
    if (number == SIGINT || number == SIGTERM)
        m_view->say(QStringLiteral("stopping; press Ctrl-C again to quit now"));
    m_session.stopAll();
}
