#include "eventlog.h"
#include "faultserver.h"
#include "site/videosite.h"
#include "taskengine/options.h"
#include "taskengine/partfile.h"
#include "taskengine/progressmeter.h"
#include "taskengine/retrydelay.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <atomic>
#include <csignal>
#include <future>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using taskengine::Failure;
using taskengine::ProxyType;

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(Failure)
Q_DECLARE_METATYPE(ProxyType)
Q_DECLARE_METATYPE(std::function<void(Misbehaviour &)>)
Q_DECLARE_METATYPE(std::function<void(tagTaskInfo &)>)

using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(Misbehaviour &)>;
using RecordChange = std::function<void(tagTaskInfo &)>;

constexpr std::size_t videoSize = 600000;

/** Long enough to be waited for in vain if it were ever waited for. */
constexpr std::int32_t endlessDelay = 30000;

std::string answer(const std::string &status, const std::string &headers, const std::string &body)
{
    return "HTTP/1.1 " + status + "\r\n" + headers +
           "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}

std::string contentsOf(const std::string &path)
{
    QFile file(QFile::decodeName(path.c_str()));
    return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string("(no file)");
}

/** Lets other threads run, as often as `times`. */
void yield(unsigned times)
{
    for (unsigned number = 0; number < times; ++number)
        QThread::yieldCurrentThread();
}

void write(const std::string &path, const std::string &contents, QFile::OpenMode mode)
{
    QFile file(QFile::decodeName(path.c_str()));
    QVERIFY(file.open(mode) && file.write(contents.c_str()) >= 0);
}

} // namespace

