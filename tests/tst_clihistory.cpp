/** The program's history: what is interrupted goes on, what is finished is not fetched again. */
#include "clifixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <csignal>

class CliHistoryTest : public QObject, private CliFixture
{
    Q_OBJECT

private:
    // One field of each task, by page address.
    QMap<QString, QString> listed(const char *field) const
    {
        QMap<QString, QString> result;
        for (const QString &line :
             run({u"list"_s, u"--json"_s}).output.split(u'\n', Qt::SkipEmptyParts)) {
            const QJsonObject task = QJsonDocument::fromJson(line.toUtf8()).object();
            result.insert(task[u"address"].toString(),
                          task[QLatin1String(field)].toVariant().toString());
        }
        return result;
    }

    QString stateOf(const char *video) const { return listed("state")[page(video)]; }

    void refuseStreams(const std::string &prefix = "/stream/")
    {
        Misbehaviour refuse;
        refuse.prefix = prefix;
        refuse.answer = SiteAnswer{403, "text/html", {}, "no"};
        m_site.addMisbehaviour(refuse);
    }

    // Files with bytes whose name ends so; thumbnails come and go.
    std::size_t filesWith(const QString &suffix) const
    {
        std::size_t count = 0;
        for (const char *folder : {".", "out", "dl"}) {
            for (const QFileInfo &file :
                 QDir(path(folder)).entryInfoList({u'*' + suffix}, QDir::Files | QDir::Hidden))
                count += std::size_t(file.size() > 0 && !file.fileName().contains(u".jpg"_s));
        }
        return count;
    }

    // Ends the program in the middle of its transfers, when all that it has is on disk.
    void breakOff(const QStringList &arguments, std::size_t atWork, int signal)
    {
        QProcess process;
        begin(process, arguments);
        QVERIFY(m_site.waitForHeld(atWork, patience));
        const auto saved = [this] {
            const QByteArray address = QByteArray(R"("DownLoadURL")") + ':' + '"' + 'h';
            return contents(path("data/videodown/history.xml.journal")).count(address);
        };
        const auto isOnDisk = [&] {
            return std::size_t(saved()) == atWork && filesWith(u".part"_s) == atWork &&
                   filesWith(u".part-info"_s) == atWork;
        };
        QVERIFY(QTest::qWaitFor(isOnDisk, int(patience.count())));
        kill(pid_t(process.processId()), signal);
        QVERIFY(end(process).bySignal);
        endFaults();
    }

private slots:
    void initTestCase() { QVERIFY(startSite()); }
    void init() { makeFolder(); }
    void cleanup() { endFaults(); }

