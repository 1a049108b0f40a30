/** Requests under way: stopped, suspended, quit, and told of by callbacks. */
#include "enginefixture.h"

#include <QRandomGenerator>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <cstring>
#include <future>

namespace {

/** Long enough to be waited for in vain if it were ever waited for. */
constexpr std::int32_t endlessDelay = 30000;

void addNames(std::initializer_list<const char *> names)
{
    QTest::addColumn<QString>("what");
    for (const char *name : names)
        QTest::newRow(name) << QString::fromLatin1(name);
}

/** Lets other threads run, as often as `times`. */
void yield(unsigned times)
{
    for (unsigned number = 0; number < times; ++number)
        QThread::yieldCurrentThread();
}

} // namespace

class RequestsTest : public EngineFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { finish(); }

    void unusableRecord()
    {
        const std::function<void(tagTaskInfo &)> changes[] = {
            [](tagTaskInfo &record) { record.szTaskKey[0] = '\0'; },
            [](tagTaskInfo &record) { record.pfnStateCallback = nullptr; },
            [](tagTaskInfo &record) { record.szDownloadURL[0] = '\0'; },
            [](tagTaskInfo &record) { record.szSavePath[0] = '\0'; },
            [](tagTaskInfo &record) {
                std::memset(record.szDownloadURL, 'x', sizeof record.szDownloadURL);
            }};
        for (const auto &change : changes) {
            tagTaskInfo record = video();
            change(record);
            QCOMPARE(DownloadVideo(record), -1);
            QCOMPARE(ParseVideoInfo(record), -1);
        }
        QCOMPARE(StopDownload("video"), -1);
        QCOMPARE(SuspendedDownload("video"), -1);
        compareFiles({});
    }

    void stop_data() { addNames({"video", "image", "retry", "paused retry", "parse", "command"}); }

    void stop()
    {
        QFETCH(const QString, what);
        const bool isParse = what == u"parse" || what == u"command";
        if (what.endsWith(u"retry"_s))
            answerWith(503, "text/plain");
        else
            misbehave([](Misbehaviour &fault) { fault.holdAfter = 10; });
        if (what == u"command")
            m_options.videoInfoCommand = {"sh", "-c", "sleep 600"};
        taskengine::setOptions(m_options);

        const bool isVideo = what == u"video";
        tagTaskInfo record = isParse   ? m_log->parse("key", m_site->pageAddress("small-1"))
                             : isVideo ? video("key")
                                       : m_log->image("key", thumbnail(), path("/image.jpg"));
        record.nEngineParam2 = 5;
        record.nEngineParam3 = endlessDelay;
        QCOMPARE(send(record), 0);
        const bool isRetry = what.endsWith(u"retry"_s);
        QVERIFY(m_log->waitFor("key", isRetry   ? DOWN_STATE_RETRY_DOWNLOAD
                                      : isParse ? DOWN_STATE_START_PARSE
                                                : DOWN_STATE_DOWNLOAD_PROGRESS));
        if (what.startsWith(u"paused"_s))
            QCOMPARE(SuspendedDownload("key"), 0);
        QCOMPARE(StopDownload("key"), 0);
        compareEnd("key", DOWN_STATE_USER_STOP);
        QCOMPARE(StopDownload("key"), -1);
        compareFiles(isVideo ? QStringList{u".video.flv.part-info"_s, u"video.flv.part"_s}
                             : QStringList());
        if (what == u"image") { // what somebody else wrote meanwhile is his
            QCOMPARE(DownloadImage(record), 0);
            write(path("/image.jpg"), "his");
            QCOMPARE(StopDownload("key"), 0);
            QTRY_COMPARE_WITH_TIMEOUT(m_log->count("key", DOWN_STATE_USER_STOP), 2, 60000);
            compareFiles({u"image.jpg"_s});
        }
        QCOMPARE(send(record), 0);
    }

    void suspend_data() { addNames({"transfer", "retry", "command"}); }

    /** A suspended request stands still, while another one shows that its time would be up. */
    void suspend()
    {
        QFETCH(const QString, what);
        const bool isCommand = what == u"command";
        m_options.lowSpeedTime = m_options.commandTimeLimit = std::chrono::seconds(3);
        if (isCommand)
            m_options.videoInfoCommand = {
                "sh", "-c", "until [ -e " + path("/go") + " ]; do sleep 0.01; done; echo title=a"};
        taskengine::setOptions(m_options);
        misbehave(
            [&](Misbehaviour &fault) {
                (what == u"retry" ? fault.cutAfter : fault.holdAfter) = 10; // too few to be quick
            },
            1);
        misbehave([](Misbehaviour &fault) {
            fault.prefix = "/stream/small-1/34?late", fault.holdAfter = 1000;
        });
        const auto begin = [&](const std::string &key, const std::string &address) {
            tagTaskInfo record = isCommand ? m_log->parse(key, "http://127.0.0.1/a")
                                           : m_log->video(key, address, path("/" + key));
            record.nEngineParam2 = what == u"retry" && key != "late" ? 2 : 1;
            record.nEngineParam3 = 1000;
            QCOMPARE(send(record), 0);
        };
        begin("paused", stream());
        QVERIFY(m_log->waitFor("paused", isCommand          ? DOWN_STATE_START_PARSE
                                         : what == u"retry" ? DOWN_STATE_RETRY_DOWNLOAD
                                                            : DOWN_STATE_FILE_SIZE));
        QCOMPARE(SuspendedDownload("paused"), 0);
        begin("late", stream() + "?late");
        compareFailure("late", Failure::TimedOut);
        QVERIFY(!isTerminal(m_log->events("paused").last().code));
        write(path("/go"), "");
        QCOMPARE(SuspendedDownload("paused"), 0);
        if (what == u"transfer") { // its speed is judged while another one is at work
            QCOMPARE(DownloadVideo(m_log->video("next", stream(18), path("/next"))), 0);
            compareEnd("next", DOWN_STATE_DOWNLOAD_FINISH);
        }
        m_site->release();
        compareEnd("paused", isCommand ? DOWN_STATE_PARSE_SUCCESS : DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(isCommand || contentsOf(path("/paused")) == bytes());
    }

    /** What ends the pause between two tries ends it for the next one too. */
    void suspendedOverTheEndOfATry()
    {
        misbehave([](Misbehaviour &fault) { fault.holdAfter = fault.cutAfter = 0; }, 1);
        QCOMPARE(DownloadVideo(video("key", 2)), 0);
        QVERIFY(m_site->waitForHeld(1, std::chrono::minutes(1)));
        QCOMPARE(SuspendedDownload("key"), 0);
        m_site->release();
        QVERIFY(m_log->waitFor("key", DOWN_STATE_RETRY_DOWNLOAD));
        QCOMPARE(SuspendedDownload("key"), 0);
        compareEnd("key", DOWN_STATE_DOWNLOAD_FINISH);
    }

    /** A pause that ends before there is a connection costs nothing. */
    void suspendedBeforeItBegins()
    {
        for (int number = 0; number < 50; ++number) {
            const std::string key = std::to_string(number);
            QCOMPARE(DownloadVideo(m_log->video(key, stream(), path("/" + key))), 0);
            SuspendedDownload(key.c_str());
            SuspendedDownload(key.c_str());
            compareEnd(key, DOWN_STATE_DOWNLOAD_FINISH);
        }
    }

    /** Wherever a pause meets the answer, a page instead of the video is told from the video.
     */
    void suspendedAnswerIsJudged()
    {
        answerWith(200, "text/html");
        for (unsigned number = 0; number < 300 && !QTest::currentTestFailed(); ++number) {
            const std::string key = std::to_string(number);
            QCOMPARE(DownloadVideo(m_log->video(key, stream(), path("/" + key))), 0);
            while (m_site->requestCount("/") <= number)
                QThread::yieldCurrentThread();
            yield(number); // the answer comes after a few of these
            if (SuspendedDownload(key.c_str()) == 0) {
                yield(300);
                SuspendedDownload(key.c_str());
            }
            compareFailure(key, Failure::NotMedia);
        }
    }

    void keyIsFreeInsideTerminalEvent()
    {
        std::atomic<int> result{1};
        std::atomic<int> stopped{1};
        m_log->hook = [&](const LoggedEvent &event) {
            if (event.code == DOWN_STATE_DOWNLOAD_FAIL) {
                stopped = StopDownload("video");
                result = DownloadVideo(video());
            }
        };
        answerWith(404, "text/plain", 1);
        QCOMPARE(DownloadVideo(video()), 0);
        QVERIFY(m_log->waitFor("video", DOWN_STATE_DOWNLOAD_FINISH));
        QCOMPARE(result.load(), 0);
        QCOMPARE(stopped.load(), -1);
        QVERIFY(contentsOf(path("/video.flv")) == bytes());
    }

    void quitWaitsForCallbacks()
    {
        QSemaphore gate;
        std::atomic<bool> returned{false};
        m_log->hook = [&](const LoggedEvent &event) {
            if (event.key != "slow")
                return;
            gate.acquire();
            returned = true;
        };
        misbehave([](Misbehaviour &fault) { fault.holdAfter = 10; });
        QCOMPARE(DownloadVideo(m_log->video("slow", stream(18), path("/slow.mp4"))), 0);
        QVERIFY(m_log->waitFor("slow", DOWN_STATE_START_DOWNLOAD));
        QCOMPARE(DownloadVideo(video()), 0);
        QVERIFY(m_log->waitFor("video", DOWN_STATE_DOWNLOAD_PROGRESS));
        QCOMPARE(DownloadImage(m_log->image("image", thumbnail(), path("/image.jpg"))), 0);
        QVERIFY(m_log->waitFor("image", DOWN_STATE_DOWNLOAD_PROGRESS));
        auto quit = std::async(std::launch::async, [] { return Quit(); });
        QTRY_COMPARE_WITH_TIMEOUT(SuspendedDownload("video"), -1, 60000);
        QVERIFY(!returned);
        gate.release(1000);
        QCOMPARE(quit.get(), 0);
        QVERIFY(returned);
        const qsizetype told = m_log->events().size();
        QCOMPARE(DownloadVideo(video("late")), -1);
        for (const std::string name : {"/video.flv", "/image.jpg", "/image.jpg.part"})
            QVERIFY(!QFile::exists(native(path(name))));

        QCOMPARE(DownloadInit(), 0);
        QCOMPARE(DownloadInit(), 0);
        QCOMPARE(m_log->events().size(), told);
        m_site->clearMisbehaviours();
        QCOMPARE(DownloadVideo(video("again")), 0);
        compareEnd("again", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(!isTerminal(m_log->events("video").last().code));
    }

    /** Whatever is at work, no callback is under way once Quit has returned, and all keys are free.
     */
    void quitAtAnyMoment()
    {
        QRandomGenerator random(1);
        std::atomic<int> told{0};
        std::atomic<int> active{0};
        m_log->hook = [&](const LoggedEvent &) {
            ++active;
            ++told;
            QThread::usleep(100);
            --active;
        };
        misbehave([](Misbehaviour &fault) { fault.prefix = "/stream", fault.holdAfter = 1000; });
        for (int round = 0; round < 60; ++round) {
            QCOMPARE(DownloadInit(), 0);
            told = 0;
            for (const std::string key : {"a", "b", "c", "d", "e", "f"}) {
                const tagTaskInfo records[] = {m_log->video(key, stream(), path("/" + key)),
                                               m_log->image(key, thumbnail(), path("/" + key)),
                                               m_log->parse(key, m_site->pageAddress("small-1"))};
                QCOMPARE(send(records[random.bounded(3)]), 0);
                if (random.bounded(3) == 0)
                    SuspendedDownload(key.c_str());
                if (random.bounded(6) == 0)
                    StopDownload(key.c_str());
            }
            const int wanted = random.bounded(20); // more than there are, now and then
            for (int wait = 0; told < wanted && wait < 10; ++wait)
                QThread::usleep(300);
            QCOMPARE(Quit(), 0);
            QCOMPARE(active.load(), 0);
            m_site->release();
        }
    }
};

QTEST_GUILESS_MAIN(RequestsTest)
#include "tst_requests.moc"
