#include "worker.h"

#include "driver/conversions.h"
#include "driver/renaming.h"
#include "driver/taskrecord.h"
#include "driver/taskrequests.h"
#include "enginetexts.h"
#include "taskengine/failure.h"
#include "taskengine/options.h"
#include "taskengine/unfinishedfiles.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds repaintEvery{200};

QStringList unfinishedFiles(const QString &path)
{
    const auto files = taskengine::unfinishedFiles(QFile::encodeName(path).toStdString());
    return {QFile::decodeName(files.part.c_str()), QFile::decodeName(files.facts.c_str())};
}

std::optional<tagProxyParam> proxyParam(const ProxySettings &proxy)
{
    if (proxy.type == ProxySettings::Type::None)
        return std::nullopt;
    tagProxyParam param{};
    qstrncpy(param.szProxyText1, proxy.host.toUtf8().constData(), sizeof param.szProxyText1);
    param.nProxyValue1 = proxy.port;
    param.nProxyValue2 = int(proxy.type);
    qstrncpy(param.szProxyText2, proxy.user.toUtf8().constData(), sizeof param.szProxyText2);
    qstrncpy(param.szProxyText3, proxy.password.toUtf8().constData(), sizeof param.szProxyText3);
    return param;
}

void configureEngine(const Settings &settings)
{
    taskengine::Options options = taskengine::options();
    options.videoInfoCommand.clear();
    for (const QString &word : QProcess::splitCommand(settings.videoInfoCommand))
        options.videoInfoCommand.push_back(word.toLocal8Bit().toStdString());
    taskengine::setOptions(options);
}

DownloadDriver::Settings driverSettings(const Settings &settings)
{
    DownloadDriver::Settings driver;
    driver.downloadFolder =
        settings.downloadFolder.isEmpty() ? settings.outputFolder : settings.downloadFolder;
    driver.videoLimit = settings.videoLimit;
    driver.thumbnails = settings.thumbnails;
    driver.proxy = proxyParam(settings.proxy);
    driver.unfinishedFiles = unfinishedFiles;
    driver.failureText = [](double code) {
        return enginetexts::translated(taskengine::failureText(code));
    };
    driver.failureAdvice = [](double code) {
        return enginetexts::translated(taskengine::failureAdvice(code));
    };
    driver.hasExpired = [](double code) { return code == 403 || code == 410; };
    return driver;
}

QList<QPair<QString, QString>> fieldsOf(CXMLInfo &record)
{
    QDomDocument document;
    QDomElement task = document.createElement(QStringLiteral("Info"));
    record.toDomNode(document, task);
    QList<QPair<QString, QString>> fields;
    for (QDomElement field = task.firstChildElement(); !field.isNull();
         field = field.nextSiblingElement()) {
        if (field.firstChildElement().isNull())
            fields.append({field.nodeName(), field.text()});
    }
    return fields;
}

} // namespace

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
    m_session = std::make_unique<DownloadSession>(driverSettings(m_settings));
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

void Worker::perform(TaskAction action, const QStringList &keys)
{
    QStringList possible;
    std::copy_if(keys.cbegin(), keys.cend(), std::back_inserter(possible), [&](const QString &key) {
        return !isReadOnly() && !m_session->obstacle(key, action);
    });
    for (const QString &key : std::as_const(possible)) {
        if (action == TaskAction::Stop)
            m_session->stop(key);
        else if (action == TaskAction::Pause || action == TaskAction::Continue)
            m_session->driver().setPaused(key, action == TaskAction::Pause);
        change(key);
    }
    if (action == TaskAction::Resume || action == TaskAction::Retry)
        resume(taskrequests::toRetry(m_session->controller(), possible));
}

void Worker::resume(const QList<DownloadRequest> &requests)
{
    add(requests, m_settings.convert);
}

void Worker::resumeInterrupted()
{
    if (!isReadOnly())
        resume(taskrequests::interrupted(m_session->controller()));
}

void Worker::move(const QStringList &keys, bool forward)
{
    QStringList order;
    std::copy_if(
        m_waiting.cbegin(), m_waiting.cend(), std::back_inserter(order),
        [this](const QString &key) { return !m_session->obstacle(key, TaskAction::Move); });
    if (!forward)
        std::reverse(order.begin(), order.end());
    for (qsizetype at = 1; at < order.size(); ++at) {
        if (keys.contains(order[at]) && !keys.contains(order[at - 1]))
            order.swapItemsAt(at, at - 1);
    }
    if (!forward)
        std::reverse(order.begin(), order.end());
    for (const QString &key : std::as_const(order)) {
        m_session->driver().moveBefore(key, {});
        m_waiting.removeOne(key);
        m_waiting.append(key);
        change(key);
    }
}

void Worker::upgrade(const QStringList &keys, const Profile_Desc &profile)
{
    QList<DownloadRequest> requests;
    for (const QString &key : keys) {
        if (const auto request = taskrequests::toUpgrade(m_session->controller(), key, profile))
            requests << *request;
    }
    add(requests, false);
}

void Worker::convert(const QStringList &keys, const Profile_Desc &profile)
{
    for (const QString &key : keys) {
        const QString problem = isReadOnly() ? QString() : m_session->convert(key, profile);
        if (!problem.isEmpty())
            emit message(tr("The video cannot be converted: %1").arg(problem));
        change(key);
    }
}

