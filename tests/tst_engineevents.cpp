/** What the controller makes of the engine's events and responses, and what it passes on. */
#include "taskfixture.h"

#include "strutil/narrowtext.h"

#include <cmath>
#include <limits>

class EngineEventsTest : public QObject
{
    Q_OBJECT

private slots:
    void otherEventsAreOnlyPassedOn()
    {
        TaskFixture f;
        f.parsed(1);
        f.down->DownloadVideo(f.keyOf(1));
        f.task(1)->Progress = 40;
        for (int code : {-2, -1, 0, 1, 2, 4, 5, 9, 11, 12, 13, 14, 15, 16, 17, 2147483647}) {
            f.events.clear();
            QCOMPARE(f.engine.sendState(f.keyOf(1), static_cast<tagDownloadStateCode>(code), 0.5),
                     f.appResult);
            QCOMPARE(f.events.size(), 1);
            QVERIFY(f.events[0].key == f.keyOf(1) && f.events[0].code == code);
            QVERIFY(f.events[0].value == 0.5 && f.events[0].type == FILE_TYPE_VIDEO);
        }
        QCOMPARE(f.state() + u' ' + f.states(), u"3/1 loading:1 engine:1 1 3/0"_s);
        QVERIFY(f.task(1)->Progress == 40 && f.task(1)->FileSize == 0);
    }

    void nobodyListens()
    {
        for (bool withUser : {false, true}) {
            TaskFixture f(2, [withUser](tagDownInfo &info) {
                info.pUserData = withUser ? &info : nullptr;
                info.pfnStateCallback = withUser ? nullptr : info.pfnStateCallback;
                info.pfnVideoInfoCallback = withUser ? nullptr : info.pfnVideoInfoCallback;
            });
            f.parse(1);
            f.parse(2);
            QCOMPARE(f.engine.sendResponse(f.keyOf(1), "title=x"), -1);
            QCOMPARE(f.engine.sendState(f.keyOf(2), DOWN_STATE_PARSE_FAIL), -1);
            QCOMPARE(f.task(1)->Title + f.state(), u"x3/2"_s);
            QCOMPARE(f.states(), u"1 3/-1, 2 3/-1"_s);
            QVERIFY(f.events.isEmpty());
        }
    }

    void fileSizes()
    {
        TaskFixture f;
        f.parse(1);
        const double infinity = std::numeric_limits<double>::infinity();
        const std::pair<double, qint64> rows[] = {
            {1234567.9, 1234567},
            {-1.9, -1},
            {5e9, 5000000000},
            {std::nan(""), 0},
            {9223372036854775808.0, std::numeric_limits<qint64>::max()},
            {infinity, std::numeric_limits<qint64>::max()},
            {-infinity, std::numeric_limits<qint64>::min()}};
        for (const auto &[value, expected] : rows) {
            QCOMPARE(f.engine.sendState(f.keyOf(1), DOWN_STATE_FILE_SIZE, value), f.appResult);
            QCOMPARE(f.task(1)->FileSize, expected);
        }
        f.task(1)->MD5Code.clear();
        QCOMPARE(f.engine.sendState(f.keyOf(1), DOWN_STATE_FILE_SIZE, 1), f.appResult);
    }

    void finishedVideoIsCopiedFirst()
    {
        TaskFixture f;
        f.parsed(3, true);
        f.down->DownloadVideo(f.keyOf(1));
        f.down->DownloadVideo(f.keyOf(2));
        f.task(2)->IsOrgVideo = 0;
        f.down->DownloadVideo(f.keyOf(3));
        QVERIFY(f.write(f.task(1)->FileName, "video") && f.write(f.task(2)->FileName, "video"));
        QString seen;
        f.onEvent = [&](const AppEvent &) { seen = f.files(f.out()) + u' ' + f.state(); };
        QCOMPARE(f.engine.sendState(f.keyOf(1), DOWN_STATE_DOWNLOAD_FINISH), f.appResult);
        QCOMPARE(seen, u"Clip 1.flv 3/0 loading:2,3 engine:2,3"_s);
        QCOMPARE(f.read(f.out() + u"/Clip 1.flv"_s), QByteArray("video"));
        f.engine.sendState(f.keyOf(2), DOWN_STATE_DOWNLOAD_FINISH);
        QCOMPARE(seen, u"Clip 1.flv 3/1 loading:3 engine:3"_s);
        QCOMPARE(f.states(), u"1 3/3, 2 3/3, 3 3/0"_s);
    }