class TestTaskEngine : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_log = std::make_unique<EventLog>();
        m_site = std::make_unique<VideoSite>();
        m_site->setSmallVideoSize(videoSize);
        QVERIFY(m_folder->isValid() && m_site->start());
        m_options = {};
        taskengine::setOptions(m_options);
        QCOMPARE(DownloadInit(), 0);
    }

    /** Each request that was accepted in a test must have ended exactly once, unless it was quit.
     */
    void cleanup()
    {
        QCOMPARE(DownloadCleanup(), 0);
        QCOMPARE(DownloadCleanup(), -1);
        m_site->stop();
        for (const LoggedEvent &event : m_log->events()) {
            const QList<LoggedEvent> all = m_log->events(event.key);
            const auto ends = std::count_if(all.begin(), all.end(),
                                            [](const auto &one) { return isTerminal(one.code); });
            const auto starts = m_log->count(event.key, DOWN_STATE_START_DOWNLOAD) +
                                m_log->count(event.key, DOWN_STATE_START_PARSE);
            QVERIFY2(ends <= starts, event.key.c_str());
        }
    }

    void parseResult_data()
    {
        using namespace std::string_literals;
        QTest::addColumn<int>("status");
        QTest::addColumn<std::string>("body");
        QTest::addColumn<std::string>("text");
        QTest::addColumn<double>("failure");
        const auto failure = [](Failure value) { return static_cast<double>(value); };
        QTest::newRow("fields") << 200 << "status=ok&title=a%20b+c%2B&x="s
                                << "status=ok\r\ntitle=a b c+\r\nx=\r\n"s << 0.0;
        QTest::newRow("no value can forge a line") << 200 << "title=a%0Atoken%3Db%0D%0a%00c"s
                                                   << "title=a token=b   c\r\n"s << 0.0;
        QTest::newRow("raw line ends and NUL") << 200 << "title=a\nb\0c&x=1"s
                                               << "title=a b c\r\nx=1\r\n"s << 0.0;
        QTest::newRow("half an escape") << 200 << "title=100%&x=%4&y=%zz"s
                                        << "title=100%\r\nx=%4\r\ny=%zz\r\n"s << 0.0;
        QTest::newRow("addresses keep their second encoding")
            << 200 << "fmt_stream_map=34%7Chttp%3A%2F%2Fh%2Fs%3Fid%3D1%252C2"s
            << "fmt_stream_map=34|http://h/s?id=1%2C2\r\n"s << 0.0;
        QTest::newRow("page") << 200 << R"(<html><a href="/x?a=1"></html>)"s
                              << ""s << failure(Failure::MalformedResponse);
        QTest::newRow("no field") << 200 << "&&\r\n&=a"s
                                  << ""s << failure(Failure::MalformedResponse);
        QTest::newRow("empty") << 200 << ""s
                               << ""s << failure(Failure::EmptyResponse);
        QTest::newRow("too large") << 200 << "title=" + std::string(1000, 'a') << ""s
                                   << failure(Failure::ResponseTooLarge);
        QTest::newRow("not found") << 404 << "title=a"s
                                   << ""s << 404.0;
    }

    void parseResult()
    {
        QFETCH(const int, status);
        QFETCH(const std::string, body);
        QFETCH(const std::string, text);
        QFETCH(const double, failure);
        m_options.responseLimit = 1000;
        taskengine::setOptions(m_options);
        misbehave([&](Misbehaviour &fault) {
            fault.answer = SiteAnswer{status, "text/plain", {}, body};
        });
        QCOMPARE(ParseVideoInfo(m_log->parse("page", m_site->pageAddress("a"))), 0);
        compareEnd("page", text.empty() ? DOWN_STATE_PARSE_FAIL : DOWN_STATE_PARSE_SUCCESS,
                   text.empty() ? failure : static_cast<double>(text.size()));
        QCOMPARE(m_log->end("page").text, text);
        QCOMPARE(m_log->events("page").first().code, DOWN_STATE_START_PARSE);
    }

    void videoInfoAddress_data()
    {
        QTest::addColumn<std::string>("page");
        QTest::addColumn<std::string>("asked");
        QTest::addColumn<Failure>("failure");
        const auto row = [](const char *name, const char *page, const char *asked) {
            QTest::newRow(name) << std::string(page) << std::string(asked) << Failure::Internal;
        };
        row("parameter", "/watch?x=1&v=a_b-1&v=2#c", "/get_video_info?video_id=a_b-1");
        row("odd characters", "/watch?v=a%26b+c%2F", "/get_video_info?video_id=a%26b%20c%2F");
        row("path", "/v/abc/?x=v", "/get_video_info?video_id=abc");
        const auto failing = [](const char *name, const char *page, Failure failure) {
            QTest::newRow(name) << std::string(page) << std::string() << failure;
        };
        failing("no video", "/watch?list=1", Failure::BadAddress);
        failing("empty parameter", "/watch?v=", Failure::BadAddress);
        failing("no address", "-o/tmp/x", Failure::BadAddress);
        failing("other protocol", "ftp://127.0.0.1/watch?v=a", Failure::ForbiddenProtocol);
        failing("local file", "file:///watch?v=a", Failure::ForbiddenProtocol);
    }

    void videoInfoAddress()
    {
        QFETCH(const std::string, page);
        QFETCH(const std::string, asked);
        QFETCH(const Failure, failure);
        const std::string base = page.front() == '/' ? m_site->baseAddress() : std::string();
        QCOMPARE(ParseVideoInfo(m_log->parse("page", base + page)), 0);
        if (asked.empty())
            compareFailure("page", failure);
        else
            QVERIFY(isTerminal(m_log->end("page").code));
        QCOMPARE(m_site->requestCount("/"), asked.empty() ? 0U : 1U);
        QCOMPARE(m_site->requestCount(asked), asked.empty() ? 0U : 1U);
    }

    void commandResult_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<std::string>("text");
        QTest::addColumn<Failure>("failure");
        const auto shell = [](const char *script) {
            return QStringList{u"sh"_s, u"-c"_s, QLatin1String(script), u"name"_s};
        };
        QTest::newRow("page is the last argument")
            << shell(R"(echo "title=$1"; echo; printf 'x=a\000b\r\n'; echo no field; cat)")
            << std::string("title=http://127.0.0.1/;$(x)\r\nx=a b\r\n") << Failure::Internal;
        QTest::newRow("error status")
            << shell("echo title=a; exit 3") << std::string() << Failure::CommandFailed;
        QTest::newRow("silent") << shell("echo oops >&2") << std::string()
                                << Failure::UnusableOutput;
        QTest::newRow("no fields")
            << shell("echo hello") << std::string() << Failure::UnusableOutput;
        QTest::newRow("endless") << shell("yes title=a") << std::string()
                                 << Failure::UnusableOutput;
        QTest::newRow("missing") << QStringList{u"/no/such/command"_s} << std::string()
                                 << Failure::CommandNotFound;
    }

    void commandResult()
    {
        QFETCH(const QStringList, command);
        QFETCH(const std::string, text);
        QFETCH(const Failure, failure);
        for (const QString &argument : command)
            m_options.videoInfoCommand.push_back(argument.toStdString());
        taskengine::setOptions(m_options);
        QCOMPARE(ParseVideoInfo(m_log->parse("page", "http://127.0.0.1/;$(x)")), 0);
        if (text.empty())
            compareFailure("page", failure);
        else
            compareEnd("page", DOWN_STATE_PARSE_SUCCESS);
        QCOMPARE(m_log->end("page").text, text);
    }

    void tooManyOpenFiles()
    {
        m_options.videoInfoCommand = {"echo", "title=a"};
        taskengine::setOptions(m_options);
        rlimit old = {};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &old), 0);
        const int lowest = ::dup(0);
        ::close(lowest);
        const rlimit none = {static_cast<rlim_t>(lowest), old.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
        ParseVideoInfo(m_log->parse("page", "http://127.0.0.1/a"));
        DownloadVideo(video());
        m_log->end("page");
        m_log->end("video");
        ::setrlimit(RLIMIT_NOFILE, &old);
        compareFailure("page", Failure::TooManyFiles);
        compareFailure("video", Failure::TooManyFiles);
    }

    void commandIsKilledWhenTimeIsUp()
    {
        const std::string note = path("/process");
        m_options.videoInfoCommand = {"sh", "-c", "sleep 600 & echo $! > " + note + "; wait",
                                      "name"};
        int process = 0;
        for (int limit = 100; process == 0; limit *= 2) { // until the program gets that far
            m_options.commandTimeLimit = std::chrono::milliseconds(limit);
            taskengine::setOptions(m_options);
            const std::string key = std::to_string(limit);
            QCOMPARE(ParseVideoInfo(m_log->parse(key, "http://127.0.0.1/a")), 0);
            compareFailure(key, Failure::TimedOut);
            QVERIFY(!QTest::currentTestFailed());
            process = std::atoi(contentsOf(note).c_str());
        }
        const QString details = u"/proc/%1/cmdline"_s.arg(process);
        QTRY_VERIFY_WITH_TIMEOUT(contentsOf(details.toStdString()).find("sleep") != 0, 60000);
    }

    void downloadsAreExact()
    {
        m_options.lowSpeedTime = std::chrono::seconds(1);
        taskengine::setOptions(m_options);
        misbehave([](Misbehaviour &fault) {
            fault.prefix = "/stream", fault.bytesPerSecond = videoSize / 2;
        });
        write(path("/video.flv"), "the old video", QFile::WriteOnly);
        QCOMPARE(DownloadVideo(video()), 0);
        QCOMPARE(DownloadImage(m_log->image("video1", thumbnail(), path("/video.jpg"))), 0);
        compareEnd("video", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
        compareEnd("video1", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(contentsOf(path("/video.flv")) == bytes());
        compareFiles({u"video.flv"_s, u"video.jpg"_s});

        const QList<LoggedEvent> events = m_log->events("video");
        QCOMPARE(events.first().code, DOWN_STATE_START_DOWNLOAD);
        QCOMPARE(events[events.size() - 2].code, DOWN_STATE_DOWNLOAD_PROGRESS);
        QCOMPARE(events[events.size() - 2].value, static_cast<double>(videoSize));
        QCOMPARE(m_log->count("video", DOWN_STATE_FILE_SIZE), 1);
        QCOMPARE(m_log->count("video1", DOWN_STATE_FILE_SIZE), 0);
        QCOMPARE(m_log->end("video1").type, FILE_TYPE_IMAGE);
    }

    void downloadFailure_data()
    {
        QTest::addColumn<bool>("isImage");
        QTest::addColumn<Change>("change");
        QTest::addColumn<double>("failure");
        const auto row = [](const char *name, bool isImage, auto failure, const Change &change) {
            QTest::newRow(name) << isImage << change << static_cast<double>(failure);
        };
        const auto answering = [&row](const char *name, bool isImage, auto failure, int status,
                                      const std::string &type, const std::string &body) {
            row(name, isImage, failure, [=](Misbehaviour &fault) {
                fault.answer = SiteAnswer{status, type, {}, body};
            });
        };
        const auto redirecting = [&row](const char *name, Failure failure,
                                        const std::string &target) {
            row(name, false, failure, [=](Misbehaviour &fault) {
                fault.answer = SiteAnswer{302, "text/plain", {{"Location", target}}, "x"};
            });
        };
        answering("not found", false, 404, 404, "video/x-flv", "x");
        answering("no range asked for", false, 416, 416, "video/x-flv", "x");
        answering("server error", true, 500, 500, "text/html", "x");
        answering("page for a video", false, Failure::NotMedia, 200, "text/html; charset=utf-8",
                  "x");
        answering("list for a video", false, Failure::NotMedia, 200, "Application/JSON", "{}");
        answering("feed for a video", false, Failure::NotMedia, 200, "application/rss+xml", "x");
        answering("video for an image", true, Failure::NotMedia, 200, "video/mp4", "x");
        answering("empty", false, Failure::EmptyResponse, 200, "video/mp4", "");
        answering("large image", true, Failure::ResponseTooLarge, 200, "image/jpeg",
                  std::string(2000, 'x'));
        redirecting("endless redirects", Failure::TooManyRedirects, "/again");
        redirecting("redirect to a file", Failure::ForbiddenProtocol, "file:///etc/hostname");
        redirecting("redirect to another protocol", Failure::ForbiddenProtocol,
                    "ftp://127.0.0.1/x");
        row("two lengths", false, Failure::MalformedResponse,
            [](Misbehaviour &fault) { fault.twoLengths = true; });
        row("flood of headers", false, Failure::MalformedResponse,
            [](Misbehaviour &fault) { fault.headerBytes = 270000; });
        row("more announced than sent", false, Failure::ShortBody, [](Misbehaviour &fault) {
            fault.announcedLength = videoSize + 1;
            fault.entityTag = "W/\"weak\"";
        });
        row("endless image", true, Failure::ResponseTooLarge, [](Misbehaviour &fault) {
            fault.endless = true;
            fault.answer = SiteAnswer{200, "image/jpeg", {}, "x"};
        });
        row("compressed", false, Failure::NotMedia,
            [](Misbehaviour &fault) { fault.answer = gzipBomb(100000); });
        row("slow header", true, Failure::TimedOut,
            [](Misbehaviour &fault) { fault.headerLatency = std::chrono::seconds(5); });
        row("short", false, Failure::ShortBody, [](Misbehaviour &fault) { fault.cutAfter = 1000; });
        row("stalled", true, Failure::TimedOut,
            [](Misbehaviour &fault) { fault.latency = std::chrono::seconds(5); });
    }

    void downloadFailure()
    {
        QFETCH(const bool, isImage);
        QFETCH(const Change, change);
        QFETCH(const double, failure);
        m_options.imageLimit = 1000;
        if (failure == static_cast<double>(Failure::TimedOut))
            m_options.lowSpeedTime = std::chrono::milliseconds(50);
        taskengine::setOptions(m_options);
        misbehave([&change](Misbehaviour &fault) {
            change(fault);
            if (fault.cutAfter)
                fault.entityTag = "W/\"weak\""; // so that nothing is kept to be continued
        });
        const std::string kept = path("/kept");
        write(kept, "old", QFile::WriteOnly);
        const auto send = [this, isImage](const std::string &key, const std::string &target) {
            return isImage ? DownloadImage(m_log->image(key, stream(), target))
                           : DownloadVideo(m_log->video(key, stream(), target));
        };
        QCOMPARE(send("new", path("/new")), 0);
        QCOMPARE(send("old", kept), 0);
        compareEnd("new", DOWN_STATE_DOWNLOAD_FAIL, failure);
        compareEnd("old", DOWN_STATE_DOWNLOAD_FAIL, failure);
        compareFiles({u"kept"_s});
        QCOMPARE(contentsOf(kept), std::string("old"));
        QVERIFY(m_site->requestCount("/again") <= 20); // ten redirects each
        QVERIFY(taskengine::failureText(failure) != "unknown cause");
    }

    void faultyServer_data()
    {
        QTest::addColumn<std::string>("response");
        QTest::addColumn<Failure>("failure");
        const std::string head = "HTTP/1.1 200 OK\r\n";
        QTest::newRow("silent") << std::string() << Failure::ConnectionLost;
        QTest::newRow("not HTTP") << std::string("hello\r\n\r\n") << Failure::MalformedResponse;
        QTest::newRow("larger than the disk")
            << head + "Content-Length: 4611686018427387904\r\n\r\nx" << Failure::DiskFull;
        QTest::newRow("range without being asked")
            << answer("206 Partial Content", "Content-Range: bytes 5-5/9\r\n", "x")
            << Failure::MalformedResponse;
        QTest::newRow("chunks that break off")
            << head + "Content-Type: video/mp4\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nab"
            << Failure::ShortBody;
        QTest::newRow("no TLS") << std::string("no TLS") << Failure::TlsFailed;
        QTest::newRow("nobody there") << std::string("closed") << Failure::ConnectionFailed;
        QTest::newRow("no such host") << std::string("host") << Failure::UnknownHost;
    }

    void faultyServer()
    {
        QFETCH(const std::string, response);
        QFETCH(const Failure, failure);
        auto server = std::make_unique<FaultServer>(QList<std::string>{response});
        std::string address = server->address(failure == Failure::TlsFailed ? "https" : "http");
        if (failure == Failure::ConnectionFailed)
            server.reset();
        if (failure == Failure::UnknownHost) // a name that no name server needs to be asked about
            address = "http://" + std::string(64, 'a') + "/";
        QCOMPARE(DownloadVideo(m_log->video("video", address, path("/video.flv"))), 0);
        compareFailure("video", failure);
        compareFiles({});
        QCOMPARE(m_log->count("video", DOWN_STATE_DISK_NO_SPACE),
                 failure == Failure::DiskFull ? 1 : 0);
        if (failure == Failure::ConnectionFailed) { // a parse does not wait for a site to come up
            tagTaskInfo parse = m_log->parse("page", address);
            parse.nEngineParam2 = 5;
            QCOMPARE(ParseVideoInfo(parse), 0);
            compareFailure("page", failure);
            QCOMPARE(m_log->count("page", DOWN_STATE_RETRY_DOWNLOAD), 0);
        }
    }

    void target_data()
    {
        QTest::addColumn<std::string>("name");
        QTest::addColumn<Failure>("failure");
        QTest::newRow("longest name") << "/" + std::string(255, 'n') << Failure::Internal;
        QTest::newRow("longer name") << "/" + std::string(256, 'n') << Failure::NameTooLong;
        QTest::newRow("no folder") << std::string("/folder/video") << Failure::FolderMissing;
        QTest::newRow("file as folder") << std::string("/file/video") << Failure::FolderMissing;
        QTest::newRow("folder") << std::string("/.") << Failure::FileNotWritable;
        QTest::newRow("pipe") << std::string("/pipe") << Failure::FileNotWritable;
        QTest::newRow("link as part file") << std::string("/linked") << Failure::FileNotWritable;
        QTest::newRow("dangling link") << std::string("/link") << Failure::FileNotWritable;
    }

    void target()
    {
        QFETCH(const std::string, name);
        QFETCH(const Failure, failure);
        write(path("/file"), "x", QFile::WriteOnly);
        QCOMPARE(::mkfifo(path("/pipe").c_str(), 0600), 0);
        QCOMPARE(::symlink("/none/at/all", path("/link").c_str()), 0);
        QCOMPARE(::symlink("file", path("/linked.part").c_str()), 0);
        QCOMPARE(DownloadVideo(m_log->video("video", stream(), path(name))), 0);
        if (failure == Failure::Internal) {
            compareEnd("video", DOWN_STATE_DOWNLOAD_FINISH);
            QVERIFY(contentsOf(path(name)) == bytes());
        } else {
            compareFailure("video", failure);
            QCOMPARE(QDir(m_folder->path()).entryList({}, QDir::Files | QDir::System).join(u' '),
                     u"file link linked.part pipe"_s);
            QCOMPARE(contentsOf(path("/file")), std::string("x"));
            QCOMPARE(m_site->requestCount("/"), 0U);
        }
    }

    void unusableRecord_data()
    {
        QTest::addColumn<RecordChange>("change");
        const auto row = [](const char *name, const RecordChange &change) {
            QTest::newRow(name) << change;
        };
        row("key", [](tagTaskInfo &record) { record.szTaskKey[0] = '\0'; });
        row("callback", [](tagTaskInfo &record) { record.pfnStateCallback = nullptr; });
        row("address", [](tagTaskInfo &record) { record.szDownloadURL[0] = '\0'; });
        row("path", [](tagTaskInfo &record) { record.szSavePath[0] = '\0'; });
        row("no end", [](tagTaskInfo &record) {
            std::memset(record.szDownloadURL, 'x', sizeof record.szDownloadURL);
        });
    }

    void unusableRecord()
    {
        QFETCH(const RecordChange, change);
        tagTaskInfo record = video();
        change(record);
        QCOMPARE(DownloadVideo(record), -1);
        QCOMPARE(ParseVideoInfo(record), -1);
        QCOMPARE(StopDownload("video"), -1);
        QCOMPARE(SuspendedDownload("video"), -1);
        compareFiles({});
    }

    void transientFaultsAreRetried()
    {
        misbehave([](Misbehaviour &fault) { fault.cutAfter = 20; }, 1);
        answerWith(408, "text/plain", 1);
        tagTaskInfo parse = m_log->parse("page", m_site->pageAddress("small-1"));
        parse.nEngineParam2 = 3;
        QCOMPARE(ParseVideoInfo(parse), 0);
        compareEnd("page", DOWN_STATE_PARSE_SUCCESS);
        QCOMPARE(m_site->requestCount("/get_video_info"), 3U);
        QCOMPARE(ParseVideoInfo(m_log->parse("again", m_site->pageAddress("small-1"))), 0);
        QCOMPARE(m_log->end("page").text, m_log->end("again").text);
        QCOMPARE(m_log->events("page")[1].value, 2.0);
        QCOMPARE(m_log->events("page")[2].value, 3.0);

        answerWith(503, "text/plain");
        QCOMPARE(DownloadVideo(video("video", 2)), 0);
        compareEnd("video", DOWN_STATE_DOWNLOAD_FAIL, 503);
        QCOMPARE(m_site->requestCount("/stream"), 2U);
    }

    void laterAnswers_data()
    {
        QTest::addColumn<std::string>("validator"); // of the first answer, four bytes of ten
        QTest::addColumn<std::string>("condition"); // of the second request
        QTest::addColumn<std::string>("second");
        QTest::addColumn<std::string>("third");
        QTest::addColumn<std::string>("range"); // of the third request
        const std::string tag = "ETag: \"a\"\r\n";
        const std::string strong = "If-Range: \"a\"\r\n";
        const std::string whole =
            answer("200 OK", tag + "Content-Encoding: identity\r\n", "0123456789");
        const auto over = [=](const char *name, const std::string &headers,
                              const std::string &status = "206 Partial Content") {
            QTest::newRow(name) << tag << strong << answer(status, headers, "xxxxxx") << whole
                                << std::string();
        };
        over("earlier start", "Content-Range: bytes 3-9/10\r\n");
        over("other size", "Content-Range: bytes 4-9/11\r\n");
        over("other file", "Content-Range: bytes 4-9/10\r\nETag: \"b\"\r\n");
        over("more than the range", "Content-Range: bytes 4-8/10\r\n");
        over("end beyond the size", "Content-Range: bytes 4-10/10\r\n");
        over("no number", "Content-Range: bytes 4-9/10x\r\n");
        over("no range", {});
        over("none left", "Content-Range: bytes */10\r\n", "416 Range Not Satisfiable");
        QTest::newRow("rest") << tag << strong
                              << answer("206 Partial Content", "Content-Range: bytes 4-9/10\r\n",
                                        "456789")
                              << std::string() << std::string();
        QTest::newRow("no ranges") << tag << strong << whole << std::string() << std::string();
        QTest::newRow("less than the rest")
            << tag << strong
            << answer("206 Partial Content", "Content-Range: bytes 4-7/*\r\n", "4567")
            << answer("206 Partial Content", "Content-Range: bytes 8-9/10\r\n", "89")
            << std::string("bytes=8-");
        QTest::newRow("shorter file") << tag << strong << answer("206 Partial Content", {}, "x")
                                      << answer("200 OK", tag, "01") << std::string();
        QTest::newRow("shorter file without length")
            << tag << strong << answer("206 Partial Content", {}, "x")
            << std::string("HTTP/1.1 200 OK\r\n\r\n01") << std::string();
        const std::string date = "Date: Mon, 23 Nov 2026 10:01:00 GMT\r\n";
        const std::string old = "Mon, 23 Nov 2026 10:00:00 GMT\r\n";
        const auto dated = [=](const char *name, const std::string &headers, bool isStrong) {
            QTest::newRow(name) << date + headers << (isStrong ? "If-Range: " + old : std::string())
                                << answer("503 Busy", {}, "x") << whole
                                << std::string(isStrong ? "bytes=4-" : "");
        };
        dated("old date", "Last-Modified: " + old, true);
        dated("fresh date", "Last-Modified: Mon, 23 Nov 2026 10:00:01 GMT\r\n", false);
        dated("weak tag", "ETag: W/\"a\"\r\nLast-Modified: " + old, false);
    }

    void laterAnswers()
    {
        QFETCH(const std::string, validator);
        QFETCH(const std::string, condition);
        QFETCH(const std::string, second);
        QFETCH(const std::string, third);
        QFETCH(const std::string, range);
        FaultServer server(
            {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n" + validator + "\r\n0123", second, third});
        tagTaskInfo record = m_log->video("video", server.address(), path("/video.flv"));
        record.nEngineParam2 = 3;
        QCOMPARE(DownloadVideo(record), 0);
        compareEnd("video", DOWN_STATE_DOWNLOAD_FINISH);
        const bool isShorter = !third.empty() && third.back() == '1';
        QCOMPARE(contentsOf(path("/video.flv")), std::string(isShorter ? "01" : "0123456789"));
        QCOMPARE(lastValue("video", DOWN_STATE_FILE_SIZE), isShorter ? 2.0 : 10.0);
        const bool isContinued = QByteArray(QTest::currentDataTag()).endsWith("rest");
        QCOMPARE(m_log->count("video", DOWN_STATE_NO_RESUME), isContinued ? 0 : 1);
        compareFiles({u"video.flv"_s});
        const QList<std::string> requests = server.requests();
        QCOMPARE(requests.size(), third.empty() ? 2 : 3);
        const auto has = [&requests](int number, const std::string &text) {
            return requests[number].find(text) != std::string::npos;
        };
        QCOMPARE(has(1, "Range: bytes=4-\r\n"), !condition.empty());
        QVERIFY(has(1, condition));
        QCOMPARE(!third.empty() && has(2, "Range:"), !range.empty());
        QVERIFY(third.empty() || has(2, range));
    }

    /** A part that starts over leaves nothing of the old one, on the disk neither. */
    void partFile()
    {
        const QString facts = QFile::decodeName(path("/.video.part-info").c_str());
        taskengine::PartFile part;
        QVERIFY(!part.open(path("/video"), "key"));
        part.remember(10, "\"a\"");
        QVERIFY(!part.append("0123", 4));
        part.note();
        QVERIFY(QFile::exists(facts) && part.canContinue());
        QVERIFY(!part.restart());
        QVERIFY(!QFile::exists(facts) && !part.canContinue() && part.size() == 0);
        QCOMPARE(contentsOf(path("/video.part")), std::string());

        rlimit old = {};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &old), 0);
        const rlimit tight = {2, old.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tight), 0);
        const auto fault = part.append("0123", 4);
        ::setrlimit(RLIMIT_FSIZE, &old);
        (void)std::signal(SIGXFSZ, handler);
        QVERIFY(fault && fault->is(Failure::FileTooLarge));
        QCOMPARE(part.size(), 2);
        const auto commit = part.commit(path("/none/video"));
        QVERIFY(commit && commit->is(Failure::FolderMissing));
    }

    void lastStep_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<bool>("isImage");
        QTest::addColumn<bool>("isAnnounced");
        QTest::addColumn<QStringList>("files");
        const QString name = u"target"_s;
        const QString part = u"target.part"_s;
        const QString facts = u".target.part-info"_s;
        const auto row = [](const char *title, const char *what, bool isImage, bool isAnnounced,
                            const QStringList &files) {
            QTest::newRow(title) << QString::fromLatin1(what) << isImage << isAnnounced << files;
        };
        row("size announced", "finish", false, true, {name});
        row("size found out", "finish", false, false, {name});
        row("video fails", "folder", false, true, {facts, name, part});
        row("image fails", "folder", true, true, {name});
        row("part is gone", "gone", false, true, {});
        row("quit", "quit", false, true, {facts, part});
        row("quit, size found out", "quit", false, false, {});
    }

    /** A video takes its name once the callback that tells its size has returned, if it can. */
    void lastStep()
    {
        QFETCH(const QString, what);
        QFETCH(const bool, isImage);
        QFETCH(const bool, isAnnounced);
        QFETCH(const QStringList, files);
        const tagDownloadStateCode held =
            isImage ? DOWN_STATE_START_DOWNLOAD : DOWN_STATE_FILE_SIZE;
        const std::string file = path("/target");
        QSemaphore gate;
        std::atomic<int> refused{1};
        std::atomic<bool> wasThere{false}; // when the failure was told
        m_log->hook = [&](const LoggedEvent &event) {
            if (event.code == DOWN_STATE_DOWNLOAD_FAIL)
                wasThere = QFile::exists(QFile::decodeName(file.c_str()));
            if (event.key != "key" || event.code != held)
                return;
            gate.acquire();
            if (what != u"quit") // from here: it is over when that returns
                return;
            Quit();
            refused = DownloadVideo(video("late"));
        };
        misbehave([=](Misbehaviour &fault) {
            fault.prefix = "/stream/small-1/34", fault.unannounced = !isAnnounced;
            if (isImage)
                fault.answer = SiteAnswer{200, "image/jpeg", {}, std::string(videoSize, 'x')};
        });
        QCOMPARE(isImage ? DownloadImage(m_log->image("key", stream(), file))
                         : DownloadVideo(m_log->video("key", stream(), file)),
                 0);
        QVERIFY(m_log->waitFor("key", held));
        QTRY_COMPARE_WITH_TIMEOUT(contentsOf(file + ".part").size(), videoSize, 60000);
        // What ends later has seen the end of the other one's transfer handled.
        QCOMPARE(DownloadVideo(m_log->video("other", stream(18), path("/other"))), 0);
        compareEnd("other", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(QFile::remove(QFile::decodeName(path("/other").c_str())));
        QCOMPARE(contentsOf(file), std::string());
        QCOMPARE(m_log->events("key").last().code, held);
        if (what == u"folder")
            QVERIFY(QFile::remove(QFile::decodeName(file.c_str())) &&
                    QDir(m_folder->path()).mkdir(u"target"_s));
        if (what == u"gone")
            QVERIFY(QFile::remove(QFile::decodeName((file + ".part").c_str())));
        gate.release();
        if (what == u"quit") {
            QTRY_COMPARE_WITH_TIMEOUT(refused.load(), -1, 60000);
            QCOMPARE(Quit(), 0); // waits for the callback
            QCOMPARE(m_log->events("key").last().code, held);
        } else {
            if (what == u"finish")
                compareEnd("key", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
            else
                compareFailure("key", what == u"folder" ? Failure::FileNotWritable
                                                        : Failure::FolderMissing);
            QCOMPARE(contentsOf(file) == bytes(), what == u"finish");
            QCOMPARE(lastValue("key", DOWN_STATE_DOWNLOAD_PROGRESS), double(videoSize));
            QCOMPARE(Quit(), 0); // waits for the callback
            QCOMPARE(wasThere, what == u"folder");
        }
        compareFiles(files);
    }

    void leftPart_data()
    {
        QTest::addColumn<std::string>("key");
        QTest::addColumn<std::string>("part"); // left by an earlier request with the key "video"
        QTest::addColumn<QList<std::string>>("answers");
        QTest::addColumn<std::string>("range"); // of the first request
        const std::string all = "0123456789";
        const auto row = [](const char *name, const char *key, const std::string &part,
                            const QList<std::string> &answers, const char *range) {
            QTest::newRow(name) << std::string(key) << part << answers << std::string(range);
        };
        const auto none = [](const char *size) {
            const std::string range = "Content-Range: bytes */" + std::string(size) + "\r\n";
            return answer("416 Range Not Satisfiable", range, "x");
        };
        row("same video", "video", "0123",
            {answer("206 Partial Content", "Content-Range: bytes 4-9/10\r\n", "456789")},
            "bytes=4-");
        row("other video", "other", "0123", {answer("200 OK", {}, all)}, "");
        row("gone", "video", "0123", {answer("404 Not Found", {}, "x")}, "bytes=4-");
        row("complete", "video", all, {none("10")}, "bytes=10-");
        row("other size", "video", all, {none("11"), answer("200 OK", {}, all)}, "bytes=10-");
    }

    void leftPart()
    {
        QFETCH(const std::string, key);
        QFETCH(const std::string, part);
        QFETCH(const QList<std::string>, answers);
        QFETCH(const std::string, range);
        taskengine::PartFile left;
        QVERIFY(!left.open(path("/video.flv"), "video"));
        left.remember(10, "\"a\"");
        QVERIFY(!left.append(part.data(), part.size()));
        left.keep();
        compareFiles({u".video.flv.part-info"_s, u"video.flv.part"_s});
        FaultServer server(answers);
        tagTaskInfo record = m_log->video(key, server.address(), path("/video.flv"));
        record.nEngineParam2 = 2;
        QCOMPARE(DownloadVideo(record), 0);
        const bool isGone = m_log->end(key).value == 404;
        compareEnd(key, isGone ? DOWN_STATE_DOWNLOAD_FAIL : DOWN_STATE_DOWNLOAD_FINISH);
        compareFiles(isGone ? QStringList() : QStringList(u"video.flv"_s));
        QCOMPARE(contentsOf(path("/video.flv")), isGone ? "(no file)" : "0123456789");
        const QList<std::string> requests = server.requests();
        QCOMPARE(requests.size(), answers.size());
        QCOMPARE(requests[0].find("Range:") == std::string::npos, range.empty());
        QVERIFY(requests[0].find(range) != std::string::npos);
    }

    void equalPathsDoNotMix()
    {
        misbehave([](Misbehaviour &fault) { fault.holdAfter = 1000; }, 1);
        QVERIFY(!QFile::exists(QFile::decodeName(path("/video.flv").c_str())));
        QCOMPARE(DownloadVideo(video("first")), 0);
        QVERIFY(QFile::exists(QFile::decodeName(path("/video.flv").c_str())));
        QVERIFY(m_log->waitFor("first", DOWN_STATE_DOWNLOAD_PROGRESS));
        QCOMPARE(DownloadVideo(video("first")), -1);
        QCOMPARE(DownloadVideo(video("second")), 0);
        compareFailure("second", Failure::FileInUse);
        QVERIFY(m_site->waitForHeld(1, std::chrono::seconds(60)));
        m_site->release();
        compareEnd("first", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(contentsOf(path("/video.flv")) == bytes());
    }

    void stop_data()
    {
        QTest::addColumn<QString>("what");
        for (const char *what : {"video", "image", "retry", "paused retry", "parse", "command"})
            QTest::newRow(what) << QString::fromLatin1(what);
    }

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
        const auto send = [&] {
            return isParse   ? ParseVideoInfo(record)
                   : isVideo ? DownloadVideo(record)
                             : DownloadImage(record);
        };
        QCOMPARE(send(), 0);
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
            write(path("/image.jpg"), "his", QFile::WriteOnly);
            QCOMPARE(StopDownload("key"), 0);
            QTRY_COMPARE_WITH_TIMEOUT(m_log->count("key", DOWN_STATE_USER_STOP), 2, 60000);
            compareFiles({u"image.jpg"_s});
        }
        QCOMPARE(send(), 0);
    }

    void suspend_data()
    {
        QTest::addColumn<QString>("what");
        for (const char *what : {"transfer", "retry", "command"})
            QTest::newRow(what) << QString::fromLatin1(what);
    }

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
        const auto send = [&](const std::string &key, const std::string &address) {
            tagTaskInfo record = isCommand ? m_log->parse(key, "http://127.0.0.1/a")
                                           : m_log->video(key, address, path("/" + key));
            record.nEngineParam2 = what == u"retry" && key != "late" ? 2 : 1;
            record.nEngineParam3 = 1000;
            return isCommand ? ParseVideoInfo(record) : DownloadVideo(record);
        };
        QCOMPARE(send("paused", stream()), 0);
        QVERIFY(m_log->waitFor("paused", isCommand          ? DOWN_STATE_START_PARSE
                                         : what == u"retry" ? DOWN_STATE_RETRY_DOWNLOAD
                                                            : DOWN_STATE_FILE_SIZE));
        QCOMPARE(SuspendedDownload("paused"), 0);
        QCOMPARE(send("late", stream() + "?late"), 0);
        compareFailure("late", Failure::TimedOut);
        QVERIFY(!isTerminal(m_log->events("paused").last().code));
        write(path("/go"), "", QFile::WriteOnly);
        QCOMPARE(SuspendedDownload("paused"), 0);
        QCOMPARE(DownloadVideo(m_log->video("next", stream(18), path("/next"))), 0);
        compareEnd("next", DOWN_STATE_DOWNLOAD_FINISH); // time to judge the other one's speed
        m_site->release();
        compareEnd("paused", isCommand ? DOWN_STATE_PARSE_SUCCESS : DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(isCommand || contentsOf(path("/paused")) == bytes());
    }

    /** Wherever a pause meets the answer, a page in the place of the video is told from the video.
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
            QVERIFY(!QFile::exists(QFile::decodeName(path(name).c_str())));

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
            yield(100);
            --active;
        };
        misbehave([](Misbehaviour &fault) { fault.prefix = "/stream", fault.holdAfter = 1000; });
        for (int round = 0; round < 60; ++round) {
            QCOMPARE(DownloadInit(), 0);
            told = 0;
            for (const std::string key : {"a", "b", "c", "d", "e", "f"}) {
                const tagTaskInfo record = m_log->video(key, stream(), path("/" + key));
                const tagTaskInfo page = m_log->parse(key, m_site->pageAddress("small-1"));
                const tagTaskInfo image = m_log->image(key, thumbnail(), path("/" + key));
                const int kind = random.bounded(3);
                QCOMPARE(kind == 0   ? DownloadVideo(record)
                         : kind == 1 ? DownloadImage(image)
                                     : ParseVideoInfo(page),
                         0);
                if (random.bounded(3) == 0)
                    SuspendedDownload(key.c_str());
                if (random.bounded(6) == 0)
                    StopDownload(key.c_str());
            }
            const int wanted = random.bounded(20); // more than there are, now and then
            for (int wait = 0; told < wanted && wait < 5000; ++wait)
                yield(1);
            QCOMPARE(Quit(), 0);
            QCOMPARE(active.load(), 0);
            m_site->release();
        }
    }

    void proxy_data()
    {
        QTest::addColumn<ProxyType>("type");
        QTest::addColumn<std::string>("host");
        QTest::addColumn<std::string>("password");
        QTest::addColumn<double>("failure");
        const auto row = [](const char *name, ProxyType type, const char *host,
                            const char *password, double failure) {
            QTest::newRow(name) << type << std::string(host) << std::string(password) << failure;
        };
        const char *const known = "127.0.0.1:1";
        const char *const unknown = "video.invalid";
        const auto refused = static_cast<double>(Failure::ProxyFailed);
        row("HTTP", ProxyType::Http, unknown, "pass", 0);
        row("SOCKS5", ProxyType::Socks5, known, "pass", 0);
        row("SOCKS5 with the proxy's names", ProxyType::Socks5RemoteNames, unknown, "pass", 0);
        row("HTTP, wrong password", ProxyType::Http, unknown, "x", 407);
        row("SOCKS5, wrong password", ProxyType::Socks5, known, "x", refused);
    }

    /** The record says it alone, whatever the environment says. Only the proxy knows the hosts. */
    void proxy()
    {
        QFETCH(const ProxyType, type);
        QFETCH(const std::string, host);
        QFETCH(const std::string, password);
        QFETCH(const double, failure);
        QVERIFY(m_site->startProxy("user", "pass"));
        qputenv("http_proxy", "http://127.0.0.1:1");
        QCOMPARE(DownloadVideo(video("direct")), 0);
        compareEnd("direct", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
        qunsetenv("http_proxy");

        qputenv("no_proxy", "*");
        tagTaskInfo record =
            m_log->video("key", "http://" + host + "/stream/small-1/34", path("/x"));
        record.nProxySet = 1;
        EventLog::copy(record.proxyParam.szProxyText1, "127.0.0.1");
        record.proxyParam.nProxyValue1 = m_site->proxyPort();
        record.proxyParam.nProxyValue2 = static_cast<std::int32_t>(type);
        EventLog::copy(record.proxyParam.szProxyText2, "user");
        EventLog::copy(record.proxyParam.szProxyText3, password);
        QCOMPARE(DownloadVideo(record), 0);
        compareEnd("key", failure > 0 ? DOWN_STATE_DOWNLOAD_FAIL : DOWN_STATE_DOWNLOAD_FINISH,
                   failure > 0 ? failure : videoSize);
        qunsetenv("no_proxy");
    }

    void proxyWithoutHost()
    {
        tagTaskInfo record = video();
        record.nProxySet = 1;
        QCOMPARE(DownloadVideo(record), 0);
        compareFailure("video", Failure::ProxyFailed);
        QCOMPARE(m_site->requestCount("/"), 0U);
    }

    void certificateMustBeTrusted()
    {
        QVERIFY(m_site->startTls());
        const std::string address = m_site->secureAddress() + "/stream/small-1/34";
        QCOMPARE(DownloadVideo(m_log->video("bad", address, path("/bad.flv"))), 0);
        compareFailure("bad", Failure::TlsFailed);
        compareFiles({});
        m_options.caFile = path("/trusted.pem");
        write(m_options.caFile, m_site->certificate(), QFile::WriteOnly);
        taskengine::setOptions(m_options);
        QCOMPARE(DownloadVideo(m_log->video("good", address, path("/good.flv"))), 0);
        compareEnd("good", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
    }

    void progressMeter()
    {
        using Milliseconds = std::chrono::milliseconds;
        taskengine::ProgressMeter meter;
        const taskengine::ProgressMeter::Time start{std::chrono::hours(1)};
        meter.restart(100, start);
        QVERIFY(meter.progress(200, start) == 200);
        QVERIFY(!meter.progress(300, start + Milliseconds(249)));
        QVERIFY(!meter.progress(200, start + Milliseconds(250)));
        QVERIFY(meter.progress(300, start + Milliseconds(250)) == 300);
        QVERIFY(!meter.speed(200, start + Milliseconds(999)));
        QCOMPARE(*meter.speed(300, start + Milliseconds(2000)), 100.0);
        QVERIFY(!meter.speed(400, start + Milliseconds(2999)));
        QCOMPARE(*meter.speed(400, start + Milliseconds(3000)), 100.0);
    }

    void delays_data()
    {
        QTest::addColumn<qint64>("delay");
        QTest::addColumn<qint64>("expected");
        const auto row = [](const char *name, std::chrono::milliseconds delay, qint64 expected) {
            QTest::newRow(name) << qint64(delay.count()) << expected;
        };
        row("second try", taskengine::delayBefore(2, 500), 500);
        row("third try", taskengine::delayBefore(3, 500), 1000);
        row("fifth try", taskengine::delayBefore(5, 500), 4000);
        row("longest", taskengine::delayBefore(100, 500), 30000);
        row("longest at once", taskengine::delayBefore(2, 40000), 30000);
        row("negative", taskengine::delayBefore(5, -1), 0);
        row("site asks", taskengine::retryAfterDelay(2), 2000);
        row("site asks too much", taskengine::retryAfterDelay(31), 30000);
        row("site asks for the past", taskengine::retryAfterDelay(-1), 0);
    }

    void delays()
    {
        QFETCH(const qint64, delay);
        QTEST(delay, "expected");
    }

    /** The site asks for more patience than the request has, which also holds up nobody else. */
    void retryAfterIsHonoured()
    {
        const auto refuseOnce = [this](const std::string &query, const char *header) {
            misbehave(
                [&](Misbehaviour &fault) {
                    fault.prefix = "/stream/small-1/34?" + query;
                    fault.answer = SiteAnswer{429, "text/plain", {{header, "30"}}, "x"};
                },
                1);
            tagTaskInfo record = m_log->video(query, stream() + "?" + query, path("/" + query));
            record.nEngineParam2 = 2;
            record.nEngineParam3 = 200;
            QCOMPARE(DownloadVideo(record), 0);
        };
        refuseOnce("patient", "Retry-After");
        refuseOnce("other", "X-Other");
        compareEnd("other", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
        QCOMPARE(m_site->requestCount("/stream/small-1/34?patient"), 1U);
        QCOMPARE(StopDownload("patient"), 0);
        compareEnd("patient", DOWN_STATE_USER_STOP);
    }

private: // NOLINT(readability-redundant-access-specifiers): slots end here
    std::string path(const std::string &name) const
    {
        return m_folder->path().toStdString() + name;
    }
    std::string stream(int format = 34) const
    {
        return m_site->baseAddress() + "/stream/small-1/" + std::to_string(format);
    }
    std::string thumbnail() const { return m_site->baseAddress() + "/thumbnail/small-1.jpg"; }
    std::string bytes() const { return smallVideoBytes(1, 34, videoSize); }
    tagTaskInfo video(const std::string &key = "video", std::int32_t tries = 1) const
    {
        tagTaskInfo record = m_log->video(key, stream(), path("/video.flv"));
        record.nEngineParam2 = tries;
        return record;
    }

    void misbehave(const Change &change, unsigned firstRequests = 0) const
    {
        Misbehaviour misbehaviour;
        misbehaviour.firstRequests = firstRequests;
        change(misbehaviour);
        m_site->addMisbehaviour(misbehaviour);
    }

    void answerWith(int status, const char *type, unsigned firstRequests = 0) const
    {
        misbehave(
            [=](Misbehaviour &fault) {
                fault.answer = SiteAnswer{status, type, {}, "x"};
            },
            firstRequests);
    }

    void compareEnd(const std::string &key, tagDownloadStateCode code, double value = -1)
    {
        const LoggedEvent event = m_log->end(key);
        QVERIFY2(event.code == code,
                 qPrintable(u"code %1, value %2"_s.arg(event.code).arg(event.value)));
        if (value >= 0)
            QCOMPARE(event.value, value);
    }

    void compareFailure(const std::string &key, Failure failure)
    {
        const bool isParse = m_log->count(key, DOWN_STATE_START_PARSE) > 0 ||
                             m_log->end(key).code == DOWN_STATE_PARSE_FAIL;
        compareEnd(key, isParse ? DOWN_STATE_PARSE_FAIL : DOWN_STATE_DOWNLOAD_FAIL,
                   static_cast<double>(failure));
    }

    double lastValue(const std::string &key, tagDownloadStateCode code) const
    {
        double value = -1;
        for (const LoggedEvent &event : m_log->events(key))
            value = event.code == code ? event.value : value;
        return value;
    }

    QStringList fileNames() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    void compareFiles(const QStringList &names) const { QCOMPARE(fileNames(), names); }

    std::unique_ptr<EventLog> m_log;
    std::unique_ptr<VideoSite> m_site;
    std::unique_ptr<QTemporaryDir> m_folder;
    taskengine::Options m_options;
};

QTEST_GUILESS_MAIN(TestTaskEngine)
#include "tst_taskengine.moc"