    void brokenOffWorkGoesOn_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QStringList>("again");
        const QStringList copies{u"--keep-source"_s, u"--downloads"_s, u"dl"_s, u"-oout"_s};
        const QStringList plain{u"-oout"_s};
        const QString stopped = u"stopped"_s;
        const QString interrupted = u"interrupted"_s;
        QTest::newRow("killed") << SIGKILL << interrupted << plain << QStringList{u"resume"_s};
        QTest::newRow("killed, copies")
            << SIGKILL << interrupted << copies << QStringList{u"resume"_s};
        QTest::newRow("stopped, copies") << SIGINT << stopped << copies << QStringList{u"resume"_s};
        QTest::newRow("killed, got again")
            << SIGKILL << interrupted << copies
            << QStringList{u"get"_s, page("small-1"), page("small-2")} + copies;
        QTest::newRow("stopped, tried again")
            << SIGINT << stopped << plain << QStringList{u"retry"_s};
    }

    void brokenOffWorkGoesOn()
    {
        QFETCH(int, signal);
        QFETCH(QString, state);
        QFETCH(QStringList, options);
        QFETCH(QStringList, again);
        if (losesSignals(signal))
            return skip("the emulator hangs");
        haltStreams();
        breakOff(QStringList{u"get"_s, u"-j1"_s, page("small-1"), page("small-2")} + options, 1,
                 signal);
        QCOMPARE(stateOf("small-1"), state);
        QCOMPARE(stateOf("small-2"), state);
        const std::size_t streams = m_site.requestCount("/stream/");
        const Ended ended = run(again);
        QVERIFY2(ended.code == 0, qPrintable(ended.error));
        QCOMPARE(files("out"), QStringList({u"Small video 1.flv"_s, u"Small video 2.flv"_s}));
        QCOMPARE(contents(path("out/Small video 1.flv")), smallVideo(1, 34));
        QCOMPARE(contents(path("out/Small video 2.flv")), smallVideo(2, 34));
        QCOMPARE(files("dl").isEmpty(), options.size() == 1);
        QCOMPARE(stateOf("small-1"), u"finished"_s);
        QCOMPARE(stateOf("small-2"), u"finished"_s);
        QCOMPARE(m_site.requestCount("/stream/"), streams + 2);
        const auto requests = m_site.requests();
        // Whichever page was answered first was at work when the program ended.
        QVERIFY(std::any_of(requests.cbegin(), requests.cend(), [](const SiteRequest &request) {
            return request.target.find("/stream/small-") == 0 && !request.range.empty();
        }));
        // Finished is finished.
        QVERIFY(run({u"resume"_s}).error.contains(u"nothing to do"_s));
        QCOMPARE(run(QStringList{u"get"_s, page("small-1")} + options).code, 0);
        QCOMPARE(m_site.requests().size(), requests.size());
    }

    void equalTitlesKeepTheirNames()
    {
        haltStreams(1000);
        breakOff({u"get"_s, u"-fmp4"_s, page("sameTitleA1"), page("sameTitleB2")}, 2, SIGKILL);
        const auto paths = listed("path");
        QCOMPARE(run({u"resume"_s, u"-j1"_s}).code, 0);
        QCOMPARE(listed("path"), paths);
        QCOMPARE(contents(paths[page("sameTitleA1")]), media("carpet-18.mp4"));
        QCOMPARE(contents(paths[page("sameTitleB2")]), media("colours-18.mp4"));
        QCOMPARE(files().size(), 2);
    }

    void expiredAddressesAreAskedForAgain_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("code");
        QTest::newRow("403") << 403 << 0;
        QTest::newRow("410") << 410 << 0;
        QTest::newRow("404") << 404 << 1;
    }

    void expiredAddressesAreAskedForAgain()
    {
        QFETCH(int, status);
        Misbehaviour once;
        once.prefix = "/stream/";
        once.firstRequests = 1;
        once.answer = SiteAnswer{status, "text/html", {}, "no"};
        m_site.addMisbehaviour(once);
        QTEST(run({u"get"_s, page("small-4")}).code, "code");
    }

    // Two failed tasks remember one name, which is free again, until a user's file takes it.
    void failedWorkIsTriedAgain()
    {
        refuseStreams();
        for (const char *video : {"sameTitleA1", "sameTitleB2"})
            QCOMPARE(run({u"get"_s, u"-fmp4"_s, page(video)}).code, 1);
        QCOMPARE(stateOf("sameTitleA1"), u"failed"_s);
        QVERIFY(files().isEmpty());
        endFaults();
        QFile users(listed("path")[page("sameTitleA1")]);
        QVERIFY(users.open(QIODevice::WriteOnly | QIODevice::NewOnly));
        users.write("mine");
        users.close();
        QCOMPARE(run({u"retry"_s}).code, 0);
        const auto paths = listed("path");
        QCOMPARE(contents(paths[page("sameTitleA1")]), media("carpet-18.mp4"));
        QCOMPARE(contents(paths[page("sameTitleB2")]), media("colours-18.mp4"));
        QCOMPARE(contents(users.fileName()), "mine");
        QCOMPARE(run({u"retry"_s, page("sameTitleA1")}).code, 1); // finished
    }

    void finishedWorkIsDoneAgainOnRequestOnly()
    {
        const QStringList get{u"get"_s, u"--json"_s, page("small-3")};
        const auto fetched = [this] { return m_site.requestCount("/stream/small-3/"); };
        const std::size_t before = fetched();
        QCOMPARE(run(get).code, 0);
        const Ended there = run(get);
        QCOMPARE(there.code, 0);
        QVERIFY(there.output.contains(u"\"alreadyThere\":true"_s));
        QVERIFY(there.output.contains(path("Small video 3.flv")));
        QCOMPARE(fetched(), before + 1);
        QCOMPARE(run(get + QStringList{u"--again"_s}).code, 0);
        QCOMPARE(fetched(), before + 2);
        QVERIFY(QFile::remove(path("Small video 3.flv")));
        QCOMPARE(run(get).code, 0);
        QCOMPARE(fetched(), before + 3);
        QCOMPARE(files(), QStringList{u"Small video 3.flv"_s});
    }

    void upgrades_data()
    {
        QTest::addColumn<QString>("wish");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QByteArray>("file");
        const QByteArray small = media("card-34.flv");
        QTest::newRow("already as large")
            << u"flv:640x360"_s << false << 0 << u"already as large"_s << small;
        QTest::newRow("larger") << u"mp4:1280x720"_s << false << 0 << u"from 640x360 to 1280x720"_s
                                << media("card-22.mp4");
        QTest::newRow("none in this container")
            << u"flv:4000x3000"_s << false << 0 << u"from 640x360 to 854x480"_s
            << media("card-35.flv");
        QTest::newRow("fails") << u"mp4:1280x720"_s << true << 1 << u"403"_s << small;
    }

    void upgrades()
    {
        QFETCH(QString, wish);
        QFETCH(bool, refused);
        QFETCH(int, code);
        QFETCH(QString, told);
        QFETCH(QByteArray, file);
        const QString address = page("yunXiaShan0");
        QCOMPARE(run({u"get"_s, u"--keep-source"_s, u"-fflv:640x360"_s, u"--downloads"_s, u"dl"_s,
                      address})
                     .code,
                 0);
        if (refused)
            refuseStreams("/stream/yunXiaShan0/22");
        const Ended ended = run({u"upgrade"_s, u"-f"_s, wish, address});
        QCOMPARE(ended.code, code);
        QVERIFY2(ended.error.contains(told), qPrintable(ended.error));
        QCOMPARE(contents(listed("path")[address]), file);
        QVERIFY(!listed("path")[address].contains(u"/dl/"_s)); // it is still the source to be kept
        QCOMPARE(stateOf("yunXiaShan0"), u"finished"_s);
        QCOMPARE(files("dl").size(), 1);
    }

    void renamingAndRemoving()
    {
        QCOMPARE(run({u"get"_s, u"--keep-source"_s, u"--downloads"_s, u"dl"_s, page("small-1"),
                      page("small-2")})
                     .code,
                 0);
        const QString key = run({u"list"_s}).output.left(8);
        QVERIFY(run({u"show"_s, key}).output.contains(u"TaskCreateTime: "_s));
        QFile users(path("mine.flv"));
        QVERIFY(users.open(QIODevice::WriteOnly));
        QCOMPARE(run({u"rename"_s, page("small-1"), u"mine"_s}).code, 1);
        QVERIFY(!files("dl").contains(u"mine.flv"_s) && users.remove());
        QCOMPARE(run({u"rename"_s, page("small-1"), u"???"_s}).code, 1);
        QCOMPARE(run({u"rename"_s, page("small-1"), u"a: b.flv"_s}).code, 0);
        QCOMPARE(files(), QStringList({u"Small video 2.flv"_s, u"a b.flv"_s}));
        QCOMPARE(files("dl"), files());
        QCOMPARE(contents(listed("path")[page("small-1")]), smallVideo(1, 34));
        QCOMPARE(run({u"remove"_s, page("small-1"), u"nonsense"_s}).code, 1);
        QCOMPARE(run({u"remove"_s, page("small-1")}).code, 0);
        QCOMPARE(files().size(), 2);
        QCOMPARE(run({u"remove"_s, u"--delete-files"_s, page("small-2")}).code, 0);
        QCOMPARE(files(), QStringList{u"a b.flv"_s});
        QCOMPARE(files("dl"), files());
        QVERIFY(listed("key").isEmpty());
    }

    // Two tasks whose keys begin alike.
    void namesOfTasks()
    {
        QCOMPARE(run({u"get"_s, u"--history"_s, u"own.xml"_s, page("small-1")}).code, 0);
        QFile history(path("own.xml"));
        const QByteArray text = contents(history.fileName());
        const qsizetype begin = text.indexOf("<Info>");
        const qsizetype end = text.indexOf("</Info>") + 7;
        QByteArray task = text.mid(begin, end - begin);
        const qsizetype key = task.indexOf("<MD5Code>") + 9;
        const QString full = QString::fromLatin1(task.mid(key, 32));
        task[key + 31] = 'x';
        QVERIFY(history.open(QIODevice::WriteOnly));
        history.write(text.left(end) + task + text.mid(end));
        history.close();
        const auto show = [this](const QString &name) {
            return run({u"show"_s, u"--history"_s, u"own.xml"_s, name});
        };
        const Ended both = show(full.left(31));
        QCOMPARE(both.code, 1);
        QVERIFY(both.error.contains(u"2 tasks have keys"_s));
        QCOMPARE(show(full).code, 0);
        QCOMPARE(run({u"remove"_s, u"--delete-files"_s, u"--history"_s, u"own.xml"_s, full,
                      page("small-1")})
                     .code,
                 0);
        QVERIFY(!contents(history.fileName()).contains("<MD5Code>" + full.toLatin1()));
        QCOMPARE(contents(history.fileName()).count("<Info>"), 1);
    }

    // What is in the way of the new history stays there.
    void unsavedHistories()
    {
        const QStringList own{u"--history"_s, u"own.xml"_s, page("small-1")};
        QCOMPARE(run(QStringList{u"get"_s} + own).code, 0);
        QVERIFY(QDir(m_root->path()).mkpath(u"own.xml.new/x"_s));
        for (const QStringList &words :
             {QStringList{u"get"_s, u"--again"_s}, {u"remove"_s, u"--delete-files"_s}}) {
            const Ended ended = run(words + own);
            QCOMPARE(ended.code, 1);
            QVERIFY2(ended.error.contains(u"cannot be saved"_s), qPrintable(ended.error));
            QCOMPARE(files(), QStringList{u"Small video 1.flv"_s});
        }
    }

    void conversions()
    {
        if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty())
            return skip("needs ffmpeg");
        const QStringList get{u"get"_s, u"-fmkv:320x180"_s, u"--downloads"_s, u"dl"_s,
                              page("nochNaVolge")};
        QFile users(path("Ночь на Волге огни и туман.mkv"));
        QVERIFY(users.open(QIODevice::WriteOnly));
        QStringList former = get + QStringList{u"--json"_s};
        former[1] = u"-favi:320x180"_s; // what is asked for last counts
        QVERIFY(run(former).output.contains(u"\"needed\":true"_s));
        const std::size_t requests = m_site.requests().size();
        for (int round = 1; round <= 2; ++round) {
            const Ended ended = run(get + QStringList{u"--convert"_s});
            QVERIFY2(ended.code == 0, qPrintable(ended.error));
            const QString made = path("Ночь на Волге огни и туман_0.mkv");
            QCOMPARE(ended.output, made + u'\n');
            QVERIFY(contents(made).startsWith("\x1a\x45\xdf\xa3"));
            QCOMPARE(ended.error.contains(u"converting: "_s), round == 1);
        }
        QCOMPARE(m_site.requests().size(), requests);
        QCOMPARE(users.size(), 0);
        QCOMPARE(contents(path("dl/Ночь на Волге огни и туман.flv")), media("cells-5.flv"));
        // No real video: the source stays, and is not fetched again.
        QCOMPARE(run({u"get"_s, u"-favi"_s, u"--convert"_s, page("small-1")}).code, 1);
        QCOMPARE(stateOf("small-1"), u"failed"_s);
        const std::size_t streams = m_site.requestCount("/stream/");
        const Ended retried = run({u"retry"_s, u"--convert"_s});
        QCOMPARE(retried.code, 1);
        QVERIFY(retried.error.contains(u"ffmpeg: "_s) && retried.error.contains(u"is safe"_s));
        QCOMPARE(contents(path("Small video 1.flv")), smallVideo(1, 34));
        QCOMPARE(m_site.requestCount("/stream/"), streams);
        QCOMPARE(QDir(m_root->path()).entryList(QDir::Files | QDir::Hidden).filter(u"conv"_s),
                 QStringList());
    }

    /** A folder of its own file system, too small at first: other tasks go on, and this one later.
     */
    void fullDiskCostsNothing_data()
    {
        QTest::addColumn<bool>("isAnnounced");
        QTest::newRow("seen before the first byte") << true;
        QTest::newRow("in the middle of a video without announced length") << false;
    }

    void fullDiskCostsNothing()
    {
        QFETCH(const bool, isAnnounced);
        const char *const script = "mount -t tmpfs -o size=128k none full || exit 77\n"
                                   "head -c 90000 /dev/zero > full/filler\n"
                                   "videodown=$1; shift; told() { \"$@\"; echo $?; }\n"
                                   "told \"$videodown\" get -o full \"$1\"\n"
                                   "told \"$videodown\" get -o other \"$2\"\n"
                                   "told \"$videodown\" retry\n"
                                   "rm full/filler; told \"$videodown\" retry\n"
                                   "cp full/*.flv other";
        QDir(m_root->path()).mkdir(u"full"_s);
        Misbehaviour once;
        once.prefix = "/get_video_info?video_id=small-2";
        once.firstRequests = 1;
        once.answer = SiteAnswer{404, "text/plain", {}, "x"};
        m_site.addMisbehaviour(once);
        Misbehaviour unannounced;
        unannounced.prefix = "/stream/small-1/";
        unannounced.unannounced = !isAnnounced;
        m_site.addMisbehaviour(unannounced);
        QProcess shell;
        shell.setWorkingDirectory(m_root->path());
        shell.start(u"unshare"_s,
                    {u"-rm"_s, u"sh"_s, u"-c"_s, QString::fromLatin1(script), u"sh"_s,
                     QStringLiteral(VIDEODOWN_PROGRAM), page("small-1"), page("small-2")});
        const Ended ended = end(shell);
        if (ended.code == 77 || ended.error.startsWith(u"unshare:"_s))
            return skip("cannot mount");
        QCOMPARE(ended.output.split(u'\n').filter(QRegularExpression(u"^[0-9]$"_s)).join(u' '),
                 u"1 1 1 0"_s);
        QCOMPARE(ended.error.count(u"is full"_s), 2);
        QCOMPARE(contents(path("other/Small video 1.flv")), smallVideo(1, 34));
        QCOMPARE(contents(path("other/Small video 2.flv")), smallVideo(2, 34));
    }

    void interruptedConversionsGoOn_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QString>("state");
        QTest::newRow("stopped") << SIGINT << u"stopped"_s;
        QTest::newRow("killed") << SIGKILL << u"interrupted"_s;
    }

    void interruptedConversionsGoOn()
    {
        QFETCH(const int, signal);
        QFETCH(const QString, state);
        if (losesSignals())
            return skip("the emulator hangs");
        if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty())
            return skip("needs ffmpeg");
        QDir(m_root->path()).mkdir(u"bin"_s);
        QFile slow(path("bin/ffmpeg"));
        QVERIFY(slow.open(QIODevice::WriteOnly));
        slow.write("#!/bin/sh\nexec sleep 600\n");
        slow.close();
        slow.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, path("bin:") + environment.value(u"PATH"_s));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        begin(process, {u"get"_s, u"-fmkv"_s, u"--convert"_s, page("nochNaVolge")});
        QByteArray told;
        while (!told.contains("converting: ") && process.waitForReadyRead(int(patience.count())))
            told += process.readAllStandardOutput();
        QVERIFY(told.contains("converting: "));
        const auto halves = [this] {
            const QStringList files = QDir(m_root->path()).entryList(QDir::Files | QDir::Hidden);
            return files.filter(u"conv"_s).size();
        };
        QTRY_COMPARE(halves(), 1);
        kill(pid_t(process.processId()), signal);
        QVERIFY(end(process).bySignal);
        QCOMPARE(stateOf("nochNaVolge"), state);
        QCOMPARE(halves(), 0);
        const std::size_t requests = m_site.requests().size();
        QCOMPARE(run({u"resume"_s, u"--convert"_s}).code, 0);
        QCOMPARE(m_site.requests().size(), requests);
        QVERIFY(QFileInfo(path("Ночь на Волге огни и туман.mkv")).size() > 0);
        QCOMPARE(contents(path("Ночь на Волге огни и туман.flv")), media("cells-34.flv"));
    }

    void withoutConverterNothingBegins()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, u"/none"_s);
        process.setProcessEnvironment(environment);
        begin(process, {u"get"_s, u"--convert"_s, page("small-9")});
        const Ended ended = end(process);
        QCOMPARE(ended.code, 2);
        QVERIFY(ended.error.contains(u"needs ffmpeg"_s));
        QCOMPARE(m_site.requestCount("/get_video_info?video_id=small-9"), std::size_t(0));
    }

    void oneProgramAtATime()
    {
        haltStreams();
        QProcess process;
        begin(process, {u"get"_s, page("small-1")});
        QVERIFY(m_site.waitForHeld(1, patience));
        const Ended second = run({u"list"_s});
        QCOMPARE(second.code, 4);
        QVERIFY(second.error.contains(u"process %1"_s.arg(process.processId())));
        QCOMPARE(run({u"list"_s, u"--history"_s, u"other.xml"_s}).code, 0);
        endFaults();
        QCOMPARE(end(process).code, 0);
    }

    void damagedHistoriesAreSetAside()
    {
        QCOMPARE(run({u"get"_s, u"--history"_s, u"own.xml"_s, page("small-1")}).code, 0);
        QVERIFY(!QFile::exists(path("data")));
        QFile history(path("own.xml"));
        QVERIFY(history.resize(history.size() - 30));
        const Ended ended = run({u"list"_s, u"--history"_s, u"own.xml"_s});
        QCOMPARE(ended.code, 0);
        QVERIFY(ended.error.contains(u"damaged"_s));
        QVERIFY(ended.output.contains(u"Small video 1"_s));
        QCOMPARE(QDir(m_root->path()).entryList({u"own.xml.damaged-*"_s}).size(), 1);
    }
};

QTEST_GUILESS_MAIN(CliHistoryTest)
#include "tst_clihistory.moc"
