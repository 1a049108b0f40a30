#include "driver/downloadsession.h"

#include "driver/conversions.h"
#include "driver/texts.h"

namespace {

std::optional<QString> conversionObstacle(TaskAction action)
{
    return action == TaskAction::Stop ? std::nullopt
                                      : std::optional(Texts::tr("the video is being converted"));
}

} // namespace

DownloadSession::DownloadSession(const DownloadDriver::Settings &settings, QObject *parent)
    : QObject(parent), m_driver(settings), m_unfinishedFiles(settings.unfinishedFiles)
{
    connect(&m_driver, &DownloadDriver::progressed, this, &DownloadSession::progressed);
    connect(&m_driver, &DownloadDriver::ended, this, &DownloadSession::settle);
    connect(&m_driver, &DownloadDriver::idle, this, &DownloadSession::emitIdle);
    connect(&m_converter, &Converter::started, this, &DownloadSession::converting);
    connect(&m_converter, &Converter::progressed, this, &DownloadSession::progressed);
    connect(&m_converter, &Converter::ended, this, &DownloadSession::converted);
    connect(&m_converter, &Converter::idle, this, &DownloadSession::emitIdle);
}

DownloadSession::~DownloadSession()
{
    m_driver.setKeeper(nullptr);
}

QString DownloadSession::open(const QString &historyPath)
{
    auto keeper = std::make_unique<HistoryKeeper>(controller(), historyPath, m_unfinishedFiles);
    connect(keeper.get(), &HistoryKeeper::saveFailed, this, &DownloadSession::saveFailed);
    keeper->expectChanges();
    QString problem = keeper->open();
    if (!problem.isEmpty())
        return problem;
    m_keeper = std::move(keeper);
    m_driver.setKeeper(m_keeper.get());
    return {};
}

QString DownloadSession::save()
{
    return m_keeper ? m_keeper->save() : QString();
}

QString DownloadSession::add(const DownloadRequest &request)
{
    m_stopping = m_interrupting = false;
    return m_driver.add(request);
}

QString DownloadSession::addAndConvert(const DownloadRequest &request, const Profile_Desc &wish)
{
    QString key = add(request);
    m_wishes.insert(key, wish);
    return key;
}

void DownloadSession::stop(const QString &key)
{
    m_wishes.remove(key);
    m_driver.stop(key);
    m_converter.stop(key);
}

void DownloadSession::stopAll()
{
    m_stopping = true;
    m_driver.stopAll();
    m_converter.stopAll();
}

void DownloadSession::interruptAll()
{
    m_interrupting = true;
    stopAll();
}

bool DownloadSession::isIdle() const
{
    return m_driver.isIdle() && m_converter.isIdle();
}

bool DownloadSession::isConverting(const QString &key) const
{
    return m_converting.contains(key);
}

std::optional<QString> DownloadSession::obstacle(const QString &key, TaskAction action) const
{
    return isConverting(key) ? conversionObstacle(action) : m_driver.obstacle(key, action);
}

std::optional<QString> DownloadSession::obstacle(const CXMLInfo &record, TaskAction action) const
{
    return isConverting(record.MD5Code) ? conversionObstacle(action)
                                        : m_driver.obstacle(record, action);
}

// As if the task had been asked for again, and found that its file is there.
QString DownloadSession::convert(const QString &key, const Profile_Desc &wish)
{
    DownloadRequest request;
    {
        const ControllerLock lock;
        const CXMLInfo *record = controller().getXMLInfo(key);
        if (record == nullptr || obstacle(key, TaskAction::Open))
            return Texts::tr("only a finished task whose file is there can be converted");
        request = taskrecord::requestFor(*record);
    }
    if (!Converter::isAvailable())
        return Texts::tr("ffmpeg is not installed");
    addAndConvert(request, wish);
    return {};
}

void DownloadSession::settle(DownloadResult result)
{
    const auto wish = m_wishes.find(result.key);
    const bool converts = wish != m_wishes.end();
    const auto conversion =
        converts ? conversions::pending(controller(), result, *wish) : std::nullopt;
    m_wishes.remove(result.key);
    if (conversion && !m_stopping) {
        commit(result.key);
        m_converting.insert(result.key);
        m_converter.add(*conversion);
        return;
    }
    if (conversion) { // stopped in the meantime
        result.outcome = DownloadOutcome::Stopped;
        conversions::recordResult(controller(), result);
        commit(result.key);
    }
    emitEnded(result);
}

void DownloadSession::converted(const DownloadResult &result)
{
    m_converting.remove(result.key);
    conversions::recordResult(controller(), result);
    commit(result.key);
    if (m_keeper)
        m_keeper->settle(result.key);
    emitEnded(result);
}

void DownloadSession::commit(const QString &key)
{
    if (m_keeper)
        m_keeper->commit({key});
}

void DownloadSession::emitEnded(const DownloadResult &result)
{
    if (m_interrupting && result.outcome == DownloadOutcome::Stopped) {
        {
            const ControllerLock lock;
            if (CXMLInfo *record = controller().getXMLInfo(result.key))
                record->State = int(TaskState::Waiting);
        }
        commit(result.key);
    }
    emit ended(result);
}

void DownloadSession::emitIdle()
{
    if (isIdle())
        emit idle();
}
