/** Transfers: what arrives, faults and tries, proxies, certificates, progress. */
#include "enginefixture.h"
#include "taskengine/progressmeter.h"
#include "taskengine/retrydelay.h"

using namespace std::chrono_literals;
using taskengine::ProxyType;

Q_DECLARE_METATYPE(ProxyType)

class TransfersTest : public EngineFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { finish(); }

    void downloadsAreExact()
    {
        m_options.lowSpeedTime = std::chrono::seconds(1);
        taskengine::setOptions(m_options);
        misbehave([](Misbehaviour &fault) {
            fault.prefix = "/stream", fault.bytesPerSecond = videoSize * 3 / 7;
        });
        write(path("/video.flv"), "the old video");
        QCOMPARE(DownloadVideo(video()), 0);
        QCOMPARE(DownloadImage(m_log->image("video1", thumbnail(), path("/video.jpg"))), 0);
        compareEnd("video", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
        compareEnd("video1", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(contentsOf(path("/video.flv")) == bytes());
        compareFiles({u"video.flv"_s, u"video.jpg"_s});

        const QList<LoggedEvent> events = m_log->events("video");
        QCOMPARE(events.first().code, DOWN_STATE_START_DOWNLOAD);
        const auto lastProgress = std::find_if(events.rbegin(), events.rend(), [](const auto &one) {
            return one.code == DOWN_STATE_DOWNLOAD_PROGRESS;
        });
        QVERIFY(lastProgress != events.rend()); // a speed may follow it
        QCOMPARE(lastProgress->value, static_cast<double>(videoSize));
        QCOMPARE(m_log->count("video", DOWN_STATE_FILE_SIZE), 1);
        QCOMPARE(m_log->count("video1", DOWN_STATE_FILE_SIZE), 0);
        QCOMPARE(m_log->end("video1").type, FILE_TYPE_IMAGE);
    }

    void downloadFailure_data()
    {
        const auto row = table<bool, Failure, Change>("isImage", "failure", "change");
        const auto answering = [&row](const char *name, bool isImage, Failure failure, int status,
                                      const std::string &type, const std::string &body) {
            row(name, isImage, failure, [=](Misbehaviour &fault) {
                fault.answer = SiteAnswer{status, type, {{"Location", body}}, body};
            });
        };
        answering("not found", false, Failure{404}, 404, "video/x-flv", "x");
        answering("no range asked for", false, Failure{416}, 416, "video/x-flv", "x");
        answering("server error", true, Failure{500}, 500, "text/html", "x");
        answering("page", false, Failure::NotMedia, 200, "text/html; charset=utf-8", "x");
        answering("list", false, Failure::NotMedia, 200, "Application/JSON", "{}");
        answering("feed", false, Failure::NotMedia, 200, "application/rss+xml", "x");
        answering("video for an image", true, Failure::NotMedia, 200, "video/mp4", "x");
        answering("empty", false, Failure::EmptyResponse, 200, "video/mp4", "");
        answering("large image", true, Failure::ResponseTooLarge, 200, "image/jpeg",
                  std::string(2000, 'x'));
        answering("endless redirects", false, Failure::TooManyRedirects, 302, "", "/again");
        answering("redirect to a file", false, Failure::ForbiddenProtocol, 302, "",
                  "file:///etc/hostname");
        row("two lengths", false, Failure::MalformedResponse,
            [](Misbehaviour &fault) { fault.twoLengths = true; });
        row("flood of headers", false, Failure::MalformedResponse,
            [](Misbehaviour &fault) { fault.headerBytes = 270000; });
        row("endless image", true, Failure::ResponseTooLarge, [](Misbehaviour &fault) {
            fault.endless = true;
            fault.answer = SiteAnswer{200, "image/jpeg", {}, "x"};
        });
        row("compressed", false, Failure::NotMedia,
            [](Misbehaviour &fault) { fault.answer = gzipBomb(100000); });
        row("short", false, Failure::ShortBody, [](Misbehaviour &fault) {
            fault.cutAfter = 1000;
            fault.entityTag = "W/\"weak\""; // so that nothing is kept to be continued
        });
        row("slow header", true, Failure::TimedOut,
            [](Misbehaviour &fault) { fault.headerLatency = std::chrono::seconds(5); });
        row("stalled", true, Failure::TimedOut,
            [](Misbehaviour &fault) { fault.latency = std::chrono::seconds(5); });
    }

    void downloadFailure()
    {
        QFETCH(const bool, isImage);
        QFETCH(const Change, change);
        QFETCH(const Failure, failure);
        m_options.imageLimit = 1000;
        if (failure == Failure::TimedOut)
            m_options.lowSpeedTime = std::chrono::milliseconds(50);
        taskengine::setOptions(m_options);
        misbehave(change);
        write(path("/old"), "old");
        for (const std::string key : {"old", "new"}) {
            tagTaskInfo record = m_log->video(key, stream(), path("/" + key));
            record.nFileType = isImage ? FILE_TYPE_IMAGE : FILE_TYPE_VIDEO;
            QCOMPARE(send(record), 0);
            compareFailure(key, failure);
        }
        compareFiles({u"old"_s});
        QCOMPARE(contentsOf(path("/old")), std::string("old"));
        QVERIFY(m_site->requestCount("/again") <= 20); // ten redirects each
        QVERIFY(taskengine::failureText(static_cast<double>(failure)) != "unknown cause");
    }

    void faultyServer_data()
    {
        const auto row = table<std::string, Failure>("response", "failure");
        const std::string head = "HTTP/1.1 200 OK\r\n";
        row("silent", "", Failure::ConnectionLost);
        row("not HTTP", "hello\r\n\r\n", Failure::MalformedResponse);
        row("larger than the disk", head + "Content-Length: 4611686018427387904\r\n\r\nx",
            Failure::DiskFull);
        row("range without being asked",
            answer("206 Partial Content", "Content-Range: bytes 5-5/9\r\n", "x"),
            Failure::MalformedResponse);
        row("chunks that break off",
            head + "Content-Type: video/mp4\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nab",
            Failure::ShortBody);
        row("no TLS", "no TLS", Failure::TlsFailed);
        row("nobody there", "", Failure::ConnectionFailed);
        row("no such host", "", Failure::UnknownHost);
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

    /** What a body has too much of is not taken for the next answer on the connection. */
    void strayBytesAreNoAnswer()
    {
        const std::string whole = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n0123456789";
        FaultServer server({whole + FaultServer::nextRequest + "too much\r\n\r\n", whole});
        for (const char *key : {"one", "two"}) {
            tagTaskInfo video = m_log->video(key, server.address(), path("/video.flv"));
            video.nEngineParam2 = 2;
            QCOMPARE(DownloadVideo(video), 0);
            compareEnd(key, DOWN_STATE_DOWNLOAD_FINISH);
            QCOMPARE(contentsOf(path("/video.flv")), std::string("0123456789"));
        }
        QCOMPARE(server.requests().size(), 3);
        QCOMPARE(m_log->count("two", DOWN_STATE_RETRY_DOWNLOAD), 1);
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

    void delays()
    {
        using taskengine::delayBefore;
        using taskengine::retryAfterDelay;
        const std::pair<std::chrono::milliseconds, int> rows[] = {
            {delayBefore(2, 500), 500},     {delayBefore(3, 500), 1000},
            {delayBefore(5, 500), 4000},    {delayBefore(100, 500), 30000},
            {delayBefore(2, 40000), 30000}, {delayBefore(5, -1), 0},
            {retryAfterDelay(2), 2000},     {retryAfterDelay(31), 30000},
            {retryAfterDelay(-1), 0}};
        for (const auto &[delay, expected] : rows)
            QCOMPARE(delay.count(), expected);
    }

    void proxy_data()
    {
        const auto row = table<ProxyType, std::string, std::string, Failure>("type", "host",
                                                                             "password", "failure");
        row("HTTP", ProxyType::Http, "video.invalid", "pass", none);
        row("SOCKS5", ProxyType::Socks5, "127.0.0.1:1", "pass", none);
        row("SOCKS5 with the proxy's names", ProxyType::Socks5RemoteNames, "video.invalid", "pass",
            none);
        row("HTTP, wrong password", ProxyType::Http, "video.invalid", "x", Failure{407});
        row("no proxy named", ProxyType::Http, "127.0.0.1:1", "", Failure::ProxyFailed);
        row("SOCKS5, wrong password", ProxyType::Socks5, "127.0.0.1:1", "x", Failure::ProxyFailed);
    }

    /** The record says it alone, unless the environment is asked. Only the proxy knows the hosts.
     */
    void proxy()
    {
        QFETCH(const ProxyType, type);
        QFETCH(const std::string, host);
        QFETCH(const std::string, password);
        QFETCH(const Failure, failure);
        QVERIFY(m_site->startProxy("user", "pass"));
        qputenv("http_proxy", "http://127.0.0.1:1");
        QCOMPARE(DownloadVideo(video("direct")), 0);
        compareEnd("direct", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
        m_options.proxyFromEnvironment = true;
        m_options.tries = 2;
        taskengine::setOptions(m_options);
        QCOMPARE(DownloadVideo(video("by environment")), 0);
        compareFailure("by environment", Failure::ProxyFailed);
        QCOMPARE(m_log->count("by environment", DOWN_STATE_RETRY_DOWNLOAD), 1);
        m_options.tries = 0;
        taskengine::setOptions(m_options); // those of a request come first
        qunsetenv("http_proxy");

        qputenv("no_proxy", "*");
        tagTaskInfo record =
            m_log->video("key", "http://" + host + "/stream/small-1/34", path("/x"));
        record.nProxySet = 1;
        EventLog::copy(record.proxyParam.szProxyText1, password.empty() ? "" : "127.0.0.1");
        record.proxyParam.nProxyValue1 = m_site->proxyPort();
        record.proxyParam.nProxyValue2 = static_cast<std::int32_t>(type);
        EventLog::copy(record.proxyParam.szProxyText2, "user");
        EventLog::copy(record.proxyParam.szProxyText3, password);
        QCOMPARE(DownloadVideo(record), 0);
        compareOutcome("key", failure);
        qunsetenv("no_proxy");
    }

    void certificateMustBeTrusted()
    {
        QVERIFY(m_site->startTls());
        const std::string address = m_site->secureAddress() + "/stream/small-1/34";
        QCOMPARE(DownloadVideo(m_log->video("bad", address, path("/bad.flv"))), 0);
        compareFailure("bad", Failure::TlsFailed);
        compareFiles({});
        m_options.caFile = path("/trusted.pem");
        write(m_options.caFile, m_site->certificate());
        taskengine::setOptions(m_options);
        QCOMPARE(DownloadVideo(m_log->video("good", address, path("/good.flv"))), 0);
        compareEnd("good", DOWN_STATE_DOWNLOAD_FINISH, videoSize);
    }

    /** What the limit holds back is not slow, and goes on once the limit allows it. */
    void heldTransfersGoOn()
    {
        m_options.rateLimit = 1;                          // used up by the first piece
        m_options.lowSpeedTime = std::chrono::seconds(2); // long enough for a busy machine
        taskengine::setOptions(m_options);
        const std::string keys[] = {"first", "second", "paused"};
        for (const std::string &key : keys)
            QCOMPARE(DownloadVideo(m_log->video(key, stream(), path("/" + key))), 0);
        QVERIFY(m_log->waitFor("paused", DOWN_STATE_FILE_SIZE));
        QCOMPARE(SuspendedDownload("paused"), 0);
        misbehave([](Misbehaviour &fault) { fault.prefix = "/thumbnail", fault.latency = 5s; });
        tagTaskInfo slow = m_log->image("slow", thumbnail(), path("/slow"));
        slow.nEngineParam2 = 2;
        QCOMPARE(DownloadImage(slow), 0);
        compareFailure("slow", Failure::TimedOut);
        QCOMPARE(m_log->count({}, DOWN_STATE_DOWNLOAD_FINISH), 0);

        QCOMPARE(SuspendedDownload("paused"), 0);
        m_options.rateLimit = 4 * videoSize; // they take turns
        taskengine::setOptions(m_options);
        for (const std::string &key : keys) {
            compareEnd(key, DOWN_STATE_DOWNLOAD_FINISH, videoSize);
            QVERIFY(contentsOf(path("/" + key)) == bytes());
        }
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
};

QTEST_GUILESS_MAIN(TransfersTest)
#include "tst_transfers.moc"
