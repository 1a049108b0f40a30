/** A driver on the scripted engine, in folders of its own, and what it told. */
#ifndef VIDEODOWN_TESTS_DRIVERFIXTURE_H
#define VIDEODOWN_TESTS_DRIVERFIXTURE_H

#include "driver/downloaddriver.h"
#include "taskfixture.h"

#include <QCoreApplication>

class DriverFixture
{
public:
    explicit DriverFixture(int limit = 2)
    {
        engine.reset();
        QDir(root.path()).mkdir(u"dl"_s);
        QDir(root.path()).mkdir(u"out"_s);
        engine.setHook([this](ScriptedEngine::Kind kind, const tagTaskInfo &request) {
            if (kind == ScriptedEngine::Kind::Video) // as every engine must, to hold the name
                QFile(QString::fromLocal8Bit(request.szSavePath)).open(QIODevice::Append);
            return result;
        });
        DownloadDriver::Settings settings;
        settings.downloadFolder = root.filePath(u"dl"_s);
        settings.videoLimit = limit;
        settings.failureText = [](double code) { return u"cause %1"_s.arg(code); };
        settings.failureAdvice = [](double code) { return u"advice %1"_s.arg(code); };
        settings.unfinishedFiles = [](const QString &path) {
            return QStringList{path + u".part"_s};
        };
        settings.hasExpired = [](double code) { return code == 410; };
        driver = std::make_unique<DownloadDriver>(settings);
        QObject::connect(driver.get(), &DownloadDriver::ended,
                         [this](const DownloadResult &r) { results.append(r); });
        QObject::connect(driver.get(), &DownloadDriver::idle, [this] { ++idleCount; });
    }

    QString url(int number) const { return TaskFixture::url(number); }

    QString add(const QString &address, bool keepSource = false, bool again = false)
    {
        DownloadRequest request;
        request.address = address;
        request.outputFolder = root.filePath(u"out"_s);
        request.keepSource = keepSource;
        request.again = again;
        return driver->add(request);
    }

    /** Adds task `number`, lets it be parsed and its video be sent; its thumbnail waits for no end.
     */
    QString running(int number, bool keepSource = false)
    {
        QString key = add(url(number), keepSource);
        turn();
        engine.sendResponse(key, TaskFixture::response(number));
        turn();
        return key;
    }

    /** Lets the driver take in what has happened, once. */
    void turn() const { QCoreApplication::processEvents(); }

    QString savePath(const QString &key) const
    {
        return QString::fromLocal8Bit(engine.request(key).szSavePath);
    }

    void finish(const QString &key, const QByteArray &bytes = "video") const
    {
        TaskFixture::write(savePath(key), bytes);
        engine.sendState(key, DOWN_STATE_DOWNLOAD_FINISH);
    }

    QStringList files(const QString &folder) const
    {
        return QDir(root.filePath(folder)).entryList(QDir::Files | QDir::Hidden);
    }

    /** What is free and what waits in the controller, as "3 2 0 0": slots, waiting, at the engine.
     */
    QString controllerState() const
    {
        const ControllerLock lock;
        const CDown &down = driver->controller();
        const auto waiting = down.m_ParseWaitList.size() + down.m_DownloadWaitList.size() +
                             down.m_ImageWaitList.size();
        const auto atWork = m_DownloadAllTask.size() + m_DownLoadingList.size();
        return u"%1 %2 %3 %4"_s.arg(down.m_nParseFree)
            .arg(down.m_nDownFree)
            .arg(waiting)
            .arg(atWork);
    }

    ScriptedEngine &engine = ScriptedEngine::instance();
    int result = 0; ///< what the engine answers
    QTemporaryDir root;
    QList<DownloadResult> results;
    int idleCount = 0;
    std::unique_ptr<DownloadDriver> driver; // first to go
};

#endif
