/** The program videodown-extract, with a stand-in for yt-dlp. */
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60000;

QJsonObject video(const QString &extension, int height, const QString &address)
{
    return {{u"ext"_s, extension},
            {u"height"_s, height},
            {u"width"_s, height * 2},
            {u"protocol"_s, u"https"_s},
            {u"url"_s, address}};
}

QByteArray withFormats(const QJsonArray &formats, const QJsonObject &more = {})
{
    QJsonObject page = more;
    page.insert(u"title"_s, u"T"_s);
    page.insert(u"formats"_s, formats);
    return QJsonDocument(page).toJson();
}

QJsonObject with(QJsonObject object, const char *name, const QJsonValue &value)
{
    object.insert(QLatin1String(name), value);
    return object;
}

const QString at = u"https://v.example/"_s;
const QByteArray refused = "status=fail\nreason=";

} // namespace

class ExtractTest : public QObject
{
    Q_OBJECT

    struct Ended
    {
        int code;
        QByteArray output;
        QByteArray error;
    };

    QString path(const char *name) const { return m_root->filePath(QString::fromLatin1(name)); }

    void write(const char *name, const QByteArray &contents) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /** The stand-in notes its arguments and does what `script` says. */
    Ended run(QStringList arguments, const QByteArray &script) const
    {
        write("yt-dlp", "#!/bin/sh\ncd '" + QFile::encodeName(m_root->path()) +
                            "'\nprintf '%s\\n' \"$@\" > arguments\n" + script + '\n');
        QProcess process;
        if (!script.isEmpty())
            arguments << u"--program"_s << path("yt-dlp");
        process.start(QStringLiteral(VIDEODOWN_EXTRACT), arguments);
        const bool ended = process.waitForFinished(patience);
        return {ended ? process.exitCode() : -1, process.readAllStandardOutput(),
                process.readAllStandardError()};
    }

    Ended runWith(const QByteArray &json, const QStringList &arguments = {at}) const
    {
        write("json", json);
        return run(arguments, "cat json");
    }

    std::unique_ptr<QTemporaryDir> m_root;

private slots:
    void init() { m_root = std::make_unique<QTemporaryDir>(); }

