/** Several connections for one video: when there are some, what they ask for, what may go wrong. */
#include "enginefixture.h"
#include "taskengine/connectionramp.h"
#include "taskengine/partfile.h"

#include <atomic>
#include <cerrno>
#include <limits>
#include <sys/types.h>

using OptionChange = std::function<void(taskengine::Options &)>;
using Rates = std::function<double(int)>;

Q_DECLARE_METATYPE(OptionChange)
Q_DECLARE_METATYPE(Rates)

using namespace std::chrono_literals;

namespace {

std::atomic<int> reserveError{0};
std::atomic<std::int64_t> diskEnd{std::numeric_limits<std::int64_t>::max()};

} // namespace

// The linker puts the first of each two in the place of the system's call, which the second one is.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
#define WRAP_FALLOCATE(name, offset)                                                               \
    extern "C" int __real_##name(int, int, offset, offset);                                        \
    extern "C" int __wrap_##name(int file, int mode, offset first, offset length)                  \
    {                                                                                              \
        errno = reserveError;                                                                      \
        return reserveError == 0 ? __real_##name(file, mode, first, length) : -1;                  \
    }
#define WRAP_PWRITE(name, offset)                                                                  \
    extern "C" ssize_t __real_##name(int, const void *, std::size_t, offset);                      \
    extern "C" ssize_t __wrap_##name(int file, const void *data, std::size_t size, offset first)   \
    {                                                                                              \
        errno = ENOSPC;                                                                            \
        return first < diskEnd ? __real_##name(file, data, size, first) : -1;                      \
    }
WRAP_FALLOCATE(fallocate, off_t)
WRAP_FALLOCATE(fallocate64, off64_t)
WRAP_PWRITE(pwrite, off_t)
WRAP_PWRITE(pwrite64, off64_t)
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

