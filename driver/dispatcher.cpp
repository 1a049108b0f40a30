#include "driver/dispatcher.h"

#include "driver/addresscheck.h"
#include "driver/historykeeper.h"

#include <algorithm>
#include <utility>

namespace {

DownloadRequest filledIn(DownloadRequest request, const QString &downloadFolder)
{
    if (request.outputFolder.isEmpty())
        request.outputFolder = downloadFolder;
    if (request.downloadFolder.isEmpty())
        request.downloadFolder = downloadFolder;
    return request;
}

QStringList keysOf(const QList<Task *> &tasks)
{
    QStringList keys;
    for (const Task *task : tasks)
        keys << task->key;
    return keys;
}

} // namespace

Dispatcher::Dispatcher(DownloadDriver::Settings settings, DownloadDriver &driver)
    : m_settings(std::move(settings)),
      m_driver(driver),
      m_port({m_settings.downloadFolder, m_settings.videoLimit, m_settings.proxy},
             [this] { wake(); }),
      m_videoLimit(std::clamp(m_settings.videoLimit, 1, maxVideoLimit))
{
}

Dispatcher::~Dispatcher()
{
    m_copiers.waitForDone();
    m_port.shutDown(keysOf(m_tasks.in(Stage::Parsing) + m_tasks.in(Stage::Downloading)),
                    m_thumbnails.values());
    m_tasks.forEach([this](Task &task) {
        releaseName(task);
        DownloadResult stopped;
        stopped.outcome = DownloadOutcome::Stopped;
        endUpgrade(task, stopped);
    });
}

void Dispatcher::setKeeper(HistoryKeeper *keeper)
{
    m_keeper = keeper;
    const auto recordSize = [keeper](const QString &key, qint64 bytes) {
        keeper->recordSize(key, bytes);
    };
    m_port.mailbox().setSizeListener(keeper == nullptr ? EngineMailbox::SizeListener()
                                                       : recordSize);
}

QString Dispatcher::add(const DownloadRequest &request)
{
    Task task;
    task.key = CDown::GetURLToMD5(request.address);
    if (Task *known = m_tasks.find(task.key)) {
        if (known->request.inspectOnly && !request.inspectOnly)
            adopt(*known, filledIn(request, m_settings.downloadFolder));
        return task.key;
    }
    task.request = filledIn(request, m_settings.downloadFolder);
    task.progress.key = task.key;
    if (addressProblem(request.address))
        task.stage = Stage::Unfit;
    else if (request.inspectOnly && answerFromRecord(task))
        task.stage = Stage::Present;
    else
        task.stage = enlist(task);
    m_tasks.add(task);
    if (task.stage == Stage::Copying)
        startCopy(task.key);
    m_busy = true;
    wake();
    return task.key;
}

void Dispatcher::stop(const QString &key)
{
    Task *task = m_tasks.find(key);
    if (task == nullptr)
        return;
    if (task->stage == Stage::Parsing || task->stage == Stage::Downloading)
        stopAtWork(*task);
    else if (task->stage == Stage::Waiting || task->stage == Stage::Ready)
        endStopped(*task);
    wake();
}

void Dispatcher::stopAll()
{
    m_thumbnailsToGet.clear();
    for (Task *task : m_tasks.in(Stage::Ready) + m_tasks.in(Stage::Waiting))
        endStopped(*task);
    for (Task *task : m_tasks.in(Stage::Parsing) + m_tasks.in(Stage::Downloading))
        stopAtWork(*task);
    for (const QString &key : std::as_const(m_thumbnails))
        m_port.stopThumbnail(key);
    wake();
}

bool Dispatcher::isIdle() const
{
    return m_tasks.isEmpty() && m_thumbnails.isEmpty() && m_thumbnailsToGet.isEmpty() &&
           m_signals.isEmpty();
}

// Called on any thread; many events make one turn. By name: what crosses the threads is then made
// and freed by Qt alone, and thread sanitizers do not see half of it.
void Dispatcher::wake()
{
    if (!m_turnDue.exchange(true))
        QMetaObject::invokeMethod(this, "turn", Qt::QueuedConnection);
}

void Dispatcher::turn()
{
    m_turnDue = false;
    for (const EngineEvent &event : m_port.mailbox().take())
        handle(event);
    endUnsent();
    work();
    emitAll();
}

// What `add` found to need no engine: it ends here, so that no signal comes from inside `add`.
void Dispatcher::endUnsent()
{
    for (Task *task : QList<Task *>(m_tasks.in(Stage::Unfit)))
        endFailed(*task, *addressProblem(task->request.address));
    for (Task *task : QList<Task *>(m_tasks.in(Stage::Present))) {
        task->finding = Finding::AlreadyThere;
        endPresent(*task);
    }
}

// Nothing begins, and nothing is announced, before it is on disk.
void Dispatcher::work()
{
    do {
        nameVideos();
        commit();
        handOver();
    } while (hasVideoSlot() &&
             m_tasks.count(Stage::Ready) > 0); // one was refused, or lost its name
    commit();
}

void Dispatcher::commit()
{
    const QSet<QString> changed = std::exchange(m_changed, {});
    if (m_keeper == nullptr || changed.isEmpty())
        return;
    m_keeper->commit(changed.values());
    for (const QString &key : changed)
        settleIfAtRest(key);
}

void Dispatcher::announce(std::function<void()> signal)
{
    m_signals.append(std::move(signal));
}

void Dispatcher::emitAll()
{
    for (const QString &key : QSet<QString>(m_progressed)) {
        if (const Task *task = m_tasks.find(key))
            announceProgress(*task);
    }
    for (const auto &signal : std::exchange(m_signals, {}))
        signal();
    if (m_busy && isIdle()) {
        m_busy = false;
        emit m_driver.idle();
    }
}
