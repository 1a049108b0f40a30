#include "session.h"

#include "commandhistory.h"
#include "sessionsettings.h"
#include "standardstreams.h"

#include <QEventLoop>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

Session::Session(const CommandLine &line, const QString &downloadFolder)
    : m_line(line),
      m_view(makeProgressView(line.quiet ? ProgressMode::Never : line.progress)),
      m_session(sessionsettings::forDriver(line, downloadFolder))
{
    sessionsettings::configureEngine(line);
    connect(&m_signals, &SignalWatch::interrupted, this, &Session::interrupt);
    follow();
}

void Session::follow()
{
    connect(&driver(), &DownloadDriver::described, this,
            [this](const QString &key, const QString &title) {
                if (!title.isEmpty())
                    m_view->renamed(key, title);
            });
    connect(&m_session, &DownloadSession::progressed, this,
            [this](const DownloadProgress &progress) {
                choose(progress.key);
                m_view->progressed(progress);
            });
    connect(&m_session, &DownloadSession::converting, this, [this](const DownloadResult &result) {
        m_view->ended(result.key);
        m_view->converting(result.key, result.title);
        m_chosen.insert(result.key);
        log(QStringLiteral("converting: ") + result.title);
    });
    connect(&m_session, &DownloadSession::ended, this, &Session::settle);
    connect(&m_session, &DownloadSession::saveFailed, this, [this](const QString &reason) {
        say(QStringLiteral("videodown: the history cannot be saved: ") + reason);
    });
    followSteps();
}

bool Session::isInspection() const
{
    return m_line.command == Command::Formats || m_line.dryRun;
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
    say(QStringLiteral("videodown: --convert needs ffmpeg, which is not installed"));
    return false;
}

int Session::openLog()
{
    const QString problem = m_line.logFile.isEmpty() ? QString() : m_log.open(m_line.logFile);
    if (problem.isEmpty())
        return ExitDone;
    m_view->say(QStringLiteral("videodown: the log \"%1\" cannot be written (%2)")
                    .arg(m_line.logFile, problem));
    return ExitFolder;
}

int Session::prepare()
{
    if (const int code = openLog())
        return code;
    if (!canConvert())
        return ExitUsage;
    const bool isOpen = commandhistory::open(m_session, commandhistory::pathFor(m_line));
    return isOpen ? ExitDone : ExitHistory;
}

ExitStatus Session::run(const QList<DownloadRequest> &requests)
{
    if (requests.isEmpty())
        return m_status;
    for (DownloadRequest request : requests) {
        request.onConflict = m_line.onConflict;
        if (m_line.convert)
            m_session.addAndConvert(request, m_line.profile);
        else
            m_session.add(request);
    }
    QEventLoop loop;
    connect(&m_session, &DownloadSession::idle, &loop, &QEventLoop::quit);
    loop.exec();
    const bool saved = commandhistory::reportProblem(m_session.save());
    if (!isInspection())
        announceSummary();
    if (m_failed + m_stopped > 0 || m_outputBroken || !saved)
        m_status.code = ExitFailed;
    return m_status;
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
        say(QStringLiteral("the results cannot be written: %1")
                .arg(QString::fromLocal8Bit(std::strerror(error))));
}

void Session::interrupt(int number)
{
    m_status.signal = number;
    if (number == SIGINT || number == SIGTERM)
        say(QStringLiteral("stopping; press Ctrl-C again to quit now"));
    m_session.stopAll();
}
