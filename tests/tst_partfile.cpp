/** What is kept of a video that is not whole yet, how it is continued, and how it gets its name. */
#include "enginefixture.h"
#include "taskengine/partfile.h"

#include <QSemaphore>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

std::atomic<bool> closeFails{false};

} // namespace

// The linker puts the first of these in the place of the system's call, which the second one is.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" int __real_close(int file);
extern "C" int __wrap_close(int file)
{
    const int result = __real_close(file);
    if (!closeFails)
        return result;
    errno = EIO;
    return -1;
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

class PartFileTest : public EngineFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { finish(); }

    void target_data()
    {
        const auto row = table<std::string, Failure>("name", "failure");
        row("longest name", "/" + std::string(255, 'n'), none);
        row("longer name", "/" + std::string(256, 'n'), Failure::NameTooLong);
        row("no folder", "/folder/video", Failure::FolderMissing);
        row("file as folder", "/file/video", Failure::FolderMissing);
        row("folder", "/.", Failure::FileNotWritable);
        row("pipe", "/pipe", Failure::FileNotWritable);
        row("link as part file", "/linked", Failure::FileNotWritable);
        row("dangling link", "/link", Failure::FileNotWritable);
    }

    void target()
    {
        QFETCH(const std::string, name);
        QFETCH(const Failure, failure);
        write(path("/file"), "x");
        QCOMPARE(::mkfifo(path("/pipe").c_str(), 0600), 0);
        QCOMPARE(::symlink("/none/at/all", path("/link").c_str()), 0);
        QCOMPARE(::symlink("file", path("/linked.part").c_str()), 0);
        QCOMPARE(DownloadVideo(m_log->video("video", stream(), path(name))), 0);
        compareOutcome("video", failure);
        QVERIFY(failure != none || contentsOf(path(name)) == bytes());
        if (failure != none) {
            compareFiles({u"file"_s, u"link"_s, u"linked.part"_s, u"pipe"_s});
            QCOMPARE(contentsOf(path("/file")), std::string("x"));
            QCOMPARE(m_site->requestCount("/"), 0U);
        }
    }

    void laterAnswers_data()
    {
        // The first answer is four bytes of ten with a validator; then the second request's
        // condition and its answer, the third answer, and the range that the third request asks
        // for.
        const auto row = table<std::string, std::string, std::string, std::string, std::string>(
            "validator", "condition", "second", "third", "range");
        const std::string tag = "ETag: \"a\"\r\n";
        const std::string strong = "If-Range: \"a\"\r\n";
        const std::string whole =
            answer("200 OK", tag + "Content-Encoding: identity\r\n", "0123456789");
        const auto part = [](const std::string &headers, const std::string &body = "xxxxxx") {
            return answer("206 Partial Content", headers, body);
        };
        const auto over = [=](const char *name, const std::string &second) {
            row(name, tag, strong, second, whole, "");
        };
        over("earlier start", part("Content-Range: bytes 3-9/10\r\n"));
        over("other size", part("Content-Range: bytes 4-9/11\r\n"));
        over("other file", part("Content-Range: bytes 4-9/10\r\nETag: \"b\"\r\n"));
        over("more than the range", part("Content-Range: bytes 4-8/10\r\n"));
        over("end beyond the size", part("Content-Range: bytes 4-10/10\r\n"));
        over("no number", part("Content-Range: bytes 4-9/10x\r\n"));
        over("no range", part({}));
        over("none left",
             answer("416 Range Not Satisfiable", "Content-Range: bytes */10\r\n", "x"));
        row("rest", tag, strong, part("Content-Range: bytes 4-9/10\r\n", "456789"), "", "");
        row("no ranges", tag, strong, whole, "", "");
        row("less than the rest", tag, strong, part("Content-Range: bytes 4-7/*\r\n", "4567"),
            part("Content-Range: bytes 8-9/10\r\n", "89"), "bytes=8-");
        row("shorter file", tag, strong, part({}), answer("200 OK", tag, "01"), "");
        row("shorter file without length", tag, strong, part({}), "HTTP/1.1 200 OK\r\n\r\n01", "");
        const std::string date = "Date: Mon, 23 Nov 2026 10:01:00 GMT\r\n";
        const std::string old = "Mon, 23 Nov 2026 10:00:00 GMT\r\n";
        const auto dated = [=](const char *name, const std::string &headers, bool isStrong) {
            row(name, date + headers, isStrong ? "If-Range: " + old : "",
                answer("503 Busy", {}, "x"), whole, isStrong ? "bytes=4-" : "");
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
        const QString facts = native(path("/.video.part-info"));
        taskengine::PartFile part;
        QVERIFY(!part.open(path("/video"), "key"));
        part.remember(10, "\"a\"");
        QVERIFY(!part.write(0, "0123", 4));
        part.saveFacts();
        QVERIFY(QFile::exists(facts) && part.canContinue());
        QVERIFY(!part.restart());
        QVERIFY(!QFile::exists(facts) && !part.canContinue() && part.size() == 0);
        QCOMPARE(contentsOf(path("/video.part")), std::string());

        rlimit old = {};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &old), 0);
        const rlimit tight = {2, old.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tight), 0);
        const auto fault = part.write(0, "0123", 4);
        ::setrlimit(RLIMIT_FSIZE, &old);
        (void)std::signal(SIGXFSZ, handler);
        QVERIFY(fault && fault->is(Failure::FileTooLarge));
        QCOMPARE(part.size(), 2);

        closeFails = true;
        const auto lost = part.commit(path("/video"));
        closeFails = false;
        QVERIFY(lost && lost->is(Failure::DiskError) && !QFile::exists(native(path("/video"))));
        const auto commit = part.commit(path("/none/video"));
        QVERIFY(commit && commit->is(Failure::FolderMissing));
    }

    void lastStep_data()
    {
        const auto row =
            table<QString, bool, bool, QStringList>("what", "isImage", "isAnnounced", "files");
        const QString name = u"target"_s;
        const QString part = u"target.part"_s;
        const QString facts = u".target.part-info"_s;
        row("size announced", u"finish"_s, false, true, {name});
        row("size found out", u"finish"_s, false, false, {name});
        row("video fails", u"folder"_s, false, true, {facts, name, part});
        row("image fails", u"folder"_s, true, true, {name});
        row("part is gone", u"gone"_s, false, true, {});
        row("quit", u"quit"_s, false, true, {facts, part});
        row("quit, size found out", u"quit"_s, false, false, {});
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
                wasThere = QFile::exists(native(file));
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
        QCOMPARE(send(isImage ? m_log->image("key", stream(), file)
                              : m_log->video("key", stream(), file)),
                 0);
        QVERIFY(m_log->waitFor("key", held));
        QTRY_COMPARE_WITH_TIMEOUT(contentsOf(file + ".part").size(), videoSize, 60000);
        // What ends later has seen the end of the other one's transfer handled.
        QCOMPARE(DownloadVideo(m_log->video("other", stream(18), path("/other"))), 0);
        compareEnd("other", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(QFile::remove(native(path("/other"))));
        QCOMPARE(contentsOf(file), std::string());
        QCOMPARE(m_log->events("key").last().code, held);
        if (what == u"folder")
            QVERIFY(QFile::remove(native(file)) && QDir(m_folder->path()).mkdir(u"target"_s));
        if (what == u"gone")
            QVERIFY(QFile::remove(native(file + ".part")));
        gate.release();
        if (what == u"quit") {
            QTRY_COMPARE_WITH_TIMEOUT(refused.load(), -1, 60000);
            QCOMPARE(Quit(), 0); // waits for the callback
            QCOMPARE(m_log->events("key").last().code, held);
        } else {
            compareOutcome("key", what == u"finish"   ? none
                                  : what == u"folder" ? Failure::FileNotWritable
                                                      : Failure::FolderMissing);
            QCOMPARE(contentsOf(file) == bytes(), what == u"finish");
            QCOMPARE(lastValue("key", DOWN_STATE_DOWNLOAD_PROGRESS), double(videoSize));
            QCOMPARE(Quit(), 0); // waits for the callback
            QCOMPARE(wasThere, what == u"folder");
        }
        compareFiles(files);
    }

    void pieces()
    {
        taskengine::PieceSet set = *taskengine::PieceSet::parse("0-10 20-30 40-50");
        set.add({25, 40});
        set.add({60, 61});
        QCOMPARE(set.text(), std::string("0-10 20-50 60-61"));
        QCOMPARE(set.bytes(), 41);
        QCOMPARE(set.firstMissing(), 10);
        const auto gaps = set.missing({0, 100});
        QVERIFY(gaps.size() == 3 && gaps[2].first == 61 && gaps[2].end == 100);
        const auto untouched = taskengine::nextShare(gaps, {{10, 20}, {61, 100}}, 5);
        QVERIFY(untouched && !untouched->from && untouched->piece.first == 50);
        const auto half = taskengine::nextShare({{12, 20}, {61, 100}}, {{12, 20}, {61, 100}}, 5);
        QVERIFY(half && half->from == 1U && half->piece.first == 81 && half->piece.end == 100);
        QVERIFY(!taskengine::nextShare({{12, 20}}, {{12, 20}}, 5));
        for (const char *text : {"0-10 5-20", "0-10 10-20", "0-", "5-5", "0-10x", "-1-5"})
            QVERIFY2(!taskengine::PieceSet::parse(text), text);
    }

    void partsWithGaps_data()
    {
        const auto row = table<std::string, qint64>("end", "kept");
        const auto line = [](const char *pieces) { return std::string("\npieces disk ") + pieces; };
        row("pieces", "", 6);
        row("cut off line", line("0-5 8-10"), 6);
        row("newer line", line("0-5 8-10 ."), 7);
        row("other boot", "\npieces some-boot 0-5 8-10 .", 6);
        row("more than there is", line("0-5 8-1000 ."), 0);
        row("no start", line("1-5 8-10 ."), 6);
        row("former format", "", 4);
    }

    /** What the facts say last and whole is what is there; a file with gaps gets no name. */
    void partsWithGaps()
    {
        QFETCH(const std::string, end);
        QFETCH(const qint64, kept);
        {
            taskengine::PartFile part;
            QVERIFY(!part.open(path("/video"), "key"));
            part.remember(10, "\"a\"");
            QVERIFY(!part.write(0, "0123", 4) && !part.allowPieces() && part.hasPieces());
            QVERIFY(!part.write(8, "89", 2));
            const auto fault = part.commit(path("/video"));
            QVERIFY(fault && fault->is(Failure::Internal) &&
                    !QFile::exists(native(path("/video"))));
            part.keep();
        }
        write(path("/.video.part-info"), contentsOf(path("/.video.part-info")) + end);
        const bool isFormer = QTest::currentDataTag() == "former format"_ba;
        if (isFormer) {
            write(path("/.video.part-info"), "videodown part 1\nkey\n\"a\"\n10\n");
            write(path("/video.part"), "0123");
        }
        taskengine::PartFile part;
        QVERIFY(!part.open(path("/video"), "key"));
        QCOMPARE(part.size(), kept);
        QCOMPARE(part.hasPieces(), kept > 0 && !isFormer);
    }

    void leftPart_data()
    {
        // The part was left by an earlier request with the key "video"; the first request now asks
        // for the range.
        const auto row = table<std::string, std::string, QList<std::string>, std::string>(
            "key", "part", "answers", "range");
        const std::string all = "0123456789";
        const auto beyond = [](const std::string &size) {
            return answer("416 Range Not Satisfiable", "Content-Range: bytes */" + size + "\r\n",
                          "x");
        };
        row("same video", "video", "0123",
            {answer("206 Partial Content", "Content-Range: bytes 4-9/10\r\n", "456789")},
            "bytes=4-");
        row("other video", "other", "0123", {answer("200 OK", {}, all)}, "");
        row("gone", "video", "0123", {answer("404 Not Found", {}, "x")}, "bytes=4-");
        row("complete", "video", all, {beyond("10")}, "bytes=10-");
        row("other size", "video", all, {beyond("11"), answer("200 OK", {}, all)}, "bytes=10-");
        row("shrunk", "video", "0123", {beyond("4"), answer("200 OK", {}, all)}, "bytes=4-");
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
        QVERIFY(!left.write(0, part.data(), part.size()));
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
        QVERIFY(!QFile::exists(native(path("/video.flv"))));
        QCOMPARE(DownloadVideo(video("first")), 0);
        QVERIFY(QFile::exists(native(path("/video.flv"))));
        QVERIFY(m_log->waitFor("first", DOWN_STATE_DOWNLOAD_PROGRESS));
        QCOMPARE(DownloadVideo(video("first")), -1);
        QCOMPARE(DownloadVideo(video("second")), 0);
        compareFailure("second", Failure::FileInUse);
        QVERIFY(m_site->waitForHeld(1, std::chrono::seconds(60)));
        m_site->release();
        compareEnd("first", DOWN_STATE_DOWNLOAD_FINISH);
        QVERIFY(contentsOf(path("/video.flv")) == bytes());
    }
};

QTEST_GUILESS_MAIN(PartFileTest)
#include "tst_partfile.moc"
