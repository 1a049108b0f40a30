/** Long release chains on a small stack, engines that call from many threads, waiting callbacks. */
#include "taskfixture.h"

#include <QRandomGenerator>

#include <array>
#include <atomic>
#include <thread>

#include <pthread.h>
#include <sys/stat.h>

namespace {

using Kind = ScriptedEngine::Kind;

void runOnSmallStack(std::function<void()> work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{1024} * 1024);
    pthread_t thread;
    const auto run = [](void *argument) -> void * {
        (*static_cast<std::function<void()> *>(argument))();
        return nullptr;
    };
    QCOMPARE(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

/** What an engine reports of a request that succeeds. */
void finish(Kind kind, const tagTaskInfo &info)
{
    QByteArray text = TaskFixture::response(1);
    if (kind == Kind::Parse) {
        info.pfnVideoInfoCallback(info.pUserData, info.szTaskKey, DOWN_STATE_PARSE_SUCCESS,
                                  text.data(), static_cast<unsigned long>(text.size()));
        return;
    }
    for (auto code : {DOWN_STATE_FILE_SIZE, DOWN_STATE_DOWNLOAD_FINISH})
        info.pfnStateCallback(info.pUserData, info.szTaskKey, code, 77,
                              static_cast<FILE_TYPE>(info.nFileType));
}

constexpr int taskCount = 9;
std::vector<std::unique_ptr<CXMLInfo>> unlinked; // records that have left the list

/** Takes the record out of the reach of the operation that follows. */
void keep(TaskFixture &f, const QString &key)
{
    if (CXMLInfo *record = f.down->getXMLInfo(key))
        unlinked.emplace_back(record);
}

using Call = void (*)(TaskFixture &f, const QString &key, int number);
const Call calls[] = {
    [](TaskFixture &f, const QString &key, int number) {
        const ControllerLock lock;
        keep(f, key);
        f.parse(number, number % 2 == 0);
    },
    [](TaskFixture &f, const QString &key, int number) {
        const ControllerLock lock;
        keep(f, key);
        f.down->remove(key, number % 2 == 0);
    },
    [](TaskFixture &f, const QString &key, int number) {
        Profile_Desc wanted = f.profile(u"mp4"_s, 100 * number, 100 * number);
        f.down->IsReDownLoadVideo(key, &wanted);
    },
    [](TaskFixture &f, const QString &key, int number) {
        f.down->setSaveAsFileName(key, f.dl() + u"/new%1.mp4"_s.arg(number), u"new"_s);
        f.down->ReNameSaveAsFileName(key, u"saved"_s, u"mp4"_s);
    },
    [](TaskFixture &f, const QString & /*key*/, int number) {
        const ControllerLock lock;
        if (number >= f.down->count())
            return;
        CXMLInfo *task = f.down->item(number);
        f.down->setProgress(CDown::getMD5(task), CDown::getDuration(task));
        CDown::setState(task, int(CDown::getSaveAsExt(task).size() + CDown::getTitle(task).size()));
    },
    [](TaskFixture &f, const QString &key, int /*number*/) {
        tagConvertInfo info;
        f.down->getConvertInfo(key, &info);
        f.down->setDownState(key, f.down->getParseState(key) + f.down->getIndex(key));
    },
    [](TaskFixture &f, const QString & /*key*/, int number) {
        f.down->setDownThreadNum(1 + number % 3);
    },
    [](TaskFixture &f, const QString & /*key*/, int number) {
        f.down->SaveToFile(f.root.filePath(QString::number(number)));
        f.down->LoadFromFile(f.root.filePath(u"one.xml"_s));
    },
    [](TaskFixture &f, const QString &key, int) { f.down->ReDownLoad(u"http://site/"_s, key); },
    [](TaskFixture &f, const QString &key, int) { f.down->DoDownloadVideo(key, false); },
    [](TaskFixture &f, const QString &key, int) { f.down->DoDownloadVideo(key, true); },
    [](TaskFixture &f, const QString &key, int) { f.down->IsBetterVideo(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->DownloadVideo(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->DownloadImage(key + u'1'); },
    [](TaskFixture &f, const QString &key, int) { f.down->ParseStart(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->ParseUnlock(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->ReleaseLock(key); },
    [](TaskFixture &f, const QString &, int) { f.down->QueueDownload(true); },
    [](TaskFixture &f, const QString &key, int) { f.down->DownloadLock(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->ImageUnlock(key + u'1'); },
    [](TaskFixture &f, const QString &key, int) { f.down->CopyVideo(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->DeleteVideoFile(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->Pause(key); },
    [](TaskFixture &f, const QString &key, int) { f.down->Stop(key, true); },
    [](TaskFixture &f, const QString &key, int) { f.down->StopAll(key); }};

/** An application and an engine that do anything at any time, on every thread that works for them.
 */
class Turmoil
{
public:
    explicit Turmoil(TaskFixture &fixture) : m_fixture(fixture)
    {
        fixture.engine.setHook([this](Kind kind, const tagTaskInfo &info) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_atWork.emplace_back(kind, info);
            return 0;
        });
        fixture.onEvent = [this](const AppEvent &) {
            if (m_ending)
                return;
            call();
            std::thread([this] { call(); }).join();
        };
    }

    void work(int steps)
    {
        for (int step = 0; step < steps; ++step)
            step % 2 == 0 ? call() : endOne();
    }

    void endAll()
    {
        for (m_ending = true; !m_atWork.empty();)
            endOne();
    }

    bool brokeLimits() const { return m_broken; }

private:
    void call()
    {
        QRandomGenerator random(++m_seed);
        const int number = 1 + random.bounded(taskCount);
        calls[random.bounded(int(std::size(calls)))](m_fixture, TaskFixture::keyOf(number), number);
        const ControllerLock lock;
        const CDown &down = *m_fixture.down;
        if (down.m_nParseFree < 0 || down.m_nParseFree > 3 || down.m_nDownFree < 0 ||
            down.m_nDownFree > DOWN_THREADNUM_MAX || m_DownloadAllTask.removeDuplicates() > 0 ||
            m_DownloadAllTask.size() > down.m_nEngineTaskMax)
            m_broken = true;
    }

    void endOne()
    {
        QRandomGenerator random(++m_seed);
        std::optional<std::pair<Kind, tagTaskInfo>> ended;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_atWork.empty())
                return;
            std::swap(m_atWork.back(), m_atWork[random.bounded(quint32(m_atWork.size()))]);
            ended = m_atWork.back();
            m_atWork.pop_back();
        }
        const auto &[kind, info] = *ended;
        const int way = random.bounded(4);
        if (way > 1) {
            if (kind == Kind::Video)
                TaskFixture::write(QString::fromLocal8Bit(info.szSavePath), "video");
            finish(kind, info);
            return;
        }
        const auto failure = kind == Kind::Parse ? DOWN_STATE_PARSE_FAIL : DOWN_STATE_DOWNLOAD_FAIL;
        info.pfnStateCallback(info.pUserData, info.szTaskKey,
                              way == 0 ? failure : DOWN_STATE_USER_STOP, 0,
                              static_cast<FILE_TYPE>(info.nFileType));
    }

    TaskFixture &m_fixture;
    std::atomic<quint32> m_seed{0};
    std::atomic_bool m_broken{false};
    std::atomic_bool m_ending{false};
    std::mutex m_mutex; // protects what follows
    std::vector<std::pair<Kind, tagTaskInfo>> m_atWork;
};

} // namespace

class ThreadsTest : public QObject
{
    Q_OBJECT

private slots:
    void longParseChain()
    {
        TaskFixture f;
        for (int number = 0; number < 10003; ++number)
            f.parse(number);
        const QStringList waiting = f.down->m_ParseWaitList;
        QCOMPARE(waiting.size(), 10000);
        f.engine.setResult(-1);
        f.engine.clearCalls();
        bool result = false;
        runOnSmallStack([&] { result = f.down->ParseUnlock(f.keyOf(0)); });
        QVERIFY(result);
        QCOMPARE(f.engine.calls("parse"), waiting);
        QVERIFY(f.down->m_ParseWaitList.isEmpty() && f.down->m_nParseFree == 1);
        QCOMPARE(f.states().count(u"3/-1"_s), 10001);
    }

    void longVideoChain()
    {
        TaskFixture f(1);
        f.parsed(3001);
        for (int number = 1; number <= 3001; ++number)
            f.down->DownloadVideo(f.keyOf(number));
        const QStringList waiting = f.down->m_DownloadWaitList;
        QCOMPARE(waiting.size(), 3000);
        f.engine.setResult(-1);
        f.engine.clearCalls();
        runOnSmallStack([&] { f.engine.sendState(f.keyOf(1), DOWN_STATE_DOWNLOAD_FAIL); });
        QCOMPARE(f.engine.calls("video"), waiting);
        QCOMPARE(f.state(), u"3/1"_s);
        QCOMPARE(f.states().count(u"3/3"_s), 3001);
    }

    void anythingFromAnyThread()
    {
        TaskFixture f(2);
        f.parsed(1);
        f.down->SaveToFile(f.root.filePath(u"one.xml"_s));
        Turmoil turmoil(f);
        std::array<std::thread, 8> threads;
        for (std::thread &thread : threads)
            thread = std::thread([&turmoil] { turmoil.work(300); });
        for (std::thread &thread : threads)
            thread.join();
        turmoil.endAll();
        QVERIFY(!turmoil.brokeLimits());
        // What the operations leave taken on purpose is given back.
        for (int number = 0; number <= taskCount; ++number) {
            const QString key = f.keyOf(number);
            f.down->Stop(key, false);
            f.down->ReleaseLock(key);
            f.down->ReleaseLock(key + u'1');
        }
        m_ReDownLoadList.clear();
        QCOMPARE(f.state(), u"3/%1"_s.arg(DOWN_THREADNUM_MAX));
        unlinked.clear();
    }

    /** A callback that waits for a thread that calls the controller would hang on a held lock. */
    void callbacksHoldNoLock()
    {
        TaskFixture f;
        f.onEvent = [&f](const AppEvent &event) {
            std::thread([&] { f.down->setProgress(event.key.left(32), event.code + 50); }).join();
        };
        f.engine.setHook([](Kind kind, const tagTaskInfo &info) { // answers inside the request
            finish(kind, info);
            return 0;
        });
        QCOMPARE(f.parse(1), 0);
        QCOMPARE(f.down->getProgress(f.keyOf(1)), 50 + DOWN_STATE_PARSE_SUCCESS);
        m_ConverterList = {f.keyOf(1)};
        {
            const ControllerLock heldByTheApplication;
            QCOMPARE(f.down->DoDownloadVideo(f.keyOf(1), true), 0);
        }
        QCOMPARE(f.down->getProgress(f.keyOf(1)), 50 + DOWN_STATE_DOWNLOAD_FINISH);
        QCOMPARE(f.events.size(), 6);
        QCOMPARE(f.state() + u' ' + f.states(), u"3/2 1 3/3"_s);
    }

    /** The finished video is a pipe, so that its copy lasts until this side closes it. */
    void copyHoldsNoLock()
    {
        TaskFixture f;
        f.parsed(2, true);
        for (int number : {1, 2})
            QCOMPARE(f.down->DoDownloadVideo(f.keyOf(number), true), 0);
        const QByteArray video = QFile::encodeName(f.task(1)->FileName);
        QCOMPARE(mkfifo(video.constData(), 0600), 0);
        std::thread engine([&f] { f.engine.sendState(f.keyOf(1), DOWN_STATE_DOWNLOAD_FINISH); });
        {
            QFile pipe(f.task(1)->FileName);
            const bool isCopying = pipe.open(QIODevice::WriteOnly);
            f.engine.sendState(f.keyOf(2), DOWN_STATE_DOWNLOAD_FAIL);
            f.parse(3);
            if (isCopying)
                pipe.write("video");
        }
        engine.join();
        QCOMPARE(f.events.value(0).key, f.keyOf(2));
        QCOMPARE(f.engine.calls("parse"), QStringList{f.keyOf(3)});
        QCOMPARE(f.read(f.out() + u'/' + QFileInfo(f.task(1)->FileName).fileName()),
                 QByteArray("video"));
    }

    /** The file is a pipe, and the history is more than a pipe takes at once. */
    void savingHoldsNoLock()
    {
        TaskFixture f;
        f.parsed(1, true);
        f.task(1)->Title = QString(1000000, u'a');
        QFile pipe(f.out() + QStringLiteral("/history.xml"));
        QCOMPARE(mkfifo(QFile::encodeName(pipe.fileName()).constData(), 0600), 0);
        std::thread saver([&] { f.down->SaveToFile(pipe.fileName()); });
        const bool isSaving = pipe.open(QIODevice::ReadOnly);
        f.task(1)->Title.clear();
        const int count = f.down->count();
        const QByteArray saved = pipe.readAll();
        saver.join();
        QVERIFY(isSaving);
        QCOMPARE(count, 1);
        QVERIFY(saved.size() > 1000000 && saved.endsWith("</DownloadInfos_History>\n"));
    }
};

QTEST_GUILESS_MAIN(ThreadsTest)
#include "tst_threads.moc"
