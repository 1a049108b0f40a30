#include "driver/downloaddriver.h"

#include "driver/dispatcher.h"

#include <utility>

DownloadDriver::DownloadDriver(Settings settings, QObject *parent)
    : QObject(parent), m_dispatcher(std::make_unique<Dispatcher>(std::move(settings), *this))
{
}

DownloadDriver::~DownloadDriver() = default;

void DownloadDriver::setKeeper(HistoryKeeper *keeper)
{
    m_dispatcher->setKeeper(keeper);
}

QString DownloadDriver::add(const DownloadRequest &request)
{
    return m_dispatcher->add(request);
}

void DownloadDriver::stop(const QString &key)
{
    m_dispatcher->stop(key);
}

void DownloadDriver::stopAll()
{
    m_dispatcher->stopAll();
}

bool DownloadDriver::setPaused(const QString &key, bool paused)
{
    return m_dispatcher->setPaused(key, paused);
}

bool DownloadDriver::moveBefore(const QString &key, const QString &other)
{
    return m_dispatcher->moveBefore(key, other);
}

void DownloadDriver::setThumbnails(bool wanted)
{
    m_dispatcher->setThumbnails(wanted);
}

void DownloadDriver::setProxy(const std::optional<tagProxyParam> &proxy)
{
    m_dispatcher->setProxy(proxy);
}

void DownloadDriver::setVideoLimit(int limit)
{
    m_dispatcher->setVideoLimit(limit);
}

int DownloadDriver::videoLimit() const
{
    return m_dispatcher->videoLimit();
}

DownloadTotals DownloadDriver::totals() const
{
    return m_dispatcher->totals();
}

DownloadProgress DownloadDriver::progress(const QString &key) const
{
    return m_dispatcher->progress(key);
}

TaskActivity DownloadDriver::activity(const QString &key) const
{
    return m_dispatcher->activity(key);
}

QList<TaskAction> DownloadDriver::actions(const QString &key) const
{
    QList<TaskAction> possible;
    for (int each = 0; each <= int(TaskAction::Open); ++each) {
        if (!obstacle(key, TaskAction(each)))
            possible << TaskAction(each);
    }
    return possible;
}

std::optional<QString> DownloadDriver::obstacle(const QString &key, TaskAction action) const
{
    return m_dispatcher->obstacle(key, action);
}

std::optional<QString> DownloadDriver::obstacle(const CXMLInfo &record, TaskAction action) const
{
    return m_dispatcher->obstacle(record, action);
}

bool DownloadDriver::isIdle() const
{
    return m_dispatcher->isIdle();
}

CDown &DownloadDriver::controller()
{
    return m_dispatcher->controller();
}
