/** A controller on a scripted engine, in folders of its own, with an application that listens. */
#ifndef VIDEODOWN_TESTS_TASKFIXTURE_H
#define VIDEODOWN_TESTS_TASKFIXTURE_H

#include "down/cdown.h"
#include "scriptedengine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>
#include <mutex>

using namespace Qt::StringLiterals;

/** One call of the application's callbacks; `data` is the response or the number of bytes. */
struct AppEvent
{
    QString key;
    int code;
    double value;
    int type; ///< -2 for video-info events, -3 for the better-video callback
    QByteArray data;
};

/** Adds rows of texts under the named columns; a row begins with its name. */
inline void addRows(std::initializer_list<const char *> columns,
                    std::initializer_list<std::initializer_list<const char *>> rows)
{
    for (const char *column : columns)
        QTest::addColumn<QString>(column);
    for (const auto &row : rows) {
        QTestData &data = QTest::newRow(*row.begin());
        for (auto cell = row.begin() + 1; cell != row.end(); ++cell)
            data << QString::fromUtf8(*cell);
    }
}

class TaskFixture
{
public:
    static constexpr int appResult = 7; ///< what the application's callbacks return
    static constexpr int videoInfo = -2;
    static constexpr int betterVideo = -3;

    explicit TaskFixture(int threads = 2, const std::function<void(tagDownInfo &)> &change = {})
    {
        engine.reset();
        g_bStopAll = false;
        g_bApplicationExit = true;
        tagDownInfo info;
        info.pUserData = this;
        info.pfnStateCallback = onState;
        info.pfnVideoInfoCallback = onVideoInfo;
        info.pfnBetterVideoCallback = onBetterVideo;
        info.strDownloadPath = root.filePath(u"dl"_s);
        info.nThreadNum = threads;
        QDir(root.path()).mkdir(u"dl"_s);
        QDir(root.path()).mkdir(u"out"_s);
        if (change)
            change(info);
        down = std::make_unique<CDown>(&info);
    }

    static QString url(int number) { return u"http://site/watch?v=%1"_s.arg(number); }
    static QString keyOf(int number) { return CDown::GetURLToMD5(url(number)); }
    QString out() const { return root.filePath(u"out"_s); }
    QString dl() const { return root.filePath(u"dl"_s); }
    CXMLInfo *task(int number) const { return down->getXMLInfo(keyOf(number)); }

    static Profile_Desc profile(const QString &extension, int width, int height)
    {
        Profile_Desc desc;
        desc.fileTypeExt = extension;
        desc.includeVideo = true;
        desc.vSize_Width = width;
        desc.vSize_Height = height;
        return desc;
    }

    int parse(int number, bool isOrgVideo = false)
    {
        Profile_Desc desc = profile(u"mp4"_s, 640, 360);
        return down->DoParseVideo(url(number), out(), &desc, isOrgVideo);
    }

    /** Parses the tasks 1 to `count`, each with the same four formats and the title "Clip N". */
    void parsed(int count, bool isOrgVideo = false)
    {
        for (int number = 1; number <= count; ++number) {
            parse(number, isOrgVideo);
            engine.sendResponse(keyOf(number), response(number));
        }
        engine.clearCalls();
        events.clear();
    }

    static QByteArray response(int number)
    {
        return "title=Clip " + QByteArray::number(number) +
               "\r\nfmt_stream_map=22|http://s/22,34|http://s/34,18|http://s/18,5|http://s/5"
               "\r\nfmt_list=22/1280x720/9,34/640x360/9,18/640x360/9,5/320x240/7"
               "\r\nthumbnail_url=http://s/t.jpg\r\n";
    }

    static bool write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
    }

    /** The names of the files in `folder`: "a.jpg b.mp4". */
    static QString files(const QString &folder)
    {
        return QDir(folder).entryList(QDir::Files).join(u' ');
    }

    /** Free slots and lists in one text, tasks by number: "0/2 parse:4,5 engine:1,2i". */
    QString state() const
    {
        const std::pair<const char *, QStringList> lists[] = {
            {"parse", down->m_ParseWaitList}, {"video", down->m_DownloadWaitList},
            {"image", down->m_ImageWaitList}, {"loading", m_DownLoadingList},
            {"engine", m_DownloadAllTask},    {"again", m_ReDownLoadList}};
        QString text = u"%1/%2"_s.arg(down->m_nParseFree).arg(down->m_nDownFree);
        for (const auto &[name, keys] : lists) {
            if (!keys.isEmpty())
                text += u" %1:%2"_s.arg(QLatin1String(name), names(keys.join(u',')));
        }
        return text;
    }

    /** Parse and download state of every task, in list order: "2 3/-1, 1 1/0". */
    QString states() const
    {
        QStringList all;
        for (const CXMLInfo *info : std::as_const(down->m_pHistory->m_InfoList))
            all +=
                u"%1 %2/%3"_s.arg(names(info->MD5Code)).arg(info->ParseState).arg(info->DownState);
        return all.join(u", ");
    }

    /** The engine's calls since the last look: "parse 4, image 2i". */
    QString takeCalls()
    {
        const QString text = names(engine.calls().join(u", "));
        engine.clearCalls();
        return text;
    }

    ScriptedEngine &engine = ScriptedEngine::instance();
    QTemporaryDir root;
    std::unique_ptr<CDown> down;
    std::mutex eventMutex;
    QList<AppEvent> events;
    std::function<void(const AppEvent &)> onEvent; ///< runs inside the callback

private:
    static QString names(QString text)
    {
        for (int number = 1; number < 10; ++number) {
            text.replace(keyOf(number) + u'1', u"%1i"_s.arg(number));
            text.replace(keyOf(number), QString::number(number));
        }
        return text;
    }

    static int note(void *user, const AppEvent &event)
    {
        auto *self = static_cast<TaskFixture *>(user);
        {
            const std::lock_guard<std::mutex> lock(self->eventMutex);
            self->events.append(event);
        }
        if (self->onEvent)
            self->onEvent(event);
        return appResult;
    }

    static int onState(void *user, const char *key, tagDownloadStateCode code, double value,
                       FILE_TYPE type)
    {
        return note(user, {QString::fromLocal8Bit(key), code, value, type, {}});
    }

    static int onVideoInfo(void *user, const char *key, tagDownloadStateCode code, char *data,
                           unsigned long length)
    {
        return note(user, {QString::fromLocal8Bit(key), code, static_cast<double>(length),
                           videoInfo, QByteArray(data)});
    }

    static void onBetterVideo(void *user, const char *key, int better)
    {
        note(user, {QString::fromLocal8Bit(key), better, 0, betterVideo, {}});
    }
};

#endif
