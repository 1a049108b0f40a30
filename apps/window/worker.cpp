#include "worker.h"

#include "driver/extractor.h"
#include "driver/taskrequests.h"
#include "enginesettings.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

Worker::Worker(Settings settings, QString historyPath)
    : m_settings(std::move(settings)), m_historyPath(std::move(historyPath)), m_gather(this)
{
    m_gather.setSingleShot(true);
    connect(&m_gather, &QTimer::timeout, this, &Worker::emitChanges);
}

Worker::~Worker() = default;

void Worker::open()
{
    configureEngine(m_settings);
    QDir().mkpath(m_settings.outputFolder);
    DownloadDriver::Settings settings = driverSettings(m_settings);
    settings.missingExtractor = [this] {
        return m_settings.asksExtractor() ? extractor::missingProgram() : QString();
    };
    m_session = std::make_unique<DownloadSession>(settings);
    follow();
    OpenedHistory history;
    history.problem = m_session->open(m_historyPath);
    if (const HistoryKeeper *keeper = m_session->keeper()) {
        history.setAside = keeper->setAsidePath();
        history.setAsideJournal = keeper->setAsideJournal();
        history.interrupted = int(taskrequests::interrupted(m_session->controller()).size());
    } else if (QFileInfo(m_historyPath).isFile()) {
        m_session->controller().LoadFromFile(m_historyPath);
    }
    readAll();
    emit opened(history);
}

void Worker::follow()
{
    DownloadDriver &driver = m_session->driver();
    connect(&driver, &DownloadDriver::started, this, &Worker::change);
    connect(&driver, &DownloadDriver::described, this, &Worker::change);
    connect(&driver, &DownloadDriver::retrying, this, &Worker::change);
    connect(m_session.get(), &DownloadSession::converting, this,
            [this](const DownloadResult &result) { change(result.key); });
    connect(m_session.get(), &DownloadSession::progressed, this,
            [this](const DownloadProgress &progress) {
                m_progress.insert(progress.key, progress);
                change(progress.key);
            });
    connect(m_session.get(), &DownloadSession::ended, this, &Worker::ended);
    connect(m_session.get(), &DownloadSession::saveFailed, this, [this](const QString &reason) {
        emit message(tr("The history cannot be saved: %1").arg(reason));
    });
    connect(m_session.get(), &DownloadSession::idle, this, [this] {
        save();
        for (const QString &key : std::exchange(m_ended, {})) // their thumbnails are there now
            change(key);
        if (m_closing)
            close();
        else
            emit idle();
    });
}

void Worker::close()
{
    m_closing = true;
    if (m_session && !m_session->isIdle()) {
        m_session->interruptAll();
        return;
    }
    const QString problem = m_session ? m_session->save() : QString();
    emitChanges();
    m_session.reset();
    emit closed(problem);
}

bool Worker::save()
{
    const QString problem = m_session->save();
    if (!problem.isEmpty())
        emit message(tr("The history cannot be saved: %1").arg(problem));
    return problem.isEmpty();
}

void Worker::applySettings(const Settings &settings)
{
    m_settings = settings;
    configureEngine(settings);
    if (!m_session)
        return;
    m_session->driver().setVideoLimit(settings.videoLimit);
    m_session->driver().setThumbnails(settings.thumbnails);
    m_session->driver().setProxy(proxyParam(settings.proxy));
}

void Worker::add(const QList<DownloadRequest> &requests, bool convert)
{
    if (isReadOnly() || m_closing)
        return;
    for (const DownloadRequest &request : requests) {
        QDir().mkpath(request.outputFolder);
        if (!request.downloadFolder.isEmpty())
            QDir().mkpath(request.downloadFolder);
        const QString key =
            convert ? m_session->addAndConvert(request, request.profile) : m_session->add(request);
        m_inspecting.remove(key); // it has become this download
        m_waiting.removeOne(key);
        m_waiting.append(key);
        m_failures.remove(key);
        change(key);
    }
}

void Worker::inspect(const QString &address)
{
    DownloadRequest request;
    request.address = address;
    request.inspectOnly = true;
    m_inspecting.insert(m_session->driver().add(request));
}

void Worker::ended(const DownloadResult &result)
{
    m_progress.remove(result.key);
    m_waiting.removeOne(result.key);
    if (m_inspecting.remove(result.key)) {
        emit inspected(result);
        return;
    }
    if (result.outcome == DownloadOutcome::Failed)
        m_failures.insert(result.key, result.failure);
    m_ended.insert(result.key);
    change(result.key);
}