class ConnectionsTest : public EngineFixture
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
        m_site->setSmallVideoSize(size);
        m_options.leastPiece = 50000;
        taskengine::setOptions(m_options);
    }
    void cleanup()
    {
        finish();
        reserveError = 0;
        diskEnd = std::numeric_limits<std::int64_t>::max();
    }

    void ramp_data()
    {
        // Bytes per second of so many connections together, and how many of eight are kept.
        const auto row = table<Rates, int>("rates", "kept");
        row(
            "each as much", [](int count) { return count * 1e6; }, 8);
        row(
            "each a bit", [](int count) { return 1e6 + count * 6e5; }, 8);
        row(
            "enough for all", [](int) { return 2e7; }, 1);
        row(
            "enough for three", [](int count) { return qMin(count, 3) * 1e6; }, 3);
        row(
            "slower together", [](int count) { return 1e6 / count; }, 1);
        row(
            "nothing", [](int) { return 0.0; }, 1);
    }

    void ramp()
    {
        QFETCH(const Rates, rates);
        QFETCH(const int, kept);
        taskengine::ConnectionRamp ramp(8);
        taskengine::ConnectionRamp::Time now{std::chrono::hours(1)};
        double bytes = 0;
        int most = 0;
        const auto pass = [&](int steps, const Rates &bytesPerSecond) {
            for (int step = 0; step < steps; ++step, now += 50ms) {
                ramp.update(std::int64_t(bytes), ramp.wanted(), now);
                most = qMax(most, ramp.wanted());
                bytes += bytesPerSecond(ramp.wanted()) * 0.05;
            }
        };
        pass(400, rates);
        QCOMPARE(ramp.wanted(), kept);
        QVERIFY(most <= qMin(kept + 1, 8)); // one at a time
        if (kept != 3)
            return;
        pass(200, [](int count) { return count * 3e5; }); // each slower: more are worth while again
        QVERIFY(ramp.wanted() > 3);
        ramp.lose();
        ramp.limit(2);
        pass(400, [](int count) { return count * 1e3; });
        QCOMPARE(ramp.wanted(), 2); // the site has said so
    }

    void shared_data()
    {
        // What happens to requests but the first, one after the other; and how many requests there
        // are when none is tried again (0: several).
        const auto row = table<QList<Change>, std::size_t>("faults", "requests");
        const auto status = [](int number) -> Change {
            return [number](Misbehaviour &fault) {
                fault.answer = SiteAnswer{number, "text/html", {}, "x"};
            };
        };
        const Change start = [](Misbehaviour &fault) { fault.earlierBy = 10; };
        const Change total = [](Misbehaviour &fault) { fault.totalMore = 10; };
        const Change validator = [](Misbehaviour &fault) {
            fault.entityTag = "\"b\"", fault.ignoreCondition = true;
        };
        const Change shorter = [](Misbehaviour &fault) { fault.shorterBy = 10; };
        const Change cut = [](Misbehaviour &fault) { fault.cutAfter = 100000; };
        row("none", {}, 0);
        row("403", {status(403)}, 2);
        row("429", {status(429), status(429)}, 2);
        row("503", {status(503)}, 2);
        row("other start", {start}, 2);
        row("other total", {total}, 2);
        row("other validator", {validator}, 2);
        row("other file", {[](Misbehaviour &fault) { fault.entityTag = "\"b\""; }}, 2);
        row("whole file", {[](Misbehaviour &fault) { fault.ignoreRange = true; }}, 2);
        row("page", {status(200)}, 2);
        row("shorter", {shorter}, 2);
        row("wrong length", {[](Misbehaviour &fault) { fault.announcedLength = size; }}, 2);
        row("cut", {cut}, 0);
        row("all at once", {cut, start, total, shorter, validator, cut, status(503)}, 0);
    }

    /** Nothing that happens to further connections is a failure, or spoils what is there. */
    void shared()
    {
        QFETCH(const QList<Change>, faults);
        QFETCH(const std::size_t, requests);
        misbehave(slow, 1);
        for (const Change &fault : faults) {
            const auto both = [&](Misbehaviour &one) {
                slow(one);
                fault(one);
                if (requests == 2) // what is not refused has to be made up for by a third one
                    one.cutAfter = 50000;
            };
            misbehave(both, 1);
        }
        misbehave(slow);
        // So many of them meet what the first connection still has to ask for, too.
        const bool isFirstSpared = faults.size() <= 2;
        QCOMPARE(DownloadVideo(video("video", isFirstSpared ? 1 : 20)), 0);
        compareWhole();
        QVERIFY(m_site->requestCount("/stream") > 1);
        QVERIFY(requests == 0 || m_site->requestCount("/stream") == requests);
        if (!isFirstSpared)
            return;
        QCOMPARE(m_log->count("video", DOWN_STATE_NO_RESUME), 0);
        double last = 0;
        for (const LoggedEvent &event : m_log->events("video")) {
            if (event.code != DOWN_STATE_DOWNLOAD_PROGRESS)
                continue;
            QVERIFY(event.value >= last && event.value <= double(size));
            last = event.value;
        }
    }

    /** The next try shares what it asks for only once the answer has come. */
    void firstIsCut()
    {
        misbehave([](Misbehaviour &fault) { fault.cutAfter = 150000, slow(fault); }, 1);
        misbehave([](Misbehaviour &fault) { fault.latency = 300ms, slow(fault); });
        QCOMPARE(DownloadVideo(video("video", 2)), 0);
        compareWhole();
        QCOMPARE(m_log->count("video", DOWN_STATE_RETRY_DOWNLOAD), 1);
        QCOMPARE(rangeCount("bytes=150000-"), 1);
        QVERIFY(rangeCount("bytes=") > 1);
        QCOMPARE(m_site->requestCount("/stream"), std::size_t(rangeCount("bytes=") + 1));
    }

    /** A left part with three pieces; the answer for the second of its gaps goes beyond it. */
    void pieceIsTooLong()
    {
        const std::string bytes = smallVideoBytes(1, 34, size);
        {
            taskengine::PartFile part;
            QVERIFY(!part.open(path("/video.flv"), "video"));
            part.remember(size, "\"b\"");
            QVERIFY(!part.write(0, bytes.data(), 100000) && !part.allowPieces());
            for (const std::size_t first : {900000U, 1900000U})
                QVERIFY(!part.write(qint64(first), bytes.data() + first, 100000));
            part.keep();
        }
        const auto same = [](Misbehaviour &fault) { fault.entityTag = "\"b\"", slow(fault); };
        misbehave(same, 1);
        const auto longer = [&](Misbehaviour &fault) {
            same(fault);
            fault.longerBy = 10;
            fault.cutAfter = 50000;
        };
        misbehave(longer, 1);
        misbehave(same);
        QCOMPARE(DownloadVideo(video("video", 1)), 0);
        compareWhole();
        QCOMPARE(m_site->requestCount("/stream"), 3U);
        QCOMPARE(rangeCount("bytes=100000-899999"), 1);
        QCOMPARE(rangeCount("bytes=1000000-1899999"), 2); // again, as it was refused
    }

    void alone_data()
    {
        const auto row = table<Change, OptionChange>("fault", "option");
        const OptionChange same = [](taskengine::Options &) {};
        row(
            "no ranges", [](Misbehaviour &fault) { fault.ignoreRange = true; }, same);
        row(
            "weak validator", [](Misbehaviour &fault) { fault.entityTag = "W/\"a\""; }, same);
        row(
            "no size", [](Misbehaviour &fault) { fault.unannounced = true; }, same);
        row("one wanted", slow, [](taskengine::Options &options) { options.connections = 1; });
        row("small", slow, [](taskengine::Options &options) { options.leastPiece = size; });
        row(
            "rate limit", [](Misbehaviour &fault) { fault.bytesPerSecond = 0; },
            [](taskengine::Options &options) { options.rateLimit = size / 2; });
    }

    /** Where more connections cannot be had, or would be of no use, there is one request. */
    void alone()
    {
        QFETCH(const Change, fault);
        QFETCH(const OptionChange, option);
        option(m_options);
        taskengine::setOptions(m_options);
        misbehave([&fault](Misbehaviour &one) {
            slow(one);
            fault(one);
        });
        QCOMPARE(DownloadVideo(video("video", 1)), 0);
        compareWhole();
        QCOMPARE(m_site->requestCount("/stream"), 1U);
    }

    void sameQuestion_data()
    {
        const auto row = table<bool, bool>("isProxied", "isMoved");
        row("direct", false, false);
        row("redirected", false, true);
        row("proxy", true, false);
    }

    /** Further requests say what the first one does, and to no other host; and go the same way. */
    void sameQuestion()
    {
        QFETCH(const bool, isProxied);
        QFETCH(const bool, isMoved);
        QVERIFY(m_site->startProxy({}, {}));
        const std::string port = ":" + std::to_string(m_site->port());
        const std::string host = isProxied ? "http://video.invalid" : "http://localhost" + port;
        const std::string first = host + (isMoved ? "/moved" : "/stream/small-1/34");
        m_options.videoInfoCommand = {"printf",  "%s\\n",           "request_header=Cookie: a=b",
                                      "title=a", "fmt_list=34/1x1", "fmt_stream_map=34|" + first};
        taskengine::setOptions(m_options);
        QCOMPARE(ParseVideoInfo(m_log->parse("video", "http://127.0.0.1/a")), 0);
        QVERIFY(m_log->waitFor("video", DOWN_STATE_PARSE_SUCCESS));
        misbehave([&](Misbehaviour &fault) {
            fault.prefix = "/moved";
            fault.answer = SiteAnswer{302, "text/html", {{"Location", stream()}}, "x"};
        });
        misbehave(slow);
        tagTaskInfo record = m_log->video("video", first, path("/video.flv"));
        EventLog::copy(record.szPageURL, "http://h.example/a?b#c");
        record.nProxySet = isProxied ? 1 : 0;
        EventLog::copy(record.proxyParam.szProxyText1, "127.0.0.1");
        record.proxyParam.nProxyValue1 = m_site->proxyPort();
        QCOMPARE(DownloadVideo(record), 0);
        QVERIFY(m_log->waitFor("video", DOWN_STATE_DOWNLOAD_FINISH));
        std::size_t count = 0;
        for (const SiteRequest &request : m_site->requests()) {
            const bool isAway = isMoved && request.target != "/moved";
            QCOMPARE(request.referer, std::string("http://h.example/a?b"));
            QCOMPARE(request.cookie, std::string(isAway ? "" : "a=b"));
            QCOMPARE(request.host, isAway ? "127.0.0.1" + port : host.substr(7));
            count += request.range.empty() ? 0U : 1U;
        }
        QVERIFY(count > 0);
    }

    void fullHost_data()
    {
        const auto row = table<int, bool, bool>("others", "isMoved", "isShared");
        row("one left", 6, false, true);
        row("none left", 7, false, false);
        row("none left behind a redirect", 7, true, false);
    }

    /** Eight connections to a host are enough for all downloads together. */
    void fullHost()
    {
        QFETCH(const int, others);
        QFETCH(const bool, isMoved);
        QFETCH(const bool, isShared);
        misbehave([&](Misbehaviour &fault) {
            fault.prefix = "/moved";
            fault.answer = SiteAnswer{302, "text/html", {{"Location", stream()}}, "x"};
        });
        misbehave([](Misbehaviour &fault) { fault.prefix = "/stream/small-1/34", slow(fault); });
        misbehave([](Misbehaviour &fault) { fault.holdAfter = 1000; });
        for (int number = 2; number < 2 + others; ++number) {
            const std::string name = "/small-" + std::to_string(number);
            const std::string address = m_site->baseAddress() + "/stream" + name + "/34";
            tagTaskInfo record = m_log->video(name, address, path(name));
            record.nEngineParam1 = 1;
            QCOMPARE(DownloadVideo(record), 0);
        }
        QVERIFY(m_site->waitForHeld(std::size_t(others), 60s));
        const std::string host = "http://localhost:" + std::to_string(m_site->port());
        QCOMPARE(DownloadVideo(m_log->video("video", isMoved ? host + "/moved" : stream(),
                                            path("/video.flv"))),
                 0);
        compareEnd("video", DOWN_STATE_DOWNLOAD_FINISH, size);
        QCOMPARE(m_site->requestCount("/stream/small-1/") > 1, isShared);
        QCOMPARE(m_site->requestCount("/stream"),
                 m_site->requestCount("/stream/small-1/") + std::size_t(others));
    }

    void interrupted_data()
    {
        const auto row = table<QString>("how");
        row("stop", u"stop"_s);
        row("quit", u"quit"_s);
        row("failure", u"failure"_s);
    }

    /** What is left says which pieces are there, for later system starts too, and is continued. */
    void interrupted()
    {
        QFETCH(const QString, how);
        misbehave(slow);
        QCOMPARE(DownloadVideo(video("video", 1)), 0);
        waitForPieces();
        if (how == u"stop") {
            QCOMPARE(StopDownload("video"), 0);
            compareEnd("video", DOWN_STATE_USER_STOP);
        } else if (how == u"quit") {
            QCOMPARE(Quit(), 0);
            QCOMPARE(DownloadInit(), 0);
        } else {
            diskEnd = 0;
            compareFailure("video", Failure::DiskFull);
            diskEnd = size;
        }
        compareFiles({u".video.flv.part-info"_s, u"video.flv.part"_s});
        QVERIFY(contentsOf(path("/.video.flv.part-info")).find("\npieces disk 0-") !=
                std::string::npos);
        qint64 kept = 0;
        {
            taskengine::PartFile part;
            QVERIFY(!part.open(path("/video.flv"), "video"));
            QVERIFY(part.hasPieces() && part.pieces().firstMissing() < part.size());
            kept = part.size();
        }
        const qsizetype before = m_log->events("video").size();
        QCOMPARE(DownloadVideo(video("video", 1)), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_log->count("video", DOWN_STATE_DOWNLOAD_FINISH), 1, 60000);
        compareFiles({u"video.flv"_s});
        QVERIFY(contentsOf(path("/video.flv")) == smallVideoBytes(1, 34, size));
        QCOMPARE(m_log->count("video", DOWN_STATE_NO_RESUME), 0);
        for (const LoggedEvent &event : m_log->events("video").mid(before))
            QVERIFY(event.code != DOWN_STATE_DOWNLOAD_PROGRESS || event.value >= double(kept));
    }

    /** A copy of both files is what a kill at this moment would leave. */
    void killed()
    {
        misbehave([](Misbehaviour &fault) { fault.bytesPerSecond = 300000; });
        QCOMPARE(DownloadVideo(video("video", 1)), 0);
        waitForPieces();
        const std::string bytes = smallVideoBytes(1, 34, size);
        const auto reports = [this] { return m_log->count("video", DOWN_STATE_DOWNLOAD_PROGRESS); };
        for (int copy = 0; copy < 3; ++copy) {
            const qsizetype seen = reports();
            QTRY_VERIFY_WITH_TIMEOUT(reports() > seen, 60000);
            QList<double> progress;
            for (const LoggedEvent &event : m_log->events("video"))
                progress += event.code == DOWN_STATE_DOWNLOAD_PROGRESS ? event.value : 0;
            progress.removeAll(0);
            QVERIFY(QFile::copy(native(path("/.video.flv.part-info")),
                                native(path("/.copy.part-info"))));
            QVERIFY(QFile::copy(native(path("/video.flv.part")), native(path("/copy.part"))));
            taskengine::PartFile part;
            QVERIFY(!part.open(path("/copy"), "video"));
            QVERIFY(part.hasPieces());
            // Reports are a quarter of a second apart, at least.
            QVERIFY(double(part.size()) >= progress.value(progress.size() - 4));
            const std::string copied = contentsOf(path("/copy.part"));
            std::size_t end = 0;
            for (const auto &gap : part.pieces().missing({0, size})) {
                const auto first = std::size_t(gap.first);
                QVERIFY(copied.compare(end, first - end, bytes, end, first - end) == 0);
                end = std::size_t(gap.end);
            }
            part.discard();
        }
        compareWhole();
    }

    void halted_data()
    {
        const auto row = table<bool>("isPaused");
        row("pause", true);
        row("rate limit", false);
    }

    /** A pause, and a rate that is used up, hold all connections. */
    void halted()
    {
        QFETCH(const bool, isPaused);
        m_options.rateLimit = isPaused ? 0 : 100 * size;
        taskengine::setOptions(m_options);
        misbehave([](Misbehaviour &fault) { fault.prefix = "/thumbnail", fault.latency = 5s; });
        misbehave([](Misbehaviour &fault) { fault.bytesPerSecond = 300000; });
        QCOMPARE(DownloadVideo(video("video", 1)), 0);
        waitForPieces();
        m_options.rateLimit = isPaused ? 0 : 1;
        m_options.lowSpeedTime = 500ms; // of the images below, not of the video
        taskengine::setOptions(m_options);
        QVERIFY(!isPaused || SuspendedDownload("video") == 0);
        double progress[2] = {};
        for (double &value : progress) { // time passes
            const std::string key = "image" + std::to_string(&value - progress);
            tagTaskInfo record = m_log->image(key, thumbnail(), path("/" + key));
            QCOMPARE(DownloadImage(record), 0);
            compareFailure(key, Failure::TimedOut);
            value = lastValue("video", DOWN_STATE_DOWNLOAD_PROGRESS);
        }
        QCOMPARE(progress[1], progress[0]);
        QVERIFY(progress[0] > 0 && progress[0] < double(size));
        m_options.rateLimit = 0;
        taskengine::setOptions(m_options);
        QVERIFY(!isPaused || SuspendedDownload("video") == 0);
        compareWhole();
    }

    void fullDisk_data()
    {
        const auto row = table<int, qint64, Failure>("reserveError", "diskEnd", "failure");
        row("no space to reserve", ENOSPC, size, Failure::DiskFull);
        row("no space for a piece", 0, size / 2, Failure::DiskFull);
        row("nothing can be reserved", EOPNOTSUPP, size, none);
    }

    void fullDisk()
    {
        QFETCH(const Failure, failure);
        reserveError = *static_cast<const int *>(QTest::qData("reserveError", qMetaTypeId<int>()));
        diskEnd = *static_cast<const qint64 *>(QTest::qData("diskEnd", qMetaTypeId<qint64>()));
        misbehave(slow);
        QCOMPARE(DownloadVideo(video("video", 2)), 0);
        if (failure == none) {
            compareWhole();
            QCOMPARE(m_site->requestCount("/stream"), 1U);
            return;
        }
        compareFailure("video", failure);
        QCOMPARE(m_log->count("video", DOWN_STATE_DISK_NO_SPACE), 1);
        compareFiles({u".video.flv.part-info"_s, u"video.flv.part"_s});
    }

