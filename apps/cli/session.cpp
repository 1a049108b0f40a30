#include "session.h"

#include "commandhistory.h"
#include "driver/conversions.h"
#include "driver/resulttext.h"
#include "standardstreams.h"
#include "taskengine/failure.h"
#include "taskengine/options.h"

#include <QEventLoop>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace {

void configureEngine(const CommandLine &line)
{
    taskengine::Options options = taskengine::options();
    for (const QString &word : line.videoInfoCommand)
        options.videoInfoCommand.push_back(word.toLocal8Bit().toStdString());
    taskengine::setOptions(options);
}

DownloadDriver::Settings settingsFor(const CommandLine &line, const QString &downloadFolder)
{
    DownloadDriver::Settings settings;
    settings.downloadFolder = downloadFolder;
    settings.videoLimit = line.jobs;
    settings.thumbnails = line.thumbnails;
    settings.proxy = line.proxy;
    if (!line.videoInfoCommand.isEmpty())
        settings.offerAdvice = QStringLiteral("Run the video-info command by hand with this "
                                              "address to see what it says.");
    settings.unfinishedFiles = commandhistory::unfinishedFiles;
    settings.failureText = [](double code) {
        return QString::fromStdString(taskengine::failureText(code));
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
      m_driver(settingsFor(line, downloadFolder))
{
    configureEngine(line);
    connect(&m_signals, &SignalWatch::interrupted, this, &Session::interrupt);
    follow();
    followConversions();
}

Session::~Session()
{
    m_driver.setKeeper(nullptr);
}

void Session::follow()
{
    connect(&m_driver, &DownloadDriver::started, this, [this](const QString &key) {
        const ControllerLock lock;
        if (CXMLInfo *record = m_driver.controller().getXMLInfo(key))
            m_view->started(key, CDown::getOrgWebSite(record));
    });
    connect(&m_driver, &DownloadDriver::described, this,
            [this](const QString &key, const QString &title) {
                if (!title.isEmpty())
                    m_view->renamed(key, title);
            });
    connect(&m_driver, &DownloadDriver::progressed, this,
            [this](const DownloadProgress &progress) { m_view->progressed(progress); });
    connect(&m_driver, &DownloadDriver::retrying, this,
            [this](const QString &key, int attempt) { m_view->retrying(key, attempt); });
    connect(&m_driver, &DownloadDriver::ended, this, &Session::settle);
}

void Session::followConversions()
{
    connect(&m_converter, &Converter::started, this,
            [this](const DownloadResult &result) { m_view->converting(result.key, result.title); });
    connect(&m_converter, &Converter::progressed, this,
            [this](const DownloadProgress &progress) { m_view->progressed(progress); });
    connect(&m_converter, &Converter::ended, this, [this](const DownloadResult &result) {
        conversions::note(m_driver.controller(), result);
        m_keeper->commit({result.key});
        m_keeper->settle(result.key);
        count(result);
        emit settled(result);
    });
}

void Session::settle(DownloadResult result)
{
    if (m_line.convert) {
        const auto conversion = conversions::pending(m_driver.controller(), result, m_line.profile);
        if (conversion && m_status.signal == 0) {
            m_view->ended(result.key);
            m_keeper->commit({result.key});
            m_converter.add(*conversion);
            return;
        }
        if (conversion) { // interrupted in the meantime
            result.outcome = DownloadOutcome::Stopped;
            conversions::note(m_driver.controller(), result);
        }
    }
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
    m_keeper = std::make_unique<HistoryKeeper>(
        m_driver.controller(), commandhistory::pathFor(m_line), commandhistory::unfinishedFiles);
    connect(m_keeper.get(), &HistoryKeeper::saveFailed, this, [this](const QString &reason) {
        m_view->say(QStringLiteral("videodown: the history cannot be saved: ") + reason);
    });
    if (!commandhistory::open(*m_keeper))
        return false;
    m_driver.setKeeper(m_keeper.get());
    return true;
}

ExitStatus Session::run(const QList<DownloadRequest> &requests)
{
    if (requests.isEmpty())
        return m_status;
    for (const DownloadRequest &request : requests)
        m_driver.add(request);
    QEventLoop loop;
    const auto quitWhenDone = [&] {
        if (m_driver.isIdle() && m_converter.isIdle())
            loop.quit();
    };
    connect(&m_driver, &DownloadDriver::idle, &loop, quitWhenDone);
    connect(&m_converter, &Converter::idle, &loop, quitWhenDone);
    loop.exec();
    const bool saved = !m_keeper || commandhistory::save(*m_keeper);
    if (!m_line.quiet && m_line.command != Command::Formats)
        tellSummary();
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

void Session::tellSummary()
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
    m_driver.stopAll();
    m_converter.stopAll();
}
