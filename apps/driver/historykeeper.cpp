#include "driver/historykeeper.h"

#include "driver/soundness.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int gatherMilliseconds = 200;
// Saving a long history takes a while; this keeps it a small part of the program's time.
constexpr qint64 pauseFactor = 10;

// A link would be replaced by the rename of a save, so the file behind it is the history.
QString realPath(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical;
}

std::filesystem::path native(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

bool syncToDisk(const QString &path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0;
    return ::close(descriptor) == 0 && synced;
}

QString unusedName(const QString &wanted)
{
    QString name = wanted;
    for (int n = 1; QFileInfo::exists(name); ++n)
        name = wanted + u'-' + QString::number(n);
    return name;
}

} // namespace

HistoryKeeper::HistoryKeeper(CDown &controller, const QString &path, QObject *parent)
    : QObject(parent),
      m_controller(controller),
      m_path(realPath(path)),
      m_lock(m_path + QLatin1String(".lock")),
      m_delay(gatherMilliseconds)
{
    // A lock is as old as its program; only one whose program is gone is stale.
    m_lock.setStaleLockTime(0);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HistoryKeeper::saveGathered);
}

HistoryKeeper::~HistoryKeeper()
{
    if (m_timer.isActive())
        saveGathered();
}

QString HistoryKeeper::open()
{
    if (!QDir().mkpath(QFileInfo(m_path).absolutePath()))
        return tr("the folder of %1 cannot be made").arg(m_path);
    QString problem = lock();
    if (problem.isEmpty())
        problem = load();
    m_open = problem.isEmpty();
    return problem;
}

QString HistoryKeeper::lock()
{
    if (m_lock.tryLock(0))
        return {};
    qint64 process = 0;
    QString host;
    QString program;
    if (m_lock.error() == QLockFile::LockFailedError &&
        m_lock.getLockInfo(&process, &host, &program))
        return tr("%1 is in use by %2 (process %3 on %4)")
            .arg(m_path, program)
            .arg(process)
            .arg(host);
    return tr("%1 cannot be locked: its folder cannot be written").arg(m_path);
}

QString HistoryKeeper::load()
{
    const QFileInfo file(m_path);
    if (!file.exists())
        return {};
    if (!file.isFile())
        return tr("%1 is not a file").arg(m_path);
    const bool sound = countTasks(m_path).has_value();
    m_controller.LoadFromFile(m_path);
    if (sound || setAside())
        return {};
    return tr("%1 is damaged and cannot be set aside").arg(m_path);
}

// A second name rather than a new one: the history keeps a name at every moment.
bool HistoryKeeper::setAside()
{
    const QString date = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    const QString aside = unusedName(m_path + QLatin1String(".damaged-") + date);
    std::error_code error;
    std::filesystem::create_hard_link(native(m_path), native(aside), error);
    if (error && !QFile::rename(m_path, aside))
        return false;
    m_setAside = aside;
    m_open = true;
    return save().isEmpty();
}

QString HistoryKeeper::setAsidePath() const
{
    return m_setAside;
}

void HistoryKeeper::noteChange()
{
    if (!m_timer.isActive() && m_open)
        m_timer.start(m_delay);
}

void HistoryKeeper::saveGathered()
{
    QElapsedTimer took;
    took.start();
    const QString problem = save();
    m_delay = int(std::max<qint64>(gatherMilliseconds, took.elapsed() * pauseFactor));
    if (!problem.isEmpty() && !m_failing)
        emit saveFailed(problem);
    m_failing = !problem.isEmpty();
    emit gathered();
}

QString HistoryKeeper::save()
{
    m_timer.stop();
    if (!m_open)
        return tr("the history is not open");
    const QString fresh = m_path + QLatin1String(".new");
    QString problem = writeNew(fresh);
    if (problem.isEmpty() && !replaceBy(fresh))
        problem = tr("%1 cannot be replaced").arg(m_path);
    if (!problem.isEmpty())
        QFile::remove(fresh);
    return problem;
}

// The library reports no failure of a save, so what it wrote is read back.
QString HistoryKeeper::writeNew(const QString &path)
{
    QFile::remove(path);
    m_controller.SaveToFile(path);
    if (!QFileInfo::exists(path))
        return tr("%1 cannot be written").arg(path);
    if (countTasks(path) != m_controller.count() || !syncToDisk(path, O_WRONLY))
        return tr("%1 could not be written whole; the disk may be full").arg(path);
    return {};
}

bool HistoryKeeper::replaceBy(const QString &path)
{
    const QString previous = m_path + QLatin1String(".previous");
    std::error_code ignored; // without a previous version the save is no less safe
    std::filesystem::remove(native(previous), ignored);
    std::filesystem::create_hard_link(native(m_path), native(previous), ignored);
    std::error_code error;
    std::filesystem::rename(native(path), native(m_path), error);
    if (error)
        return false;
    syncToDisk(QFileInfo(m_path).absolutePath(), O_RDONLY | O_DIRECTORY);
    return true;
}