    void lines_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QByteArray>("lines");
        const auto row = [](const char *name, const QByteArray &json, const QByteArray &lines) {
            QTest::newRow(name) << json << lines;
        };
        QJsonArray ladder;
        QJsonArray flvs;
        for (int step = 1; step <= 6; ++step) {
            ladder.append(video(u"mp4"_s, 7 * step, at + QString::number(step)));
            flvs.append(video(u"flv"_s, 7 * step, at + QString::number(step)));
        }
        row("largest four", withFormats(ladder),
            "title=T\nfmt_list=38/84x42,37/70x35,22/56x28,18/42x21\nfmt_stream_map="
            "38|https://v.example/6,37|https://v.example/5,22|https://v.example/4,"
            "18|https://v.example/3\n");
        row("largest three", withFormats(flvs),
            "title=T\nfmt_list=35/84x42,34/70x35,5/56x28\nfmt_stream_map="
            "35|https://v.example/6,34|https://v.example/5,5|https://v.example/4\n");
        const QJsonObject mp4 = video(u"mp4"_s, 9, at + u"a?b=1,2|3&c=%2C ä#f"_s);
        const QByteArray lists =
            "fmt_list=18/18x9\nfmt_stream_map=18|https://v.example/a?b=1%2C2%7C3&c=%2C%20%C3%A4\n";
        row("separators in addresses", withFormats({mp4}), "title=T\n" + lists);
        row("what is no single file",
            withFormats({with(mp4, "vcodec", u"none"_s), with(mp4, "acodec", u"none"_s),
                         with(mp4, "protocol", u"m3u8_native"_s), with(mp4, "ext", u"webm"_s),
                         with(mp4, "fragments", QJsonArray()), with(mp4, "has_drm", true),
                         with(mp4, "url", u"ftp://v.example/a"_s), with(mp4, "url", 7),
                         QJsonValue::Null, u"x"_s, with(mp4, "vcodec", QJsonValue::Null)}),
            "title=T\n" + lists);
        const QJsonObject flv = video(u"flv"_s, 9, at + u"f"_s);
        row("sizes that are not told",
            withFormats({with(with(mp4, "width", 0), "height", QJsonValue::Null),
                         with(video(u"mp4"_s, 100, at), "width", QJsonValue::Null),
                         with(with(flv, "width", 1e300), "height", u"9"_s)}),
            "title=T\nfmt_list=5/180x102,22/178x100,18/89x50\nfmt_stream_map=5|https://v.example/f,"
            "22|https://v.example/,18|https://v.example/a?b=1%2C2%7C3&c=%2C%20%C3%A4\n");
        row("the better of a size", withFormats({video(u"mp4"_s, 9, at + u"worse"_s), mp4}),
            "title=T\n" + lists);
        row("one format, every field",
            QJsonDocument(
                with(with(with(with(with(mp4, "title", u" ä\n𝄞\u0007= "_s), "uploader", u"A"_s),
                               "duration", 61.5),
                          "thumbnail", u"http://i.example/t.jpg"_s),
                     "_type", u"video"_s))
                .toJson(),
            "title=ä 𝄞 =\nauthor=A\nlength_seconds=62\nthumbnail_url=http://i.example/t.jpg\n" +
                lists);
        row("wrong types",
            QJsonDocument(
                with(with(with(with(mp4, "title", 7), "uploader", QJsonArray()), "duration", 1e300),
                     "thumbnail", true))
                .toJson(),
            "title=video\n" + lists);
        QJsonObject nulls = mp4;
        for (const char *name : {"title", "uploader", "duration", "thumbnail", "formats", "_type",
                                 "is_live", "http_headers", "cookies", "entries", "vcodec"})
            nulls = with(nulls, name, QJsonValue::Null);
        row("nulls", QJsonDocument(nulls).toJson(), "title=video\n" + lists);
        QJsonObject numbers = mp4;
        for (const char *name :
             {"formats", "_type", "is_live", "http_headers", "cookies", "entries"})
            numbers = with(numbers, name, 7);
        row("numbers instead of all else", QJsonDocument(numbers).toJson(),
            "title=video\n" + lists);
        row("objects instead of lists",
            R"({"_type":"playlist","entries":{"0":{}},"formats":{"0":{}}})",
            refused + "there is no video on the page\n");
        for (const char *json : {"[]", "7", "null", "\"text\"", "{\"title\":\"\xff\"}x"})
            row(json, json, refused + "what yt-dlp said cannot be read\n");
        row("depth without end", QByteArray(100000, '['),
            refused + "what yt-dlp said cannot be read\n");
        row("numbers out of range",
            withFormats({with(with(mp4, "width", -1), "height", 9e15),
                         with(with(mp4, "width", 18), "height", 9)},
                        {{u"duration"_s, -5}}),
            "title=T\nfmt_list=22/18x9,18/9x4\nfmt_stream_map=22|https://v.example/"
            "a?b=1%2C2%7C3&c=%2C"
            "%20%C3%A4,18|https://v.example/a?b=1%2C2%7C3&c=%2C%20%C3%A4\n");
        row("every script",
            withFormats({mp4},
                        {{u"uploader"_s, u"ظلام مرحبا\u200F ไทย 한국어 é̂ \U0001F1E9\U0001F1EA"_s}}),
            "title=T\nauthor=ظلام مرحبا\u200F ไทย 한국어 é̂ \U0001F1E9\U0001F1EA\n" + lists);
        row("playlist",
            R"({"_type":"playlist","entries":[null,{"_type":"playlist","entries":[)" +
                withFormats({mp4}) + "]}]}",
            "title=T\n" + lists);
        row("live", withFormats({mp4}, {{u"is_live"_s, true}}),
            "title=T\n" + refused + "it is a live broadcast\n");
        row("streams in pieces", withFormats({with(mp4, "protocol", u"m3u8"_s)}),
            "title=T\n" + refused + "none of its formats comes as one MP4 or FLV file\n");
        row("no formats", "{}", refused + "there is no video on the page\n");
        row("empty playlist", R"({"_type":"playlist","entries":{}})",
            refused + "there is no video on the page\n");
        row("half a JSON", withFormats({mp4}).chopped(9),
            refused + "what yt-dlp said cannot be read\n");
        row("nothing", "", refused + "what yt-dlp said cannot be read\n");
        const QJsonObject headers{
            {u"http_headers"_s, QJsonObject{{u"Referer"_s, u"http://p.example/"_s},
                                            {u"X-A"_s, u"a\r\nX-B: c"_s},
                                            {u"X B"_s, u"c"_s},
                                            {u"range"_s, u"bytes=0-"_s},
                                            {u"Host"_s, u"x"_s},
                                            {u"X-N"_s, 7}}},
            {u"cookies"_s, u"a=\"x; y\"; Domain=.v.example; Path=/; Secure; b=2"_s}};
        row("headers, and other hosts for the cookies",
            withFormats({video(u"mp4"_s, 7, u"https://w.example/"_s), mp4}, headers),
            "title=T\n" + lists +
                "request_header=Referer: http://p.example/\n"
                "request_header=Cookie: a=\"x; y\"; b=2\n");
    }

    void lines()
    {
        QFETCH(const QByteArray, json);
        const Ended ended = runWith(json);
        QTEST(ended.output, "lines");
        QCOMPARE(ended.code, 0);
    }

    void hugeAnswers()
    {
        QJsonArray many;
        for (int number = 1; number <= 10000; ++number)
            many.append(video(u"mp4"_s, number, at + QString::number(number)));
        many.append(video(u"mp4"_s, 20000, at + QString(1024, u'x')));
        const Ended ended = runWith(withFormats(many));
        QVERIFY(ended.output.contains("fmt_list=38/20000x10000,37/19998x9999,"));
        QVERIFY(ended.error.contains("1 of the formats left out: addresses of more than 1023"));
        const Ended endless = run({at}, R"(exec yes '{"title":')");
        QCOMPARE(endless.output, refused + "yt-dlp said more than 64 MB about this page\n");
        const Ended large = run({at}, "yes x | head -c 100000000");
        QCOMPARE(large.output, endless.output);
        const Ended late = run({at, u"--time-limit"_s, u"1"_s}, "exec sleep 600");
        QCOMPARE(late.output, refused + "yt-dlp took longer than 1 s for this page\n");
    }

    void failures()
    {
        const QByteArray script = "echo 'WARNING: w' >&2; echo 'ERROR: [x] y: Gone (caused by z); "
                                  "please report this issue on w' >&2; exit 1";
        Ended ended = run({at}, script);
        QCOMPARE(ended.output, refused + "[x] y: Gone\n");
        QCOMPARE(ended.error, QByteArray("videodown-extract: [x] y: Gone\n"));
        ended = run({u"--list"_s, at}, script);
        QCOMPARE(ended.output + QByteArray::number(ended.code), QByteArray("1"));
        ended = run({at}, "kill -9 $$");
        QCOMPARE(ended.output, refused + "yt-dlp failed and gave no reason\n");
        ended = run({at, u"--program"_s, path("none")}, {});
        QVERIFY(ended.output.startsWith(refused));
        QVERIFY(ended.error.contains("install the package yt-dlp"));
        for (const QStringList &wrong : {QStringList{},
                                         {u"ytsearch:a"_s},
                                         {u"-x"_s},
                                         {at, at},
                                         {u"file:///etc/passwd"_s},
                                         {at, u"--time-limit"_s, u"0"_s}})
            QCOMPARE(run(wrong, "echo '{}'").code, 2);
    }

    void asksOnlyWhatItMust()
    {
        const QString hostile = u"https://v.example/$(touch x)';--exec=x"_s;
        runWith("{}", {u"--cookies"_s, u"c.txt"_s, hostile});
        QFile arguments(path("arguments"));
        QVERIFY(arguments.open(QIODevice::ReadOnly));
        QCOMPARE(arguments.readAll(),
                 QByteArray("--ignore-config\n--no-cache-dir\n--no-warnings\n--skip-download\n"
                            "--dump-single-json\n--no-playlist\n--cookies\nc.txt\n--\n") +
                     hostile.toUtf8() + '\n');
    }

    void lists()
    {
        const Ended ended =
            runWith(R"({"_type":"playlist","entries":[{"url":"https://v.example/1"},null,)"
                    R"({"_type":"playlist","entries":[{"webpage_url":"https://v.example/2",)"
                    R"("url":"x"},{"url":"https://v.example/1"}]},{"url":"abc"},7]})",
                    {u"--list"_s, at});
        QCOMPARE(ended.output, QByteArray("https://v.example/1\nhttps://v.example/2\n"));
        const QByteArray single = R"({"webpage_url":"https://v.example/"})";
        QCOMPARE(runWith(single, {u"--list"_s, at}).output, QByteArray("https://v.example/\n"));
        QCOMPARE(runWith("[]", {u"--list"_s, at}).code, 1);
    }
};

QTEST_GUILESS_MAIN(ExtractTest)
#include "tst_extract.moc"
