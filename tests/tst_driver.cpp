/** The driver: slots, ends, names and what is told to the application. */
#include "driver/historykeeper.h"
#include "driverfixture.h"

#include "driver/outputname.h"
#include "driver/plaintext.h"
#include "driver/renaming.h"
#include "strutil/narrowtext.h"

#include <QTest>

Q_DECLARE_METATYPE(DownloadOutcome)
Q_DECLARE_METATYPE(OnConflict)

namespace {

// A step is a response ("key=value" lines), an event ("code:value") or one of the words below.
void takeStep(DriverFixture &f, const QString &key, const QString &step)
{
    if (step == u"refuse"_s) {
        f.result = -1;
        return;
    }
    f.turn();
    if (step.contains(u'='))
        f.engine.sendResponse(key, step.toUtf8());
    else if (step.contains(u':'))
        f.engine.sendState(key, tagDownloadStateCode(step.section(u':', 0, 0).toInt()),
                           step.section(u':', 1).toDouble());
    else if (step == u"parse"_s)
        f.engine.sendResponse(key, TaskFixture::response(1));
    else if (step == u"image-fail"_s)
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FAIL, 404);
    else if (step == u"finish"_s)
        f.finish(key);
    else if (step == u"vanish"_s)
        QVERIFY(QFile::remove(f.savePath(key)));
    else if (step == u"stop"_s)
        f.driver->stop(key);
    else if (step != u"turn"_s)
        qFatal("no such step");
}

} // namespace

