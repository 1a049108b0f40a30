#include "driver/downloaddriver.h"

#include "driver/addresscheck.h"
#include "driver/historykeeper.h"

#include <utility>

namespace {

std::unique_ptr<CDown> makeController(const DownloadDriver::Settings &settings,
                                      EngineMailbox *mailbox)
{
    tagDownInfo info;
    info.pUserData = mailbox;
    info.pfnStateCallback = EngineMailbox::onState;
    info.pfnVideoInfoCallback = EngineMailbox::onVideoInfo;
    info.strDownloadPath = settings.downloadFolder;
    info.nThreadNum = settings.videoLimit;
    auto controller = std::make_unique<CDown>(&info);
    if (settings.proxy) {
        tagProxyParam proxy = *settings.proxy;
        controller->setProxyInfo(&proxy);
        controller->setProxySet(1);
    }
    return controller;
}

} // namespace

DownloadDriver::DownloadDriver(Settings settings, QObject *parent)
    : QObject(parent),
      m_settings(std::move(settings)),
      m_mailbox([this] { wake(); }),
      m_controller(makeController(m_settings, &m_mailbox))
{
    CDown::Downinit();
}

DownloadDriver::~DownloadDriver()
{
    m_copiers.waitForDone();
    for (const QString &key : std::as_const(m_parsing))
        m_controller->StopAll(key);
    for (const QString &key : std::as_const(m_videos))
        m_controller->StopAll(key);
    for (const QString &key : std::as_const(m_thumbnails))
        m_controller->StopAll(key + u'1');
    CDown::Quit();
    CDown::DownUninit();
    for (auto task = m_tasks.begin(); task != m_tasks.end(); ++task) {
        releaseName(*task);
        DownloadResult stopped;
        stopped.outcome = DownloadOutcome::Stopped;
        endUpgrade(task.key(), *task, stopped);
    }
}

void DownloadDriver::setKeeper(HistoryKeeper *keeper)
{
    m_keeper = keeper;
    m_mailbox.setSizeListener(keeper == nullptr ? EngineMailbox::SizeListener()
                                                : [keeper](const QString &key, qint64 bytes) {
                                                      keeper->noteSize(key, bytes);
                                                  });
}

QString DownloadDriver::add(const DownloadRequest &request)
{
    QString key = CDown::GetURLToMD5(request.address);
    if (m_tasks.contains(key))
        return key;
    Task task;
    task.request = request;
    if (request.outputFolder.isEmpty())
        task.request.outputFolder = m_settings.downloadFolder;
    if (request.downloadFolder.isEmpty())
        task.request.downloadFolder = m_settings.downloadFolder;
    task.progress.key = key;
    m_tasks.insert(key, task);
    if (addressProblem(request.address))
        m_unfit.append(key);
    else if (enlist(key, task.request))
        m_waiting.append(key);
    m_busy = true;
    wake();
    return key;
}

void DownloadDriver::stop(const QString &key)
{
    if (!m_tasks.contains(key))
        return;
    if (m_parsing.contains(key) || m_videos.contains(key)) {
        stopAtWork(key);
    } else if (m_waiting.removeOne(key) || m_ready.removeOne(key)) {
        endStopped(key);
    }
    wake();
}

void DownloadDriver::stopAll()
{
    m_thumbnailsToGet.clear();
    for (const QString &key : std::exchange(m_ready, {}) + std::exchange(m_waiting, {}))
        endStopped(key);
    for (const QString &key : m_parsing + m_videos)
        stopAtWork(key);
    for (const QString &key : std::as_const(m_thumbnails))
        m_controller->Stop(key + u'1', false);
    wake();
}

bool DownloadDriver::isIdle() const
{
    return m_tasks.isEmpty() && m_thumbnails.isEmpty() && m_thumbnailsToGet.isEmpty() &&
           m_signals.isEmpty();
}

CDown &DownloadDriver::controller()
{
    return *m_controller;
}

// Called on any thread; many events make one turn. By name: what crosses the threads is then made
// and freed by Qt alone, and thread sanitizers do not see half of it.
void DownloadDriver::wake()
{
    if (!m_turnDue.exchange(true))
        QMetaObject::invokeMethod(this, "turn", Qt::QueuedConnection);
}

void DownloadDriver::turn()
{
    m_turnDue = false;
    for (const EngineEvent &event : m_mailbox.take())
        handle(event);
    for (const QString &key : std::exchange(m_unfit, {}))
        endFailed(key, *addressProblem(m_tasks.value(key).request.address));
    for (const QString &key : std::exchange(m_present, {}))
        endPresent(key);
    work();
    emitAll();
}

// Nothing begins, and nothing is told, before it is on disk.
void DownloadDriver::work()
{
    do {
        nameVideos();
        commit();
        handOver();
    } while (hasVideoSlot() && !m_ready.isEmpty()); // one was refused, or lost its name
    commit();
}

void DownloadDriver::commit()
{
    const QSet<QString> changed = std::exchange(m_changed, {});
    if (m_keeper == nullptr || changed.isEmpty())
        return;
    m_keeper->commit(changed.values());
    for (const QString &key : changed)
        settleIfAtRest(key);
}

void DownloadDriver::tell(std::function<void()> signal)
{
    m_signals.append(std::move(signal));
}

void DownloadDriver::emitAll()
{
    for (const QString &key : QSet<QString>(m_progressed))
        tellProgress(key);
    for (const auto &signal : std::exchange(m_signals, {}))
        signal();
    if (m_busy && isIdle()) {
        m_busy = false;
        emit idle();
    }
}