void Worker::rename(const QString &key, const QString &name)
{
    if (isReadOnly())
        return;
    const QString problem = renameTask(m_session->controller(), key, name);
    if (!problem.isEmpty())
        emit message(tr("The video cannot be renamed: %1").arg(problem));
    m_session->keeper()->commit({key});
    m_session->keeper()->settle(key);
    change(key);
    save();
}

void Worker::findFiles(const QStringList &keys)
{
    QStringList files;
    for (const QString &key : keys) {
        const ControllerLock lock;
        if (const CXMLInfo *record = m_session->controller().getXMLInfo(key))
            files << taskrecord::filesOf(*record, unfinishedFiles);
    }
    files.removeDuplicates();
    emit filesFound(keys, files);
}

// Rather a file without a task than a task without its file: the files go last.
void Worker::remove(const QStringList &keys, bool deleteFiles)
{
    QList<std::shared_ptr<CXMLInfo>> removed; // unlinked records are ours
    QStringList gone;
    for (const QString &key : keys) {
        if (isReadOnly() || m_session->obstacle(key, TaskAction::Remove))
            continue;
        removed << std::shared_ptr<CXMLInfo>(m_session->controller().getXMLInfo(key));
        m_session->controller().remove(key, false);
        m_failures.remove(key);
        m_changed.removeAll(key);
        gone << key;
    }
    if (gone.isEmpty())
        return;
    emit rowsRemoved(gone);
    if (!save() || !deleteFiles)
        return;
    for (const auto &record : std::as_const(removed)) {
        for (const QString &path : taskrecord::filesOf(*record, unfinishedFiles)) {
            if (!QFile::remove(path))
                emit message(tr("\"%1\" cannot be deleted.").arg(path));
        }
    }
}

void Worker::findDetails(const QString &key)
{
    TaskDetails details;
    details.key = key;
    details.failure = m_failures.value(key);
    const QJsonObject conversion = conversions::describe(m_session->controller(), key);
    if (conversion.value(QStringLiteral("needed")).toBool())
        details.conversion = conversion.value(QStringLiteral("target")).toString();
    {
        const ControllerLock lock;
        CXMLInfo *record = m_session->controller().getXMLInfo(key);
        if (record == nullptr)
            return;
        details.title = record->Title;
        details.fields = fieldsOf(*record);
        details.formats = VideoOffer(record->fmt_list, record->fmt_stream_map).formats();
        details.files = taskrecord::filesOf(*record, unfinishedFiles);
    }
    emit detailsFound(details);
}

void Worker::findAbilities(const QStringList &keys)
{
    Abilities abilities;
    abilities.keys = keys;
    const QSet<QString> wanted(keys.cbegin(), keys.cend());
    {
        const ControllerLock lock;
        const auto &all = m_session->controller().m_pHistory->m_InfoList;
        for (auto record = all.cbegin(); record != all.cend() && !abilities.possible.all();
             ++record) {
            if (wanted.contains((*record)->MD5Code))
                judge(**record, abilities);
        }
    }
    emit abilitiesFound(abilities);
}

void Worker::judge(const CXMLInfo &record, Abilities &abilities) const
{
    for (std::size_t each = 0; each < taskActionCount; ++each) {
        const auto action = TaskAction(each);
        if (abilities.can(action))
            continue;
        const auto obstacle = isReadOnly() && action != TaskAction::Open
                                  ? std::optional(tr("another program has the history"))
                                  : m_session->obstacle(record, action);
        abilities.possible.set(each, !obstacle.has_value());
        abilities.obstacles[each] = obstacle.value_or(QString());
    }
}

void Worker::readAll()
{
    QList<TaskRow> rows;
    {
        const ControllerLock lock;
        const auto &all = m_session->controller().m_pHistory->m_InfoList;
        rows.reserve(all.size());
        for (const CXMLInfo *record : all)
            rows << rowOf(*record);
    }
    if (!rows.isEmpty())
        emit rowsChanged(rows);
    emit totalsChanged(m_session->driver().totals());
}

void Worker::change(const QString &key)
{
    m_changed << key;
    if (!m_gather.isActive())
        m_gather.start(repaintEvery);
}

void Worker::emitChanges()
{
    if (!m_session)
        return;
    QStringList changed = std::exchange(m_changed, {});
    changed.removeDuplicates();
    QList<TaskRow> rows;
    for (const QString &key : std::as_const(changed)) {
        const ControllerLock lock;
        const CXMLInfo *record = m_session->controller().getXMLInfo(key);
        if (record != nullptr && !m_inspecting.contains(key))
            rows << rowOf(*record);
    }
    if (!rows.isEmpty())
        emit rowsChanged(rows);
    emit totalsChanged(m_session->driver().totals());
}

TaskRow Worker::rowOf(const CXMLInfo &record) const
{
    TaskRow row;
    row.key = record.MD5Code;
    row.title = record.Title;
    row.address = record.OrgWebSite;
    row.path = taskrecord::outputPath(record);
    row.thumbnail = record.ImagePath;
    row.added = record.TaskCreateTime;
    row.state = taskrecord::stateOf(record);
    row.activity = m_session->driver().activity(row.key);
    row.isConverting = m_session->isConverting(row.key);
    row.failure = m_failures.value(row.key);
    row.progress =
        row.isConverting ? m_progress.value(row.key) : m_session->driver().progress(row.key);
    if (row.progress.total == 0)
        row.progress.total = record.FileSize;
    const bool isMoving = row.progress.received > 0 && row.progress.total > 0;
    row.percent = isMoving ? int(double(row.progress.received) / double(row.progress.total) * 100)
                           : std::clamp(record.Progress, 0, 100);
    return row;
}