class DriverTest : public QObject
{
    Q_OBJECT

private slots:
    void fates_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<DownloadOutcome>("outcome");
        QTest::addColumn<QString>("told"); // part of the cause, and of the advice behind a bar
        const auto failed = DownloadOutcome::Failed;
        const auto stopped = DownloadOutcome::Stopped;
        const auto finished = DownloadOutcome::Finished;
        QTest::newRow("parse refused") << u"refuse"_s << failed << u"did not take"_s;
        QTest::newRow("parse fails") << u"6:404"_s << failed << u"cause 404|advice 404"_s;
        QTest::newRow("parse stopped") << u"8:0"_s << stopped << QString();
        QTest::newRow("parsed although stopped") << u"stop parse"_s << stopped << QString();
        QTest::newRow("no formats") << u"title=x"_s << failed << u"offers no formats"_s;
        QTest::newRow("unreadable formats")
            << u"fmt_list=,,\nfmt_stream_map=,"_s << failed << u"offers no formats"_s;
        QTest::newRow("the site's reason") << u"status=fail\nreason=not \x1b[31mhere"_s << failed
                                           << u"refuses this video: not [31mhere"_s;
        QTest::newRow("video refused") << u"turn refuse parse"_s << failed << u"did not take"_s;
        QTest::newRow("video fails") << u"parse 7:1007"_s << failed << u"cause 1007|advice 1007"_s;
        QTest::newRow("disk full") << u"parse 14:0 7:1019"_s << failed << u"is full"_s;
        QTest::newRow("thumbnail fails") << u"parse image-fail finish"_s << finished << QString();
        QTest::newRow("file gone") << u"parse vanish 3:0"_s << failed << u"is gone"_s;
        QTest::newRow("finishes although stopped")
            << u"parse stop finish"_s << finished << QString();
        QTest::newRow("address expired") << u"parse 7:410 parse finish"_s << finished << QString();
        QTest::newRow("new address expired")
            << u"parse 7:410 parse 7:410"_s << failed << u"cause 410|advice 410"_s;
        QTest::newRow("expired and gone") << u"parse 7:410 6:404"_s << failed << u"cause 404"_s;
        QTest::newRow("stopped when expired")
            << u"parse 7:410 turn stop 8:0"_s << stopped << QString();
        QTest::newRow("expired when stopped") << u"parse stop 7:410"_s << stopped << QString();
        QTest::newRow("fails because stopped") << u"parse stop 7:1007"_s << stopped << QString();
    }

    void fates()
    {
        QFETCH(QString, steps);
        QFETCH(DownloadOutcome, outcome);
        QFETCH(QString, told);
        DriverFixture f;
        const QString key = f.add(f.url(1));
        const QStringList list = steps.contains(u'=') ? QStringList{steps} : steps.split(u' ');
        for (const QString &step : list)
            takeStep(f, key, step);
        f.turn();
        QCOMPARE(f.results.size(), 1);
        const DownloadResult &result = f.results.first();
        QCOMPARE(result.outcome, outcome);
        QCOMPARE(result.path.isEmpty(), outcome != DownloadOutcome::Finished);
        QVERIFY2(result.failure.cause.contains(told.section(u'|', 0, 0)),
                 qPrintable(result.failure.cause));
        QVERIFY(result.failure.advice.contains(told.section(u'|', 1)));
        QCOMPARE(result.failure.cause.isEmpty(), outcome != DownloadOutcome::Failed);
    }

    void pathsBeyondTheRequest()
    {
        DriverFixture f;
        const QString key = f.add(f.url(1));
        f.turn();
        f.engine.sendResponse(key, "title=" + QByteArray(1100, 't') + '\n' +
                                       TaskFixture::response(1).mid(6));
        f.turn();
        QVERIFY(f.results.first().failure.cause.contains(u"path of the file is too long"_s));
    }

    void badAddresses_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("empty") << u""_s;
        QTest::newRow("no address") << u"dawn chorus"_s;
        QTest::newRow("other protocol") << u"ftp://host/watch?v=1"_s;
        QTest::newRow("local file") << u"file:///etc/passwd"_s;
        QTest::newRow("no host") << u"http:///watch"_s;
        QTest::newRow("blank inside") << u"http://host/watch?v=a b"_s;
        QTest::newRow("line end inside") << u"http://host/watch?v=a\nb"_s;
        QTest::newRow("too long") << u"http://host/"_s + QString(1012, u'x');
    }

    void badAddresses()
    {
        QFETCH(QString, address);
        DriverFixture f;
        f.add(address);
        f.add(address);
        f.add(u"http://host/"_s + QString(1011, u'x')); // the longest possible
        QVERIFY(f.results.isEmpty());
        f.turn();
        QCOMPARE(f.results.size(), 1);
        QCOMPARE(f.results.first().address, address);
        QVERIFY(!f.results.first().failure.cause.isEmpty());
        QVERIFY(!f.results.first().failure.advice.isEmpty());
        QCOMPARE(f.engine.calls("parse").size(), 1);
    }

    void oneAddressIsOneTask()
    {
        DriverFixture f;
        const QString key = f.add(f.url(1));
        QCOMPARE(f.add(f.url(1)), key);
        f.running(1);
        f.add(f.url(1));
        f.turn();
        QCOMPARE(f.engine.calls("parse").size(), 1);
        f.finish(key);
        f.turn();
        QCOMPARE(f.results.size(), 1);
        QCOMPARE(f.idleCount, 0);
        // Wanted again, it waits until its thumbnail is done, and keeps its record.
        const CXMLInfo *record = f.driver->controller().getXMLInfo(key);
        DownloadRequest again;
        again.address = f.url(1);
        again.again = true;
        f.driver->add(again);
        f.turn();
        QCOMPARE(f.engine.calls("parse").size(), 1);
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FINISH);
        f.turn();
        QCOMPARE(f.engine.calls("parse").size(), 2);
        QCOMPARE(f.driver->controller().count(), 1);
        QCOMPARE(f.driver->controller().getXMLInfo(key), record);
        f.engine.sendState(key, DOWN_STATE_PARSE_FAIL, 404);
        f.turn();
        QCOMPARE(f.results.size(), 2);
        QCOMPARE(f.idleCount, 1);
    }

    void stoppingWaitsForWhatRuns()
    {
        DriverFixture f(1);
        const QString video = f.running(1);
        const QString ready = f.running(2);
        for (int number = 3; number <= 5; ++number)
            f.add(f.url(number));
        f.turn();
        f.engine.clearCalls();
        f.driver->stop(video);
        QCOMPARE(f.engine.calls("stop"), QStringList({video, video + u'1'}));
        f.driver->stopAll();
        QVERIFY(f.results.isEmpty());
        f.turn();
        QCOMPARE(f.results.size(), 4); // all but the running video
        QStringList stopped = f.engine.calls("stop");
        stopped.sort();
        QStringList atWork{video, video + u'1', ready + u'1'};
        atWork.sort();
        stopped.removeDuplicates();
        QCOMPARE(stopped, atWork);
        for (const QString &key : atWork)
            f.engine.sendState(key, DOWN_STATE_USER_STOP);
        f.turn();
        QCOMPARE(f.results.size(), 5);
        for (const DownloadResult &result : std::as_const(f.results))
            QCOMPARE(result.outcome, DownloadOutcome::Stopped);
        QVERIFY(f.engine.calls("parse").isEmpty());
        QCOMPARE(f.idleCount, 1);
        QCOMPARE(f.controllerState(), u"3 1 0 0"_s);
    }

    void copiesDestroyNothing()
    {
        DriverFixture f;
        const QString theirs = f.root.filePath(u"out/Clip 1_0.flv"_s);
        TaskFixture::write(f.root.filePath(u"dl/Clip 1.flv"_s), "taken");
        TaskFixture::write(theirs, "theirs");
        const QString key = f.running(1, true);
        QCOMPARE(f.savePath(key), f.root.filePath(u"dl/Clip 1_1.flv"_s));
        QCOMPARE(f.files(u"out"_s), QStringList({u"Clip 1_0.flv"_s, u"Clip 1_1.flv"_s}));
        f.finish(key, "ours");
        f.turn();
        QCOMPARE(f.results.first().path, f.root.filePath(u"out/Clip 1_1.flv"_s));
        QCOMPARE(TaskFixture::read(f.results.first().path), "ours");
        QCOMPARE(TaskFixture::read(theirs), "theirs");
        // A failed task leaves no name behind.
        f.engine.sendState(f.running(2, true), DOWN_STATE_DOWNLOAD_FAIL, 1007);
        f.turn();
        QCOMPARE(f.results.size(), 2);
        QCOMPARE(f.files(u"out"_s).size(), 2);
    }

    void brokenCopyFailsTheTask()
    {
        DriverFixture f;
        const QString key = f.running(1, true);
        // What the library writes to is no longer the file that was reserved.
        const QString copy = f.root.filePath(u"out/Clip 1.flv"_s);
        QVERIFY(QFile::remove(copy) && QFile::link(u"/dev/null"_s, copy));
        f.finish(key, "ours");
        f.turn();
        QCOMPARE(f.results.first().outcome, DownloadOutcome::Failed);
        QVERIFY(f.results.first().failure.cause.contains(f.root.filePath(u"dl/Clip 1.flv"_s)));
        QCOMPARE(TaskFixture::read(f.root.filePath(u"dl/Clip 1.flv"_s)), "ours");
    }

    void unusableOutputFolderFailsEarly()
    {
        DriverFixture f;
        QVERIFY(QDir(f.root.path()).rmdir(u"out"_s));
        TaskFixture::write(f.root.filePath(u"out"_s), "a file");
        f.running(1, true);
        QCOMPARE(f.results.first().outcome, DownloadOutcome::Failed);
        QVERIFY(f.results.first().failure.cause.contains(u"cannot be"_s));
        QVERIFY(f.engine.calls("video").isEmpty());
    }

    // Only what a complete video lacks is made again, and nobody's file is lost for it.
    void copiesAreMadeAgain_data()
    {
        QTest::addColumn<QByteArray>("present"); // in the copy's place
        QTest::addColumn<bool>("downloads");
        QTest::newRow("none") << QByteArray("-") << false;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("begun") << QByteArray("vid") << false;
        QTest::newRow("begun, wanted again") << QByteArray("vide") << true;
        QTest::newRow("somebody's") << QByteArray("VID") << true;
        QTest::newRow("longer") << QByteArray("video, too") << true;
    }

    void copiesAreMadeAgain()
    {
        QFETCH(QByteArray, present);
        QFETCH(bool, downloads);
        DriverFixture f;
        const QString key = f.running(1, true);
        f.engine.sendState(key, DOWN_STATE_FILE_SIZE, 5);
        f.finish(key, "video");
        f.turn();
        const QString copy = f.results.first().path;
        f.driver->controller().getXMLInfo(key)->State = int(TaskState::Running); // killed
        QVERIFY(QFile::remove(copy));
        if (present != "-")
            TaskFixture::write(copy, present);
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FINISH);
        f.turn();
        f.engine.clearCalls();
        f.add(f.url(1), true, present == "vide");
        if (downloads) {
            f.turn();
            QCOMPARE(f.engine.calls("parse").size(), 1);
            QCOMPARE(TaskFixture::read(copy), present);
            f.engine.sendResponse(key, TaskFixture::response(1));
            f.turn();
            const bool isOwn = present == "vide";
            QCOMPARE(f.savePath(key).endsWith(u"/Clip 1.flv"_s), isOwn);
            QCOMPARE(f.driver->controller().getXMLInfo(key)->FileSize, isOwn ? 5 : 0);
            return;
        }
        QTRY_COMPARE(f.results.size(), 2);
        QCOMPARE(f.results.last().path, copy);
        QCOMPARE(TaskFixture::read(copy), "video");
        QVERIFY(f.engine.calls().isEmpty());
    }

    // Whatever is done or told is on disk by then.
    void everythingIsOnDiskFirst()
    {
        DriverFixture f;
        const QString history = f.root.filePath(u"history.xml"_s);
        const auto lines = [&history] { return TaskFixture::read(history + u".journal"_s); };
        HistoryKeeper keeper(f.driver->controller(), history);
        QCOMPARE(keeper.open(), QString());
        f.driver->setKeeper(&keeper);
        QStringList seen;
        QByteArray state = R"("State":"3")";
        f.engine.setHook([&](ScriptedEngine::Kind kind, const tagTaskInfo &request) {
            const bool isVideo = kind == ScriptedEngine::Kind::Video;
            const QByteArray path = isVideo ? request.szSavePath : request.szPageURL;
            if (kind != ScriptedEngine::Kind::Image)
                seen << (lines().contains('"' + path + '"') ? u"known"_s : u"unknown"_s);
            // The name is taken, too.
            if (isVideo && QFileInfo::exists(QFile::decodeName(path)))
                seen << u"reserved"_s;
            return isVideo && state.contains('4') ? -1 : 0;
        });
        connect(f.driver.get(), &DownloadDriver::ended,
                [&] { seen << (lines().contains(state) ? u"known"_s : u"unknown"_s); });
        const QString key = f.add(f.url(1));
        f.turn();
        f.engine.sendResponse(key, TaskFixture::response(1));
        f.turn();
        f.engine.sendState(key, DOWN_STATE_FILE_SIZE, 5);
        QVERIFY(lines().contains(R"("FileSize":"5")"));
        f.finish(key);
        f.turn();
        QCOMPARE(seen.join(u' '), u"known known reserved known"_s);
        state = R"("State":"4")";
        const QString refused = f.add(f.url(2));
        f.turn();
        f.engine.sendResponse(refused, TaskFixture::response(2));
        f.turn();
        QCOMPARE(seen.mid(4).join(u' '), u"known known reserved known"_s);
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FINISH);
        f.turn();
        QCOMPARE(keeper.save(), QString());
        QVERIFY(!QFile::exists(history + u".journal"_s)); // nothing is at work any more
        f.driver->setKeeper(nullptr);
    }

    // What was begun comes first, under its name.
    void expiredTasksComeFirst()
    {
        DriverFixture f(1);
        const QString key = f.running(1, true);
        const QString path = f.savePath(key);
        f.add(f.url(2));
        const QString other = f.add(f.url(3));
        const QString last = f.add(f.url(4));
        CXMLInfo *record = f.driver->controller().getXMLInfo(last);
        record->CategoryID = 7;
        record->TaskCreateTime = QDateTime(QDate(2012, 3, 7), QTime(9, 5, 3));
        f.turn();
        QVERIFY(f.driver->setPaused(key, true));
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_FAIL, 410);
        f.engine.sendState(other, DOWN_STATE_PARSE_FAIL, 404);
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FINISH);
        f.turn();
        QCOMPARE(f.engine.calls("parse").mid(3), QStringList({key, last}));
        record = f.driver->controller().getXMLInfo(last);
        QCOMPARE(record->CategoryID, 7); // the library has made a new record
        QCOMPARE(record->TaskCreateTime.date().year(), 2012);
        f.engine.sendResponse(key, TaskFixture::response(1));
        f.turn();
        QCOMPARE(f.savePath(key), path);
        QCOMPARE(f.engine.calls("video").size(), 2);
        QCOMPARE(f.driver->activity(key), TaskActivity::Downloading);
    }

    // A task of the list answers from its record, which a parse would replace.
    void inspectionsLeaveTheListAsItIs()
    {
        DriverFixture f;
        const QString listed = f.running(1);
        f.finish(listed);
        f.turn();
        DownloadRequest request;
        request.inspectOnly = true;
        for (const int number : {1, 2}) {
            request.address = f.url(number);
            const QString key = f.driver->add(request);
            f.turn();
            if (number == 2)
                f.engine.sendResponse(key, TaskFixture::response(2) + "length_seconds=213\r\n");
            f.turn();
            QCOMPARE(f.results.last().key, key);
            QCOMPARE(f.results.last().offer.formats().size(), 4);
        }
        QCOMPARE(f.results.last().seconds, 213);
        QCOMPARE(f.engine.calls("parse").size(), 2);
        QCOMPARE(f.engine.calls("image"), QStringList{listed + u'1'});
        const ControllerLock lock;
        QCOMPARE(f.driver->controller().m_pHistory->m_InfoList.size(), 1);
    }

    // Whether the site has been asked yet or not.
    void inspectedAddressesCanBeDownloaded()
    {
        for (const int turns : {0, 1}) {
            DriverFixture f;
            DownloadRequest request;
            request.inspectOnly = true;
            request.address = f.url(1);
            const QString key = f.driver->add(request);
            for (int i = 0; i < turns; ++i)
                f.turn();
            QCOMPARE(f.add(f.url(1), true), key);
            f.turn();
            QCOMPARE(taskrecord::stateOf(*f.driver->controller().getXMLInfo(key)),
                     TaskState::Running);
            f.engine.sendResponse(key, TaskFixture::response(1));
            f.turn();
            f.finish(key);
            f.turn();
            QCOMPARE(f.engine.calls("parse").size(), 1);
            QCOMPARE(f.results.size(), 1);
            QVERIFY(f.results.first().path.startsWith(f.root.filePath(u"out/"_s)));
            const ControllerLock lock;
            QCOMPARE(f.driver->controller().m_pHistory->m_InfoList.size(), 1);
        }
    }

    // Two tasks can remember one name: it was free again when the first had failed.
    void anotherTasksFileIsNotReplaced()
    {
        DriverFixture f;
        const QString key = f.running(1);
        f.engine.sendState(key, DOWN_STATE_FILE_SIZE, 5);
        f.finish(key, "video");
        f.turn();
        const QString other = f.add(f.url(2));
        CXMLInfo &record = *f.driver->controller().getXMLInfo(other);
        record.FileName = f.results.first().path;
        record.FileSize = 5;
        f.turn();
        f.engine.sendResponse(other, TaskFixture::response(1));
        f.turn();
        QCOMPARE(f.savePath(other), f.root.filePath(u"dl/Clip 1_0.mp4"_s));
    }

    // With "dl/Clip 1.mp4" taken, or with the copy's place in "out" taken as well.
    void conflicts_data()
    {
        QTest::addColumn<OnConflict>("action");
        QTest::addColumn<QString>("present"); // instead of the video
        QTest::addColumn<QString>("name");    // of the video in the end; empty: it is skipped
        QTest::addColumn<QString>("told");    // why nothing is overwritten
        const QString plain = u"Clip 1"_s;
        const QString numbered = u"Clip 1_0"_s;
        const auto row = [](const char *name, OnConflict action, const char *present,
                            const QString &wanted, const char *told) {
            QTest::newRow(name) << action << QString::fromLatin1(present) << wanted
                                << QString::fromLatin1(told);
        };
        row("renamed", OnConflict::Rename, "file", numbered, "");
        row("skipped", OnConflict::Skip, "file", {}, "");
        row("skipped for a copy", OnConflict::Skip, "copy", {}, "");
        row("nothing to skip for", OnConflict::Skip, "", plain, "");
        row("overwritten", OnConflict::Overwrite, "file", plain, "");
        row("copy overwritten", OnConflict::Overwrite, "copy", plain, "");
        row("gone meanwhile", OnConflict::Overwrite, "file gone", plain, "");
        row("another task's", OnConflict::Overwrite, "file task", numbered, "of another task");
        row("by another name", OnConflict::Overwrite, "file task link", numbered, "of another");
        row("at work elsewhere", OnConflict::Overwrite, "file part", numbered, "unfinished");
        row("resumed later", OnConflict::Rename, "part waits", numbered, "");
        row("to be resumed", OnConflict::Overwrite, "part waits", numbered, "unfinished");
        row("to be begun", OnConflict::Overwrite, "file waits gone", numbered, "of another");
        row("folder", OnConflict::Overwrite, "folder", numbered, "not a file");
        row("link", OnConflict::Overwrite, "link", numbered, "not a file");
    }

    void conflicts()
    {
        QFETCH(const OnConflict, action);
        QFETCH(const QString, present);
        QFETCH(const QString, name);
        QFETCH(const QString, told);
        DriverFixture f;
        const bool copies = present == u"copy"_s;
        const QString extension = copies ? u".flv"_s : u".mp4"_s;
        const QString taken = f.root.filePath(u"dl/Clip 1"_s + extension);
        const QString copy = f.root.filePath(u"out/Clip 1"_s + extension);
        if (present.startsWith(u"file"_s) || copies)
            TaskFixture::write(taken, "theirs");
        if (copies)
            TaskFixture::write(copy, "theirs");
        if (present == u"folder"_s)
            QVERIFY(QDir().mkpath(taken));
        if (present == u"link"_s)
            QVERIFY(QFile::link(u"/nowhere"_s, taken));
        if (present.contains(u"part"_s))
            TaskFixture::write(taken + u".part"_s, "begun");
        if (present.contains(u"task"_s)) {
            const ControllerLock lock;
            CXMLInfo *other = f.driver->controller().m_pHistory->Add(nullptr);
            other->State = int(TaskState::Finished);
            QVERIFY(QFile::link(f.root.filePath(u"dl"_s), f.root.filePath(u"link"_s)));
            other->FileName =
                present.contains(u"link"_s) ? f.root.filePath(u"link/Clip 1.mp4"_s) : taken;
        }
        if (present.contains(u"waits"_s)) {
            const ControllerLock lock;
            CXMLInfo *other = f.driver->controller().m_pHistory->Add(nullptr);
            other->State =
                int(present.contains(u"part"_s) ? TaskState::Stopped : TaskState::Waiting);
            other->FileName = taken;
        }
        DownloadRequest request;
        request.address = f.url(1);
        request.outputFolder = f.root.filePath(u"out"_s);
        request.keepSource = copies;
        request.onConflict = action;
        const QString key = f.driver->add(request);
        f.turn();
        f.engine.sendResponse(key, TaskFixture::response(1));
        f.turn();
        if (name.isEmpty()) {
            QCOMPARE(f.results.first().outcome, DownloadOutcome::Skipped);
            QCOMPARE(f.results.first().path, copies ? copy : taken);
            QCOMPARE(TaskFixture::read(taken), "theirs");
            QVERIFY(f.engine.calls("video").isEmpty() && f.engine.calls("image").isEmpty());
            QVERIFY(f.driver->controller().getXMLInfo(key) == nullptr);
            QCOMPARE(f.idleCount, 1);
            return;
        }
        QCOMPARE(f.savePath(key).contains(u"_0."_s), !present.isEmpty());
        if (present.endsWith(u"gone"_s))
            QVERIFY(QFile::remove(taken));
        f.finish(key, "ours");
        f.turn();
        const DownloadResult result = f.results.first();
        const CXMLInfo &record = *f.driver->controller().getXMLInfo(key);
        const QString file = name + extension;
        QCOMPARE(result.path, f.root.filePath((copies ? u"out/"_s : u"dl/"_s) + file));
        QCOMPARE(TaskFixture::read(result.path), "ours");
        QCOMPARE(record.FileName, f.root.filePath(u"dl/"_s + file));
        QCOMPARE(TaskFixture::read(record.FileName), "ours");
        QCOMPARE(record.SaveAsFileName, f.root.filePath(u"out/"_s + file));
        QCOMPARE(record.BaseName, name);
        QCOMPARE(result.overwrote, action == OnConflict::Overwrite && name == u"Clip 1"_s &&
                                       !present.endsWith(u"gone"_s));
        QVERIFY2(told.isEmpty() ? result.notOverwritten.isEmpty()
                                : result.notOverwritten.contains(told),
                 qPrintable(result.notOverwritten));
        if (present.startsWith(u"file"_s) && name != u"Clip 1"_s && !present.endsWith(u"gone"_s))
            QCOMPARE(TaskFixture::read(taken), "theirs");
    }

    // What a stopped repetition left goes when the video turns out to be there, and its copy or
    // not.
    void whatNobodyContinuesGoes()
    {
        for (const bool copies : {false, true}) {
            DriverFixture f;
            const QString key = f.running(1, copies);
            f.finish(key);
            f.turn();
            const CDown &controller = f.driver->controller();
            CXMLInfo &record = *controller.m_pHistory->m_InfoList.first();
            record.State = int(TaskState::Stopped);
            record.FileSize = 5;
            TaskFixture::write(record.FileName + u".part"_s, "begun");
            QVERIFY(!copies || QFile::remove(record.SaveAsFileName));
            f.add(f.url(1), copies);
            QTRY_COMPARE(f.results.size(), 2);
            QCOMPARE(f.results.last().outcome, DownloadOutcome::Finished);
            QVERIFY(!QFile::exists(record.FileName + u".part"_s));
            QVERIFY(!copies || QFile::exists(record.SaveAsFileName));
        }
    }

    void nameToBeResumedIsNotGiven()
    {
        DriverFixture f;
        const QString key = f.running(1);
        f.finish(key);
        f.turn();
        CDown &controller = f.driver->controller();
        CXMLInfo *other = controller.m_pHistory->Add(nullptr);
        other->FileName = f.root.filePath(u"dl/Other.mp4"_s);
        other->State = int(TaskState::Stopped);
        const QString part = other->FileName + u".part"_s;
        const auto parts = [&part](const QString &) { return QStringList{part}; };
        TaskFixture::write(part, "begun");
        QVERIFY(renameTask(controller, key, u"Other"_s, parts).contains(u"unfinished"_s));
        QVERIFY(QFile::remove(part));
        QCOMPARE(renameTask(controller, key, u"Other"_s, parts), QString());
        QVERIFY(QFile::exists(other->FileName));
    }

    // What was in the list before stays there, as it was.
    void skippedTasksStay()
    {
        DriverFixture f;
        const QString history = f.root.filePath(u"history.xml"_s);
        HistoryKeeper keeper(f.driver->controller(), history);
        QCOMPARE(keeper.open(), QString());
        f.driver->setKeeper(&keeper);
        const QString key = f.running(1);
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_FAIL, 1007);
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FINISH);
        f.turn();
        DownloadRequest request;
        request.address = f.url(1);
        request.outputFolder = f.root.path();
        request.keepSource = true;
        request.profile.fileTypeExt = u"flv"_s;
        request.onConflict = OnConflict::Skip;
        TaskFixture::write(f.root.filePath(u"Clip 1.flv"_s), "theirs");
        f.driver->add(request);
        f.turn();
        f.engine.sendResponse(key, TaskFixture::response(1));
        f.turn();
        QCOMPARE(f.results.last().outcome, DownloadOutcome::Skipped);
        const CXMLInfo &record = *f.driver->controller().getXMLInfo(key);
        QCOMPARE(record.State, int(TaskState::Failed));
        QCOMPARE(record.SaveAsPath, f.root.filePath(u"out"_s));
        QCOMPARE(record.IsOrgVideo, 0);
        QCOMPARE(record.Profile->m_pDesc->fileTypeExt, u"mp4"_s);
        const QByteArray journal = TaskFixture::read(history + u".journal"_s);
        QVERIFY(journal.contains(R"("State":"4")") && !journal.contains("dropped"));
        f.driver->setKeeper(nullptr);
    }

    void reservations_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<bool>("isOwn");
        QTest::addColumn<QString>("left");
        QTest::newRow("free") << u""_s << false << u"copy video"_s;
        QTest::newRow("video taken") << u"video"_s << false << u"video"_s;
        QTest::newRow("copy taken") << u"copy"_s << false << u"copy"_s;
        QTest::newRow("own") << u"video copy"_s << true << u"copy video"_s;
    }

    void reservations()
    {
        QFETCH(QString, present);
        QFETCH(bool, isOwn);
        QFETCH(QString, left);
        const QTemporaryDir root;
        for (const QString &name : present.split(u' ', Qt::SkipEmptyParts))
            TaskFixture::write(root.filePath(name), "theirs");
        const OutputName name{u"t"_s, root.filePath(u"video"_s), root.filePath(u"copy"_s), isOwn};
        const auto result = reserve(name);
        QCOMPARE(std::get<Reservation>(result) == Reservation::Done, isOwn || present.isEmpty());
        QCOMPARE(QDir(root.path()).entryList(QDir::Files).join(u' '), left);
        release(name);
        QCOMPARE(QDir(root.path()).isEmpty(), present.isEmpty());
    }

    void equalTitlesInOneTurnGetTwoNames()
    {
        DriverFixture f;
        const QStringList keys{f.add(f.url(1), true), f.add(f.url(2), true)};
        f.turn();
        for (const QString &key : keys)
            f.engine.sendResponse(key, TaskFixture::response(7));
        f.turn();
        QCOMPARE(f.savePath(keys.at(0)), f.root.filePath(u"dl/Clip 7.flv"_s));
        QCOMPARE(f.savePath(keys.at(1)), f.root.filePath(u"dl/Clip 7_0.flv"_s));
        QCOMPARE(f.files(u"out"_s).size(), 2);
        f.engine.sendState(keys.at(0), DOWN_STATE_DOWNLOAD_FAIL, 1007);
        f.engine.sendState(keys.at(1), DOWN_STATE_USER_STOP);
        f.turn();
        QVERIFY(f.files(u"out"_s).isEmpty() && f.files(u"dl"_s).isEmpty());
    }

    void upgradesThatFail_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("obstacle"); // what is in the way, when the video is sent
        QTest::addColumn<QString>("cause");
        QTest::addColumn<QString>("file"); // the record's in the end
        const QString video = u"dl/Clip 1.mp4"_s;
        QTest::newRow("fails") << u"10:99 7:1007"_s << u""_s << u"cause 1007"_s << video;
        QTest::newRow("stopped") << u"stop 8:0"_s << u""_s << u""_s << video;
        QTest::newRow("place taken")
            << u""_s << u"dl/Clip 1.mp4.former"_s << u"cannot be kept as"_s << video;
        QTest::newRow("place lost")
            << u"occupy 7:1007"_s << u""_s << u"could not be put back"_s << video + u".former"_s;
    }

    // The record says where the old video really is.
    void upgradesThatFail()
    {
        QFETCH(QString, steps);
        QFETCH(QString, obstacle);
        QFETCH(QString, cause);
        QFETCH(QString, file);
        DriverFixture f;
        DownloadRequest request;
        request.address = f.url(1);
        request.profile = TaskFixture::profile(u"mp4"_s, 640, 360);
        const QString key = f.driver->add(request);
        f.turn();
        f.engine.sendResponse(key, TaskFixture::response(1));
        f.turn();
        f.engine.sendState(key, DOWN_STATE_FILE_SIZE, 3);
        f.finish(key, "old");
        f.engine.sendState(key + u'1', DOWN_STATE_DOWNLOAD_FINISH);
        f.turn();
        const CXMLInfo &record = *f.driver->controller().getXMLInfo(key);
        QCOMPARE(record.FileName, f.root.filePath(u"dl/Clip 1.mp4"_s));
        request.profile = TaskFixture::profile(u"mp4"_s, 1280, 720);
        request.upgrade = true;
        f.driver->add(request);
        f.turn();
        if (!obstacle.isEmpty())
            TaskFixture::write(f.root.filePath(obstacle), "theirs");
        f.engine.sendResponse(key, TaskFixture::response(1));
        f.turn();
        for (const QString &step : steps.split(u' ', Qt::SkipEmptyParts)) {
            if (step != u"occupy"_s)
                takeStep(f, key, step);
            else
                QVERIFY(QFile::remove(f.savePath(key)) &&
                        QDir().mkpath(f.savePath(key) + u"/theirs"_s));
        }
        f.turn();
        QCOMPARE(f.results.size(), 2);
        QVERIFY2(f.results.last().failure.cause.contains(cause),
                 qPrintable(f.results.last().failure.cause));
        QCOMPARE(record.FileName, f.root.filePath(file));
        QCOMPARE(TaskFixture::read(record.FileName), "old");
        QCOMPARE(record.State, int(TaskState::Finished));
        QCOMPARE(record.VideoWidth, 640);
        QCOMPARE(record.FileSize, 3);
        QCOMPARE(f.controllerState().left(3), u"3 2"_s);
    }

    void answersFromInsideTheRequest()
    {
        DriverFixture f;
        f.engine.setHook([&f](ScriptedEngine::Kind kind, const tagTaskInfo &request) {
            const QString key = QString::fromLocal8Bit(request.szTaskKey);
            if (kind == ScriptedEngine::Kind::Parse)
                f.engine.sendResponse(key, TaskFixture::response(1));
            else
                f.finish(key);
            return 0;
        });
        for (int number = 1; number <= 20; ++number)
            f.add(f.url(number));
        QTRY_COMPARE(f.results.size(), 20);
        for (const DownloadResult &result : std::as_const(f.results))
            QCOMPARE(result.outcome, DownloadOutcome::Finished);
        QCOMPARE(f.controllerState(), u"3 2 0 0"_s);
    }

    void endingTheDriverStopsEverything()
    {
        DriverFixture f;
        const QString video = f.running(1, true);
        f.add(f.url(2));
        f.turn();
        f.engine.clearCalls();
        f.driver.reset();
        QCOMPARE(f.engine.calls().mid(3), QStringList({u"quit"_s, u"cleanup"_s}));
        QVERIFY(f.engine.calls("stop").contains(video));
        f.turn();
        QVERIFY(f.results.isEmpty());
        QVERIFY(f.files(u"out"_s).isEmpty());
    }

    // What stands under a name of the task is its own only while it has the task's size.
    void filesOfATask()
    {
        const QTemporaryDir root;
        CXMLInfo record(nullptr);
        record.FileName = root.filePath(u"video"_s);
        record.SaveAsFileName = root.filePath(u"copy"_s);
        record.ImagePath = root.filePath(u"image"_s);
        record.IsOrgVideo = 1;
        record.FileSize = 5;
        for (const char *name : {"video", "copy", "image", "video~", "image~", "copy~"})
            TaskFixture::write(root.filePath(QString::fromLatin1(name)), "bytes");
        const auto names = [&] {
            QStringList found;
            for (const QString &path : taskrecord::filesOf(
                     record, [](const QString &file) { return QStringList{file + u'~'}; }))
                found << QFileInfo(path).fileName();
            return found.join(u' ');
        };
        QCOMPARE(names(), u"video video~ copy image image~"_s);
        record.FileSize = 6;
        QCOMPARE(names(), u"image image~"_s);
        record.IsOrgVideo = 0;
        record.ConvertionDesc = u"avi"_s;
        QCOMPARE(names(), u"copy image image~"_s);
    }

    void progressIsTold()
    {
        DriverFixture f;
        QList<DownloadProgress> told;
        connect(f.driver.get(), &DownloadDriver::progressed,
                [&told](const DownloadProgress &progress) { told.append(progress); });
        const QString key = f.running(1);
        f.engine.sendState(key, DOWN_STATE_FILE_SIZE, 5e9);
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_PROGRESS, 1e9);
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_PROGRESS, 2e9);
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_SPEED, qQNaN());
        f.turn();
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first().title, u"Clip 1"_s);
        QCOMPARE(told.first().received, 2000000000LL);
        QCOMPARE(told.first().total, 5000000000LL);
        QCOMPARE(told.first().bytesPerSecond, 0LL);
    }

    void transfersArePaused()
    {
        DriverFixture f;
        QList<DownloadProgress> told;
        connect(f.driver.get(), &DownloadDriver::progressed,
                [&told](const DownloadProgress &progress) { told.append(progress); });
        const QString key = f.running(1);
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_PROGRESS, 300);
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_SPEED, 100);
        f.turn();
        QVERIFY(!f.driver->setPaused(key, false));
        QVERIFY(f.driver->setPaused(key, true));
        QVERIFY(!f.driver->setPaused(key, true));
        f.engine.sendState(key, DOWN_STATE_DOWNLOAD_SPEED, 100); // was on its way
        f.turn();
        QCOMPARE(f.engine.calls("suspend"), QStringList{key});
        QCOMPARE(f.driver->activity(key), TaskActivity::Paused);
        QVERIFY(told.last().paused && told.last().bytesPerSecond == 0);
        const QString other = f.running(2);
        f.engine.sendState(other, DOWN_STATE_DOWNLOAD_SPEED, 50);
        f.engine.sendState(other, DOWN_STATE_FILE_SIZE, 700);
        f.turn();
        const DownloadTotals totals = f.driver->totals();
        QCOMPARE(QList<qint64>({totals.downloading, totals.paused, totals.received, totals.total,
                                totals.bytesPerSecond}),
                 QList<qint64>({2, 1, 300, 1000, 50}));
        f.engine.setResult(-1); // the transfer has ended, but nobody knows yet
        QVERIFY(!f.driver->setPaused(key, false));
        f.engine.setResult(0);
        QVERIFY(f.driver->setPaused(key, false));
        f.turn();
        QVERIFY(!told.last().paused);
    }

    void waitingTasksAreMoved()
    {
        DriverFixture f(1);
        QStringList keys{f.running(1)};
        for (int number = 2; number <= 6; ++number)
            keys << f.add(f.url(number));
        f.turn(); // two are parsed ahead, beside a thumbnail
        QVERIFY(!f.driver->moveBefore(keys[1], keys[5]));
        QVERIFY(f.driver->moveBefore(keys[5], keys[3]));
        QVERIFY(f.driver->moveBefore(keys[3], {}));
        QCOMPARE(f.driver->totals().waiting, 3);
        f.engine.sendResponse(keys[1], TaskFixture::response(2));
        f.turn();
        QCOMPARE(f.driver->activity(keys[1]), TaskActivity::Waiting);
        f.driver->setVideoLimit(maxVideoLimit + 1);
        QCOMPARE(f.driver->videoLimit(), maxVideoLimit);
        for (int turns = 0; turns < 20; ++turns) {
            f.turn();
            for (const QString &key : std::as_const(keys)) {
                if (f.driver->activity(key) == TaskActivity::Parsing)
                    f.engine.sendResponse(key, TaskFixture::response(7));
            }
            for (const QString &image : f.engine.calls("image"))
                f.engine.sendState(image, DOWN_STATE_DOWNLOAD_FINISH);
        }
        QCOMPARE(f.driver->totals().downloading, 6);
        QCOMPARE(f.engine.calls("parse").mid(3), QStringList({keys[5], keys[4], keys[3]}));
    }

    void actions_data()
    {
        QTest::addColumn<TaskState>("state");
        QTest::addColumn<bool>("hasFile");
        QTest::addColumn<QList<TaskAction>>("actions");
        using A = TaskAction;
        QTest::newRow("waiting") << TaskState::None << false << QList<A>{A::Stop, A::Move};
        QTest::newRow("interrupted")
            << TaskState::Running << false << QList<A>{A::Resume, A::Retry, A::Remove};
        QTest::newRow("stopped") << TaskState::Stopped << false
                                 << QList<A>{A::Resume, A::Retry, A::Remove};
        QTest::newRow("failed") << TaskState::Failed << false << QList<A>{A::Retry, A::Remove};
        QTest::newRow("failed after it")
            << TaskState::Failed << true << QList<A>{A::Retry, A::Remove};
        QTest::newRow("finished") << TaskState::Finished << true
                                  << QList<A>{A::Upgrade, A::Rename, A::Remove, A::Open};
        QTest::newRow("file gone") << TaskState::Finished << false << QList<A>{A::Remove};
    }

    void actions()
    {
        QFETCH(TaskState, state);
        QFETCH(bool, hasFile);
        DriverFixture f;
        const QString key = state == TaskState::None ? f.add(f.url(1)) : u"key"_s;
        if (state != TaskState::None) {
            const ControllerLock lock;
            CXMLInfo *record = f.driver->controller().m_pHistory->Add(nullptr);
            record->MD5Code = key;
            record->State = int(state);
            record->FileName = f.root.filePath(u"video"_s);
            record->FileSize = 5;
        }
        if (hasFile)
            TaskFixture::write(f.root.filePath(u"video"_s), "video");
        QTEST(f.driver->actions(key), "actions");
    }

    void wishesAreFittedToTheOffer_data()
    {
        QTest::addColumn<QString>("wish");
        QTest::addColumn<bool>("keepSource");
        QTest::addColumn<QString>("formats");
        QTest::addColumn<QString>("chosen");
        const QString all = u"22 34 18 5"_s;
        QTest::newRow("open: the largest") << u":0x0"_s << false << all << u"22 mp4"_s;
        QTest::newRow("extension only") << u"flv:0x0"_s << false << all << u"34 flv"_s;
        QTest::newRow("unknown extension") << u"avi:0x0"_s << false << all << u"22 mp4"_s;
        QTest::newRow("exact size") << u"mp4:640x360"_s << false << all << u"18 mp4"_s;
        QTest::newRow("next larger") << u"flv:700x400"_s << false << all << u"22 mp4"_s;
        QTest::newRow("beyond the offer") << u"flv:4000x3000"_s << false << all << u"34 flv"_s;
        QTest::newRow("source") << u":0x0"_s << true << all << u"34 flv"_s;
        QTest::newRow("source with a wish") << u"mp4:0x0"_s << true << all << u"22 mp4"_s;
        QTest::newRow("source without FLV") << u":0x0"_s << true << u"18 22"_s << u"22 mp4"_s;
        QTest::newRow("unknown number") << u":0x0"_s << false << u"43"_s << u"43 no fmt"_s;
    }

    void wishesAreFittedToTheOffer()
    {
        QFETCH(QString, wish);
        QFETCH(bool, keepSource);
        QFETCH(QString, formats);
        QFETCH(QString, chosen);
        static const QHash<QString, QString> sizes{{u"22"_s, u"1280x720"_s},
                                                   {u"5"_s, u"320x240"_s}};
        QStringList list;
        QStringList streams;
        for (const QString &number : formats.split(u' ')) {
            list << number + u'/' + sizes.value(number, u"640x360"_s);
            streams << number + u"|http://s/"_s + number;
        }
        const QStringList size = wish.section(u':', 1).split(u'x');
        DownloadRequest request;
        request.keepSource = keepSource;
        request.profile =
            TaskFixture::profile(wish.section(u':', 0, 0), size[0].toInt(), size[1].toInt());
        DriverFixture f;
        request.address = f.url(1);
        const QString key = f.driver->add(request);
        f.turn();
        f.engine.sendResponse(key, "title=t\r\nfmt_list=" + list.join(u',').toLatin1() +
                                       "\r\nfmt_stream_map=" + streams.join(u',').toLatin1());
        f.turn();
        const tagTaskInfo video = f.engine.request(key);
        QCOMPARE(QString::fromLatin1(video.szDownloadURL),
                 u"http://s/"_s + chosen.section(u' ', 0, 0));
        QVERIFY(f.savePath(key).endsWith(u"/t."_s + chosen.section(u' ', 1)));
    }

    void fileTitles_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"Ночь на Волге"_s << u"Ночь на Волге"_s;
        QTest::newRow("forbidden") << u" ? a/b:\"c\" "_s << u"abc"_s;
        QTest::newRow("controls") << u"a\x1b[31m\u202Eb\u009Bc\u2028"_s << u"a[31mbc"_s;
        QTest::newRow("joiners and pairs")
            << u"می\u200Cخواهم \U0001F386"_s << u"می\u200Cخواهم \U0001F386"_s;
        QTest::newRow("place markers") << u"100%1 %L2 50% %"_s << u"100% 1 % L2 50% %"_s;
        QTest::newRow("nothing left") << u" ??? "_s << u"KEY"_s;
    }

    void fileTitles()
    {
        QFETCH(QString, title);
        narrowtext::setCodec(narrowtext::Codec::Utf8);
        QTEST(plaintext::fileTitle(title, u"KEY"_s), "name");
        narrowtext::setCodec(narrowtext::Codec::Latin1);
    }
};

QTEST_GUILESS_MAIN(DriverTest)
#include "tst_driver.moc"