    void responseFields_data()
    {
        addRows(
            {"text", "fields"}, // title|duration|time|identifier
            {{"all", "title=Caf\xc3\xa9\r\nlength_seconds=213\r\nvideo_id=a\r\n", "Café|213|5|a"},
             {"blanks, equals signs", "  \ttitle= a=b  \n", " a=b|4|5|i"},
             {"later line wins", "title=a\rlength_seconds=8\n\n\rtitle=b", "b|8|5|i"},
             {"strangers", "xtitle=a\nTitle=b\ntitle\n=c\ntoken=1\nftoken=title=d", "t|4|5|i"},
             {"empty values", "title=\nvideo_id=", "|4|5|"},
             {"no numbers", "length_seconds=abc\ntimestamp=1x", "t|0|0|i"},
             {"numbers", "length_seconds=-7\ntimestamp=1300000000", "t|-7|1300000000|i"},
             {"too large", "length_seconds=99999999999", "t|0|5|i"},
             {"undecoded", "video_id=a%20+b", "t|4|5|a%20+b"},
             {"one character a byte", "video_id=\xc3\xa9", "t|4|5|\xc3\x83\xc2\xa9"},
             {"no line that matters", "status=fail", "t|4|5|i"}});
    }
    void responseFields()
    {
        QFETCH(QString, text);
        TaskFixture f;
        f.parse(1);
        CXMLInfo *task = f.task(1);
        task->Title = u"t"_s;
        task->Duration = 4;
        task->VideoTime = 5;
        task->VideoID = u"i"_s;
        task->fmt_list = task->fmt_stream_map = task->ImageURL = u"old"_s;
        QByteArray response = text.toUtf8();
        const qsizetype length = response.append("\0title=behind", 13).size();
        QString seen;
        f.onEvent = [&](const AppEvent &) { seen = f.state() + u' ' + f.states(); };
        QCOMPARE(f.engine.sendResponse(f.keyOf(1), response), f.appResult);
        QCOMPARE(seen, u"3/2 1 3/-1"_s);
        QTEST(u"%1|%2|%3|%4"_s.arg(task->Title)
                  .arg(task->Duration)
                  .arg(task->VideoTime)
                  .arg(task->VideoID),
              "fields");
        QCOMPARE(task->VideoInfoText, QString::fromLatin1(text.toUtf8()).trimmed());
        QCOMPARE(task->fmt_list + task->fmt_stream_map + task->ImageURL, u"oldoldold"_s);
        QVERIFY(f.events.size() == 1 && f.events[0].code == DOWN_STATE_PARSE_SUCCESS);
        QCOMPARE(f.events[0].value, static_cast<double>(length));
        QCOMPARE(f.events[0].data, text.toUtf8());
    }

    void plainFieldsFollowTheCodec()
    {
        TaskFixture f;
        f.parse(1);
        narrowtext::setCodec(narrowtext::Codec::Utf8);
        f.engine.sendResponse(f.keyOf(1), "video_id=\xc3\xa9\nfmt_list=\xc3\xa9\ntitle=\xc3\n"
                                          "fmt_stream_map=1|a|\nthumbnail_url=t");
        narrowtext::setCodec(narrowtext::Codec::Latin1);
        const CXMLInfo *task = f.task(1);
        QCOMPARE(task->VideoID + task->fmt_list + task->Title, u"\u00e9\u00e9\ufffd"_s);
        QCOMPARE(task->fmt_stream_map + task->ImageURL, u"1|a|t"_s);
    }

    void responsesThatEndNothing()
    {
        TaskFixture f;
        f.parse(1);
        f.parse(2);
        const tagTaskInfo sent = f.engine.request(f.keyOf(1));
        const auto answer = [&sent](const char *key, tagDownloadStateCode code, const char *text) {
            QByteArray data(text);
            return sent.pfnVideoInfoCallback(sent.pUserData, key, code,
                                             text == nullptr ? nullptr : data.data(), 3);
        };
        for (const char *text : {"", "\r\n\n\r", static_cast<const char *>(nullptr)})
            QCOMPARE(answer(sent.szTaskKey, DOWN_STATE_PARSE_SUCCESS, text), -1);
        QCOMPARE(answer("unknown", DOWN_STATE_PARSE_SUCCESS, "title=x"), -1);
        QVERIFY(f.events.isEmpty());
        QCOMPARE(answer(sent.szTaskKey, DOWN_STATE_PARSE_FAIL, "title=x"), f.appResult);
        QCOMPARE(f.state() + u' ' + f.states(), u"1/2 engine:1,2 1 -1/-1, 2 -1/-1"_s);
        f.down->StopAll(f.keyOf(1));
        f.down->m_nParseFree = 1;
        QCOMPARE(answer(sent.szTaskKey, DOWN_STATE_PARSE_SUCCESS, "title=x"), 0);
        QCOMPARE(f.state() + u' ' + f.states(), u"1/2 engine:2 1 -1/-1, 2 -1/-1"_s);
        QCOMPARE(f.task(1)->Title + f.task(1)->VideoInfoText, u""_s);
        QVERIFY(f.events.size() == 1 && f.events[0].value == 3);
    }
};

QTEST_GUILESS_MAIN(EngineEventsTest)
#include "tst_engineevents.moc"