private:
    static constexpr qint64 size = 2000000;

    static void slow(Misbehaviour &fault) { fault.bytesPerSecond = 1000000; }

    qsizetype rangeCount(const std::string &beginning) const
    {
        const auto requests = m_site->requests();
        return std::count_if(requests.begin(), requests.end(), [&](const SiteRequest &request) {
            return request.range.rfind(beginning, 0) == 0;
        });
    }

    void waitForPieces() const
    {
        QTRY_VERIFY_WITH_TIMEOUT(
            contentsOf(path("/.video.flv.part-info")).rfind("videodown part 2", 0) == 0 &&
                m_site->requestCount("/stream") > 1,
            60000);
        const double now = lastValue("video", DOWN_STATE_DOWNLOAD_PROGRESS);
        QTRY_VERIFY_WITH_TIMEOUT(lastValue("video", DOWN_STATE_DOWNLOAD_PROGRESS) > now + 300000,
                                 60000);
    }

    void compareWhole() const
    {
        compareEnd("video", DOWN_STATE_DOWNLOAD_FINISH, size);
        QVERIFY(contentsOf(path("/video.flv")) == smallVideoBytes(1, 34, size));
        compareFiles({u"video.flv"_s});
    }
};

QTEST_GUILESS_MAIN(ConnectionsTest)
#include "tst_connections.moc"
