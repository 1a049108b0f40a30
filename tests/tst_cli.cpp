/** The program videodown as its users meet it: arguments, streams, exit statuses, signals. */
#include "clifixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <cwchar>
#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int columnsOf(const QString &text)
{
    int columns = 0;
    for (const char32_t character : text.toUcs4())
        columns += std::max(wcwidth(static_cast<wchar_t>(character)), 0);
    return columns;
}

} // namespace

class CliTest : public QObject, private CliFixture
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(startSite());
        SiteVideo video = siteCatalogue().front();
        video.id = "evilTitle_1";
        video.title = "evil \x1b[31mred\x07 \xc2\x9b\xc2\x9f title";
        m_site.addVideo(video);
        video.id = "longTitle_1";
        video.title = std::string(300, 'x');
        m_site.addVideo(video);
    }

    void init() { makeFolder(); }
    void cleanup() { endFaults(); }

    void answers_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("told"); // on standard output for 0, else on standard error
        QTest::newRow("help") << u"--help"_s << 0 << u"formats ADDRESS"_s;
        QTest::newRow("help on get") << u"get -h"_s << 0 << u"--keep-source"_s;
        QTest::newRow("help on formats") << u"help formats"_s << 0 << u"videodown formats"_s;
        QTest::newRow("version") << u"--version"_s << 0 << u", libcurl "_s;
        QTest::newRow("nothing") << QString() << 2 << u"no command"_s;
        QTest::newRow("unknown command") << u"fetch x"_s << 2 << u"\"fetch\""_s;
        QTest::newRow("unknown option") << u"get --fast PAGE"_s << 2 << u"fast"_s;
        QTest::newRow("no address") << u"get"_s << 2 << u"no address"_s;
        QTest::newRow("no jobs") << u"get -j 0 PAGE"_s << 2 << u"--jobs: \"0\""_s;
        QTest::newRow("too many jobs") << u"get -j 101 PAGE"_s << 2 << u"--jobs: \"101\""_s;
        QTest::newRow("most jobs") << u"get -j 100 ftp://host/x"_s << 1 << u"not an"_s;
        QTest::newRow("odd jobs") << u"get -j3x PAGE"_s << 2 << u"\"3x\""_s;
        QTest::newRow("odd format") << u"get -f mp4:wide PAGE"_s << 2 << u"\"mp4:wide\""_s;
        QTest::newRow("empty picture") << u"formats -f mp4:0x9 PAGE"_s << 2 << u"from 1 to"_s;
        QTest::newRow("odd progress") << u"get --progress no PAGE"_s << 2 << u"\"no\""_s;
        QTest::newRow("odd action") << u"get --on-conflict no PAGE"_s << 2 << u"\"no\" is none"_s;
        QTest::newRow("odd proxy") << u"get --proxy host PAGE"_s << 2 << u"host:port"_s;
        QTest::newRow("proxy kind") << u"get --proxy ftp://h:1 PAGE"_s << 2 << u"host:port"_s;
        QTest::newRow("connections") << u"get --connections 9 PAGE"_s << 2 << u"from 1 to 8"_s;
        QTest::newRow("no rate") << u"get --limit-rate 5 PAGE"_s << 2 << u"\"5\" is not a rate"_s;
        QTest::newRow("odd rate") << u"get --limit-rate 2Mb PAGE"_s << 2 << u"\"2Mb\""_s;
        QTest::newRow("odd retries") << u"get --retries -1 PAGE"_s << 2 << u"from 0 to 99"_s;
        QTest::newRow("no agent") << u"get --user-agent= PAGE"_s << 2 << u"--user-agent: it"_s;
        QTest::newRow("password for nobody")
            << u"get --proxy h:1 --proxy-password-file /dev/null PAGE"_s << 2 << u"names a user"_s;
        QTest::newRow("dry run of nothing") << u"get --dry-run NOPAGE"_s << 1 << u"404 Not"_s;
        QTest::newRow("log is a folder") << u"get --log . PAGE"_s << 3 << u"log \".\""_s;
        QTest::newRow("log on a full disk")
            << u"get --log /dev/full ftp://host/x"_s << 1 << u"No space left on device\n0"_s;
        QTest::newRow("quiet and more") << u"get -q -v PAGE"_s << 2 << u"exclude each"_s;
        QTest::newRow("missing list") << u"get --from none.txt"_s << 2 << u"\"none.txt\""_s;
        QTest::newRow("folder as list") << u"get --from ."_s << 2 << u"a folder"_s;
        QTest::newRow("folder is a file") << u"get -o /dev/null PAGE"_s << 3 << u"/dev/null"_s;
        QTest::newRow("folder not to be made") << u"get -o /proc/x PAGE"_s << 3 << u"/proc/x"_s;
        QTest::newRow("odd folder name") << u"get -o a%1b PAGE"_s << 3 << u"percent"_s;
        QTest::newRow("no web address") << u"get ftp://host/x"_s << 1 << u"ftp://host/x: not an"_s;
        QTest::newRow("nothing to list by") << u"list x"_s << 2 << u"too many"_s;
        QTest::newRow("nothing to show") << u"show"_s << 2 << u"too few"_s;
        QTest::newRow("upgrade to what") << u"upgrade -f mp4 PAGE"_s << 2 << u"how large"_s;
        QTest::newRow("unknown task") << u"show ABC"_s << 1 << u"no task \"ABC\""_s;
        QTest::newRow("odd history") << u"list --history ."_s << 4 << u"not a file"_s;
        QTest::newRow("quiet failure") << u"get -q NOPAGE"_s << 1 << u"404 Not Found"_s;
        QTest::newRow("site says no") << u"formats NOPAGE"_s << 1 << u"404 Not Found"_s;
        QTest::newRow("unknown host") << u"get NOHOST"_s << 1 << u"unknown host"_s;
        QTest::newRow("dead proxy") << u"get --proxy 127.0.0.1:1 PAGE"_s << 1 << u"proxy"_s;
        QTest::newRow("missing info command")
            << u"get --video-info-command none.such PAGE"_s << 1 << u"cannot be started"_s;
        QTest::newRow("name too long") << u"get LONG"_s << 1 << u"name is too long"_s;
        QTest::newRow("address too long")
            << u"get http://host/"_s + QString(1100, u'x') << 1 << u"longer than 1023"_s;
    }

    void answers()
    {
        QFETCH(QString, arguments);
        QFETCH(int, code);
        QFETCH(QString, told);
        QStringList list = arguments.split(u' ', Qt::SkipEmptyParts);
        list.replaceInStrings(QRegularExpression(u"^PAGE$"_s), page("small-1"));
        list.replaceInStrings(QRegularExpression(u"^NOPAGE$"_s), page("failing-2"));
        list.replaceInStrings(QRegularExpression(u"^LONG$"_s), page("longTitle_1"));
        // Longer than names may be: no name server is asked.
        list.replaceInStrings(QRegularExpression(u"^NOHOST$"_s),
                              u"http://"_s + QString(u"x"_s.repeated(60) + u'.').repeated(5) +
                                  u"/a"_s);
        const Ended ended = run(list);
        QVERIFY(!ended.bySignal);
        QCOMPARE(ended.code, code);
        QVERIFY2((code == 0 ? ended.output : ended.error).contains(told), qPrintable(ended.error));
        QVERIFY((code == 0 ? ended.error : ended.output).isEmpty());
        QVERIFY(files().isEmpty());
    }

    void getPrintsPathsOnly()
    {
        const Ended ended =
            run({u"get"_s, u"-o"_s, u"new/folder"_s, u"-f"_s, u"mp4"_s, u"--from"_s, u"-"_s,
                 page("small-1"), page("small-1")},
                "\xef\xbb\xbf# comment\n\n  " + page("small-2").toUtf8() + "\r\nftp://x\n");
        QCOMPARE(ended.code, 1);
        QStringList paths = ended.output.split(u'\n', Qt::SkipEmptyParts);
        paths.sort();
        QCOMPARE(paths.size(), 2);
        QCOMPARE(run({u"get"_s, u"-q"_s, u"-o"_s, u"new/folder"_s, page("small-1")}).error,
                 QString());
        QCOMPARE(contents(paths[0]), smallVideo(1, 18));
        QCOMPARE(contents(paths[1]), smallVideo(2, 18));
        QVERIFY(paths[0].startsWith(path("new/folder/")));
        QVERIFY(ended.error.contains(u"failed: ftp://x: "_s));
        QVERIFY(ended.error.endsWith(u"2 finished, 1 failed\n"_s));
        QVERIFY(!ended.error.contains(QChar(u'\x1b')));
    }

    void equalTitlesAreTwoFiles()
    {
        const Ended ended = run({u"get"_s, u"-q"_s, u"--keep-source"_s, u"--downloads"_s, u"dl"_s,
                                 page("sameTitleA1"), page("sameTitleB2")});
        QCOMPARE(ended.code, 0);
        QVERIFY(ended.error.isEmpty());
        const QStringList paths = ended.output.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(paths.size(), 2);
        QVERIFY(paths[0] != paths[1]);
        QVERIFY(contents(paths[0]) != contents(paths[1]));
        for (const QString &copy : paths)
            QCOMPARE(contents(copy), contents(path("dl/") + QFileInfo(copy).fileName()));
    }

    void jsonLines()
    {
        const Ended ended = run({u"get"_s, u"--json"_s, u"-j1"_s, u"--progress"_s, u"never"_s,
                                 page("failing-4"), page("evilTitle_1")});
        QCOMPARE(ended.code, 1);
        QHash<QString, QJsonObject> objects;
        for (const QString &line : ended.output.split(u'\n', Qt::SkipEmptyParts)) {
            const QJsonObject object = QJsonDocument::fromJson(line.toUtf8()).object();
            QCOMPARE(object[u"schema"].toInt(), 1);
            objects.insert(object[u"address"].toString(), object);
        }
        QCOMPARE(objects.size(), 2);
        const QJsonObject failed = objects[page("failing-4")];
        QCOMPARE(failed[u"status"].toString(), u"failed"_s);
        QVERIFY(failed[u"error"][u"cause"].toString().contains(u"404"_s));
        const QJsonObject finished = objects[page("evilTitle_1")];
        QCOMPARE(finished[u"path"].toString(), path("evil [31mred  title.flv"));
        QCOMPARE(finished[u"bytes"].toInteger(), QFileInfo(finished[u"path"].toString()).size());
        QVERIFY(!ended.output.contains(QRegularExpression(u"[\u0080-\u009F]"_s)));
    }

    void formatsMarksTheChoice()
    {
        const Ended text = run({u"formats"_s, u"-f"_s, u"flv"_s, page("small-7")});
        QCOMPARE(text.code, 0);
        QVERIFY(text.output.contains(QRegularExpression(u"\n\\*\\s+34\\s+flv\\s+640x360\n"_s)));
        QVERIFY(text.output.contains(QRegularExpression(u"\n \\s+18\\s+mp4\\s+640x360\n"_s)));
        const Ended json = run({u"formats"_s, u"--json"_s, page("small-7")});
        const QJsonObject object = QJsonDocument::fromJson(json.output.toUtf8()).object();
        QCOMPARE(object[u"formats"].toArray().size(), 2);
        QVERIFY(files().isEmpty());
    }

    /** Says what would be done, names that would collide included, and does none of it. */
    void dryRunWritesNothing()
    {
        const QStringList pages{page("small-1"), page("small-2")};
        QCOMPARE(run({u"get"_s, pages[0], u"--limit-rate"_s, u"1M"_s}).code, 0);
        const auto all = [this] {
            return QDir(m_root->path()).entryList(QDir::AllEntries | QDir::Hidden);
        };
        const QStringList before = all();
        const QByteArray history = contents(path("data/videodown/history.xml"));
        const Ended ended = run(QStringList{u"get"_s, u"--dry-run"_s, u"-o"_s, u"new"_s} + pages);
        QVERIFY2(ended.code == 0, qPrintable(ended.error));
        QVERIFY(ended.error.contains(u"already there: Small video 1"_s));
        QVERIFY(ended.error.contains(u"would download: Small video 2"_s));
        const QStringList paths = ended.output.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(QSet<QString>(paths.begin(), paths.end()),
                 (QSet<QString>{path("Small video 1.flv"), path("new/Small video 2.flv")}));
        const Ended again = run({u"get"_s, u"--dry-run"_s, u"--again"_s, u"--json"_s,
                                 u"--history"_s, u"none.xml"_s, pages[0]});
        const QJsonObject object = QJsonDocument::fromJson(again.output.toUtf8()).object();
        QCOMPARE(object[u"path"].toString(), path("Small video 1_0.flv"));
        QCOMPARE(object[u"format"][u"number"].toInt(), 34);
        QCOMPARE(all(), before);
        QCOMPARE(contents(path("data/videodown/history.xml")), history);
    }

    void takenNames()
    {
        QFile theirs(path("Small video 1.flv"));
        QVERIFY(theirs.open(QIODevice::WriteOnly) && theirs.write("theirs") == 6);
        theirs.close();
        const QStringList get{u"get"_s, u"--json"_s, page("small-1"), u"--on-conflict"_s};
        const auto object = [](const Ended &ended) {
            return QJsonDocument::fromJson(ended.output.toUtf8()).object();
        };
        for (const bool isDry : {true, false}) {
            const QStringList skip = get + QStringList{u"skip"_s} +
                                     (isDry ? QStringList{u"--dry-run"_s} : QStringList());
            const Ended ended = run(skip);
            QCOMPARE(ended.code, 0);
            QCOMPARE(object(ended)[u"path"].toString(), theirs.fileName());
            QVERIFY(isDry ? object(ended)[u"skipped"].toBool()
                          : object(ended)[u"status"].toString() == u"skipped"_s);
            QVERIFY(isDry ? ended.error.contains(u"would skip: "_s)
                          : ended.error.endsWith(u"0 finished, 0 failed, 1 skipped\n"_s));
        }
        QVERIFY(run({u"list"_s}).output.isEmpty());
        QCOMPARE(contents(theirs.fileName()), "theirs");
        const QStringList overwrite = get + QStringList{u"overwrite"_s};
        QVERIFY(object(run(overwrite + QStringList{u"--dry-run"_s}))[u"overwrites"].toBool());
        const QJsonObject finished = object(run(overwrite));
        QVERIFY(finished[u"overwrote"].toBool());
        QCOMPARE(finished[u"path"].toString(), theirs.fileName());
        QCOMPARE(contents(theirs.fileName()), smallVideo(1, 34));
        QCOMPARE(files(), QStringList{u"Small video 1.flv"_s});
        QVERIFY(run({u"list"_s, u"--json"_s}).output.contains(theirs.fileName()));
        // Two equal titles: the second video does not cost the first one.
        const QStringList both{page("sameTitleA1"), page("sameTitleB2")};
        QCOMPARE(run(QStringList{u"get"_s, u"--on-conflict"_s, u"overwrite"_s} + both).code, 0);
        QCOMPARE(files().size(), 3);
    }

    void proxyPassword()
    {
        QVERIFY(m_site.startProxy("user", "pass"));
        const QString proxy = u"user@127.0.0.1:%1"_s.arg(m_site.proxyPort());
        QFile file(path("word"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("pass\n") > 0);
        file.close();
        const QStringList get{u"get"_s, u"--again"_s, page("small-1")};
        const QStringList through = get + QStringList{u"--proxy"_s, proxy};
        QCOMPARE(run(through).code, 1);
        QCOMPARE(run(through + QStringList{u"--proxy-password-file"_s, u"word"_s}).code, 0);
        qputenv("VIDEODOWN_PROXY_PASSWORD", "pass");
        QCOMPARE(run(through).code, 0);
        qunsetenv("VIDEODOWN_PROXY_PASSWORD");
        qputenv("http_proxy", "http://127.0.0.1:1");
        QCOMPARE(run(get).code, 0);
        QCOMPARE(run(get + QStringList{u"--proxy"_s, u"env"_s}).code, 1);
        qunsetenv("http_proxy");
    }

    /** What -v and the log tell; and that neither they nor any file or process list has secrets. */
    void tellsWhatItDoes()
    {
        QVERIFY(m_site.startProxy("user", "Pa55word"));
        QFile script(path("info"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("cat /proc/$$/cmdline /proc/$PPID/cmdline > processes\necho title=T\n"
                     "echo fmt_list=18/640x360\necho 'fmt_stream_map=18|" +
                     QByteArray::fromStdString(m_site.baseAddress()) +
                     "/stream/small-3/18'\necho 'request_header=Cookie: visitor=5ecret'\n");
        script.close();
        const QStringList get{u"get"_s,
                              u"-v"_s,
                              u"--log"_s,
                              u"log"_s,
                              u"--history"_s,
                              u"h.xml"_s,
                              u"--video-info-command"_s,
                              u"sh info"_s,
                              u"--proxy"_s,
                              u"user@127.0.0.1:%1"_s.arg(m_site.proxyPort()),
                              u"http://any.invalid/page"_s};
        Misbehaviour cut;
        cut.prefix = "/stream/";
        cut.cutAfter = videoSize / 2;
        cut.firstRequests = 1;
        m_site.addMisbehaviour(cut);
        qputenv("VIDEODOWN_PROXY_PASSWORD", "Pa55word");
        QCOMPARE(run(get + QStringList{u"--retries"_s, u"0"_s, u"ftp://me:5ecret@x"_s}).code, 1);
        cut.cutAfter = videoSize / 4;
        m_site.addMisbehaviour(cut);
        const Ended ended = run(get);
        qunsetenv("VIDEODOWN_PROXY_PASSWORD");
        QCOMPARE(ended.code, 0);
        const QString log = QString::fromUtf8(contents(path("log")));
        for (const QString &told :
             {u"the command has answered: T (http://any.invalid/page)\n"_s,
              u"chosen: format 18, mp4 640x360, for \"%1\", of which a part is there\n"_s.arg(
                  path("T.mp4")),
              u"trying again: T, try 2\n"_s, u"finished: T (http://any.invalid/page)\n"_s,
              u"1 finished, 0 failed\n"_s}) {
            QVERIFY2(ended.error.contains(told), qPrintable(told + ended.error));
            QVERIFY2(log.contains(told), qPrintable(told + log));
        }
        QVERIFY(log.contains(u"failed: ftp://x: "_s));
        for (const QString &line : log.split(u'\n', Qt::SkipEmptyParts))
            QVERIFY(
                line.contains(QRegularExpression(u"^2\\d{3}-\\d\\d-\\d\\dT[0-9:]{8}\\S+ \\w"_s)));
        QVERIFY(contents(path("processes")).contains("videodown"));
        QByteArray all = ended.error.toUtf8();
        for (const QFileInfo &file : QDir(m_root->path()).entryInfoList(QDir::Files | QDir::Hidden))
            all += file.fileName() == u"info" ? QByteArray() : contents(file.filePath());
        QVERIFY(all.contains("any.invalid") && !all.contains("5ecret") &&
                !all.contains("Pa55word"));
    }

    void settings_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("jobs"); // in the environment
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("told"); // beside the wrong value that counts
        QTest::newRow("file") << QByteArray("# c\n\n jobs = x = y \n") << QByteArray() << u""_s
                              << u"config, line 3: \"x = y\""_s;
        QTest::newRow("environment")
            << QByteArray("jobs=1") << QByteArray("y") << u""_s << u"VIDEODOWN_JOBS: \"y\""_s;
        QTest::newRow("command line")
            << QByteArray("jobs=x") << QByteArray("y") << u"-j z"_s << u"--jobs: \"z\""_s;
        QTest::newRow("no file") << QByteArray("odd") << QByteArray() << u"--no-config -j z"_s
                                 << u"--jobs: \"z\""_s;
        QTest::newRow("unknown") << QByteArray("job=1") << QByteArray() << u""_s
                                 << u"line 1: there is no option \"job\""_s;
        QTest::newRow("not for files") << QByteArray("delete-files=yes") << QByteArray() << u""_s
                                       << u"no option \"delete-files\""_s;
        QTest::newRow("no value") << QByteArray("\njobs") << QByteArray() << u""_s
                                  << u"line 2: there is no \"=\""_s;
        QTest::newRow("switch") << QByteArray("quiet=maybe") << QByteArray() << u""_s
                                << u"line 1: \"maybe\""_s;
        QTest::newRow("beside another")
            << QByteArray("video-info=auto\nquiet=No") << QByteArray()
            << u"--video-info-command none.such"_s << u"cannot be started"_s;
    }

    void settings()
    {
        QFETCH(const QByteArray, file);
        QFETCH(const QByteArray, jobs);
        QFETCH(const QString, arguments);
        QDir().mkpath(path("config/videodown"));
        QFile config(path("config/videodown/config"));
        QVERIFY(config.open(QIODevice::WriteOnly) && config.write(file) == file.size());
        config.close();
        qputenv("VIDEODOWN_JOBS", jobs);
        const Ended ended =
            run(QStringList{u"get"_s, page("small-1")} + arguments.split(u' ', Qt::SkipEmptyParts));
        qunsetenv("VIDEODOWN_JOBS");
        QFETCH(const QString, told);
        QVERIFY2(ended.error.contains(told), qPrintable(ended.error));
    }

    void videoInfoCommand()
    {
        QFile script(path("the script"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("echo \"title=$1 $2\"\necho fmt_list=18/640x360\necho 'fmt_stream_map=18|" +
                     QByteArray::fromStdString(m_site.baseAddress()) + "/stream/small-3/18'\n");
        script.close();
        const Ended ended = run({u"get"_s, u"--video-info-command"_s, u"sh \"the script\" told"_s,
                                 u"http://any.invalid/page"_s});
        QVERIFY2(ended.code == 0, qPrintable(ended.error));
        QCOMPARE(contents(path("told httpany.invalidpage.mp4")), smallVideo(3, 18));
        const QString example = QStringLiteral(VIDEODOWN_EXAMPLES) + u"/extractor"_s;
        QCOMPARE(run({u"get"_s, u"--video-info-command"_s, example, page("small-4")}).code, 0);
        QCOMPARE(contents(path("Video small-4.flv")), smallVideo(4, 34));
        for (const char *bad : {"echo hello", "echo status=fail", "echo fmt_list=43/1x1"}) {
            const Ended failed = run({u"get"_s, page("small-3"), u"--video-info-command"_s,
                                      u"sh -c '%1'"_s.arg(QString::fromLatin1(bad))});
            QCOMPARE(failed.code, 1);
            QVERIFY2(failed.error.contains(u"by hand"_s), qPrintable(failed.error));
        }
    }

    /** Where the site has no answer and the other program is missing, both are named. */
    void missingExtractor_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("told");
        QTest::newRow("auto") << u"auto"_s
                              << u"the site has no video info (the site answered 404 Not Found), "
                                 "and yt-dlp, which might know the page, is not installed. Check "
                                 "the address, or install the package yt-dlp.\n"_s;
        QTest::newRow("site") << u"site"_s << u": the site answered 404 Not Found. Check"_s;
    }

    void missingExtractor()
    {
        QFETCH(const QString, source);
        const QByteArray folders = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(m_root->path()));
        const Ended ended = run({u"get"_s, u"--video-info"_s, source, page("none-1")});
        qputenv("PATH", folders);
        QCOMPARE(ended.code, 1);
        QFETCH(const QString, told);
        QVERIFY2(ended.error.contains(told), qPrintable(ended.error));
    }

    void todaysPages_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QByteArray>("media"); // or what is said instead
        for (const char *kind : {"video", "opengraph", "jsonld", "guarded"})
            QTest::newRow(kind) << u"/today/%1/partyTime_8.html"_s.arg(QLatin1String(kind))
                                << media("fractal-22.mp4");
        QTest::newRow("direct address")
            << u"/media/partyTime_8/18.mp4"_s << media("fractal-18.mp4");
        QTest::newRow("pieces") << u"/today/pieces/partyTime_8.html"_s
                                << QByteArray("none of its formats comes as one MP4 or FLV file");
        QTest::newRow("no page") << u"/today/video/none.html"_s << QByteArray("404");
    }

    /** With the real yt-dlp, where it is installed. */
    void todaysPages()
    {
        if (QStandardPaths::findExecutable(u"yt-dlp"_s).isEmpty()) {
            QVERIFY2(!qEnvironmentVariableIsSet("VIDEODOWN_NEEDS_YTDLP"), "yt-dlp is missing");
            return skip("needs yt-dlp");
        }
        QFETCH(const QString, page);
        QFETCH(const QByteArray, media);
        const Ended ended = run({u"get"_s, u"--history"_s, u"h.xml"_s, u"--video-info"_s, u"auto"_s,
                                 QString::fromStdString(m_site.baseAddress()) + page});
        const QStringList there = files();
        QCOMPARE(ended.code, there.isEmpty() ? 1 : 0);
        QVERIFY2(there.isEmpty() ? ended.error.contains(QString::fromLatin1(media))
                                 : contents(path(qPrintable(there.first()))) == media,
                 qPrintable(ended.error));
        QVERIFY(!contents(path("h.xml")).contains("visitor"));
    }

    void barsFitTheTerminal()
    {
        int master = -1;
        int slave = -1;
        const winsize size{3, 50, 0, 0};
        if (openpty(&master, &slave, nullptr, nullptr, &size) != 0)
            return skip("there are no pseudo-terminals here (/dev/pts)");
        haltStreams();
        QProcess process;
        process.setStandardErrorFile(QString::fromLocal8Bit(ttyname(slave)));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TERM"_s, u"xterm"_s);
        process.setProcessEnvironment(environment);
        begin(process, {u"get"_s, u"-j5"_s, page("evilTitle_1"), page("yunXiaShan0"),
                        page("small-1"), page("small-2"), page("small-3")});
        QVERIFY(m_site.waitForHeld(4, patience));
        QString drawn;
        QByteArray block(4096, '\0');
        while (!drawn.contains(u"more"_s) || !drawn.contains(u'%') || !drawn.contains(u"\x1b[J"_s))
            drawn += QString::fromUtf8(block.constData(),
                                       read(master, block.data(), std::size_t(block.size())));
        process.kill();
        end(process);
        close(master);
        close(slave);
        drawn.remove(QRegularExpression(u"\x1b\\[([0-9]+A|J)"_s));
        QVERIFY(!drawn.contains(QChar(u'\x1b')) && !drawn.contains(QChar(u'\x07')));
        for (const QString &line : drawn.split(QRegularExpression(u"[\r\n]+"_s)))
            QVERIFY2(columnsOf(line) < 50, qPrintable(line));
    }

    void interruptions_data()
    {
        QTest::addColumn<QList<int>>("numbers");
        QTest::newRow("interrupted") << QList<int>{SIGINT};
        QTest::newRow("terminated") << QList<int>{SIGTERM};
        QTest::newRow("hung up") << QList<int>{SIGHUP};
        QTest::newRow("twice") << QList<int>{SIGTERM, SIGINT};
    }

    void interruptions()
    {
        QFETCH(QList<int>, numbers);
        if (losesSignals())
            return skip("the emulator hangs");
        haltStreams();
        QProcess process;
        begin(process, {u"get"_s, u"-j1"_s, page("small-1"), page("small-2")});
        QVERIFY(m_site.waitForHeld(1, patience));
        for (const int number : numbers)
            kill(pid_t(process.processId()), number);
        const Ended ended = end(process);
        QVERIFY(ended.bySignal);
        QVERIFY(numbers.contains(ended.code));
        QVERIFY(ended.output.isEmpty());
        if (numbers.size() > 1)
            return;
        QVERIFY2(ended.error.contains(u"0 finished, 0 failed, 2 stopped"_s),
                 qPrintable(ended.error));
        QVERIFY(files().isEmpty());
        m_site.clearMisbehaviours();
        QCOMPARE(run({u"get"_s, page("small-1")}).code, 0);
        QCOMPARE(contents(path(qPrintable(files().first()))), smallVideo(1, 34));
    }

    void nobodyReadsTheResults()
    {
        if (losesSignals())
            return skip("the emulator hangs");
        const QByteArray fifo = QFile::encodeName(path("fifo"));
        QCOMPARE(mkfifo(fifo.constData(), 0600), 0);
        const int reader = open(fifo.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        haltStreams();
        QProcess process;
        process.setStandardOutputFile(path("fifo"));
        begin(process, {u"get"_s, u"-j1"_s, page("small-1"), page("small-2")});
        QVERIFY(m_site.waitForHeld(1, patience));
        close(reader);
        m_site.clearMisbehaviours();
        m_site.release();
        const Ended ended = end(process);
        QVERIFY(ended.bySignal);
        QCOMPARE(ended.code, SIGPIPE);
    }

    // What a shell makes of the program's streams and signals.
    void shells_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("told");
        // A closed stream is no file that results or messages could land in.
        QTest::newRow("output closed")
            << u"\"$0\" get \"$1\" >&-"_s << 1 << u"results cannot be written"_s;
        QTest::newRow("all closed") << u"\"$0\" get \"$1\" <&- >&- 2>&-"_s << 1 << QString();
        QTest::newRow("nohup") << u"trap '' HUP; exec \"$0\" get \"$1\""_s << 0 << u"1 finished"_s;
    }

    void shells()
    {
        QFETCH(QString, script);
        if (losesSignals())
            return skip("the emulator hangs");
        haltStreams();
        QProcess shell;
        shell.setWorkingDirectory(m_root->path());
        shell.start(u"/bin/sh"_s,
                    {u"-c"_s, script, QStringLiteral(VIDEODOWN_PROGRAM), page("small-5")});
        QVERIFY(m_site.waitForHeld(1, patience));
        if (script.contains(u"HUP"_s))
            kill(pid_t(shell.processId()), SIGHUP);
        endFaults();
        const Ended ended = end(shell);
        QTEST(ended.code, "code");
        QFETCH(QString, told);
        QVERIFY2(ended.error.contains(told), qPrintable(ended.error));
        QCOMPARE(contents(path("Small video 5.flv")), smallVideo(5, 34));
    }
};

QTEST_GUILESS_MAIN(CliTest)
#include "tst_cli.moc"
