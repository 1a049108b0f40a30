/** The parse and download pipelines, step by step: slots, waiting lists, refusals, stops. */
#include "taskfixture.h"

#include <QRegularExpression>

namespace {

constexpr int noResult = -99;

struct Play : TaskFixture
{
    std::vector<std::unique_ptr<CXMLInfo>> unlinked; ///< records that left the list are ours
    QString key;
    int number = 0;

    int send(tagDownloadStateCode code) { return engine.sendState(key, code); }

    /** Does what `word` says with the task `number`; "i" behind the number means its thumbnail. */
    int step(const QString &word)
    {
        CXMLInfo *task = down->getXMLInfo(key);
        const QHash<QString, std::function<int()>> steps = {
            {u"again"_s, [&] { return down->ReDownLoad(url(number), key); }},
            {u"convert"_s, [&] { return down->ConverterParse(url(number), key); }},
            {u"download"_s, [&] { return down->DoDownloadVideo(key, true); }},
            {u"endparse"_s, [&] { return down->ParseUnlock(key); }},
            {u"endvideo"_s, [&] { return down->DownloadUnlock(key, FILE_TYPE_VIDEO, false); }},
            {u"endimage"_s, [&] { return down->DownloadUnlock(key, FILE_TYPE_IMAGE, false); }},
            {u"endother"_s, [&] { return down->DownloadUnlock(key, FILE_TYPE(9), true); }},
            {u"resetvideo"_s, [&] { return down->DownloadUnlock(key, FILE_TYPE_VIDEO, true); }},
            {u"fail"_s, [&] { return send(DOWN_STATE_DOWNLOAD_FAIL); }},
            {u"finish"_s, [&] { return send(DOWN_STATE_DOWNLOAD_FINISH); }},
            {u"image"_s, [&] { return down->DownloadImage(key); }},
            {u"parsefail"_s, [&] { return send(DOWN_STATE_PARSE_FAIL); }},
            {u"pause"_s, [&] { return down->Pause(key); }},
            {u"queue"_s, [&] { return down->QueueDownload(true); }},
            {u"respond"_s, [&] { return engine.sendResponse(key, response(number)); }},
            {u"stop"_s, [&] { return down->Stop(key, false); }},
            {u"stopall"_s, [&] { return down->StopAll(key); }},
            {u"stopped"_s, [&] { return send(DOWN_STATE_USER_STOP); }},
            {u"thumbnail"_s, [&] { return down->DoDownloadVideo(key, false); }},
            {u"video"_s, [&] { return down->DownloadVideo(key); }},
            {u"parse"_s, [&] {
                 if (task != nullptr)
                     unlinked.emplace_back(task);
                 return parse(number);
             }}};
        const QHash<QString, std::function<void()>> settings = {
            {u"answer"_s, [&] { engine.setResult(number); }},
            {u"atengine"_s, [&] { m_DownloadAllTask += key; }},
            {u"downfree"_s, [&] { down->m_nDownFree = number; }},
            {u"formatless"_s, [&] { task->fmt_list.clear(); }},
            {u"full"_s,
             [&] {
                 m_DownloadAllTask = {u"v"_s, u"w"_s, u"x"_s, u"y"_s, u"z"_s};
             }},
            {u"limit"_s, [&] { down->setDownThreadNum(number); }},
            {u"loading"_s, [&] { m_DownLoadingList += key; }},
            {u"parsefree"_s, [&] { down->m_nParseFree = number; }},
            {u"ready"_s, [&] { parsed(number); }},
            {u"refuse"_s, [&] { engine.setResult(-1); }},
            {u"refuseimages"_s,
             [&] { refuse([](Kind kind, int) { return kind == Kind::Image; }); }},
            {u"refuseodd"_s, [&] { refuse([](Kind, int n) { return n % 2 == 1; }); }},
            {u"release"_s, [&] { down->ReleaseLock(key); }},
            {u"remove"_s,
             [&] {
                 unlinked.emplace_back(task);
                 down->remove(key, false);
             }},
            {u"waitimage"_s, [&] { down->m_ImageWaitList += key; }},
            {u"waitparse"_s, [&] { down->m_ParseWaitList += key; }},
            {u"waitvideo"_s, [&] { down->m_DownloadWaitList += key; }}};
        if (steps.contains(word))
            return steps[word]();
        settings[word]();
        return noResult;
    }

    QString run(const QString &script)
    {
        QStringList results;
        for (const QString &step : script.split(u' ')) {
            const auto digit = step.indexOf(QRegularExpression(u"\\d|$"_s));
            number = step.mid(digit, 1).toInt();
            key = keyOf(number) + (step.endsWith(u'i') ? u"1"_s : u""_s);
            const int result = this->step(step.left(digit));
            if (result != noResult)
                results += QString::number(result);
        }
        return results.join(u' ');
    }

private:
    using Kind = ScriptedEngine::Kind;
    void refuse(bool (*refused)(Kind, int))
    {
        engine.setHook([refused](Kind kind, const tagTaskInfo &info) {
            const int n = QByteArray(info.szPageURL).right(1).toInt();
            return refused(kind, n) ? -1 : 0;
        });
    }
};

} // namespace

class QueuesTest : public QObject
{
    Q_OBJECT

private slots:
    void plays_data()
    {
        const char *const fiveParses = "answer5 parse1 parse2 parse3 parse4 parse5";
        addRows(
            {"script", "results", "calls", "state", "states"},
            {{"fourth parse waits", fiveParses, "5 5 5 0 0", "parse 1, parse 2, parse 3",
              "0/2 parse:4,5 engine:1,2,3", "1 -1/-1, 2 -1/-1, 3 -1/-1, 4 1/-1, 5 1/-1"},
             {"response starts the oldest", "parse1 parse2 parse3 parse4 parse5 respond2",
              "0 0 0 0 0 7", "parse 1, parse 2, parse 3, parse 4", "0/2 parse:5 engine:1,3,4",
              "1 -1/-1, 2 3/-1, 3 -1/-1, 4 1/-1, 5 1/-1"},
             {"failure does too", "parse1 parse2 parse3 parse4 parsefail1 parsefail4",
              "0 0 0 0 7 7", "parse 1, parse 2, parse 3, parse 4", "1/2 engine:2,3",
              "1 3/-1, 2 -1/-1, 3 -1/-1, 4 3/-1"},
             {"parse slots are capped", "endparse1", "0", "", "3/2", ""},
             {"replaced at the engine", "parse1 parse2 parse1", "0 0 0", "parse 1, parse 2",
              "0/2 engine:1,2", "2 -1/-1, 1 -1/-1"},
             {"replaced after its end", "parse1 parse2 endparse1 parse1", "0 0 0 0",
              "parse 1, parse 2, parse 1", "1/2 engine:2,1", "2 -1/-1, 1 -1/-1"},
             {"full engine list keeps the slot", "full0 parse1", "0", "", "2/2 engine:v,w,x,y,z",
              "1 -1/-1"},
             {"refused parses end at a lost task",
              "parse1 parse2 parse3 parse4 parse5 parse6 remove5 refuse0 endparse1",
              "0 0 0 0 0 0 1", "parse 1, parse 2, parse 3, parse 4", "1/2 parse:6 engine:2,3",
              "1 3/-1, 2 -1/-1, 3 -1/-1, 4 3/-1, 6 1/-1"},
             {"refused, then accepted", "parse2 parse4 parse6 parse1 parse8 refuseodd0 endparse2",
              "0 0 0 0 0 1", "parse 2, parse 4, parse 6, parse 1, parse 8", "0/2 engine:4,6,8",
              "2 3/-1, 4 -1/-1, 6 -1/-1, 1 3/-1, 8 1/-1"},
             {"refusal starts the next", "parsefree1 waitparse2 refuse0 parse2 parse1", "-1 -1",
              "parse 2, parse 2, parse 1", "1/2", "2 3/-1, 1 3/-1"},
             {"again", "ready1 video1 again1", "0 0", "video 1", "2/1 loading:1 engine:1 again:1",
              "1 -1/-1"},
             {"again, idle", "ready1 answer6 again1", "6", "parse 1", "2/2 engine:1 again:1",
              "1 -1/-1"},
             {"again, refused", "ready1 refuse0 again1", "-1", "parse 1", "3/2 again:1", "1 3/-1"},
             {"again waits", "ready1 parsefree0 again1 convert1", "0 0", "", "0/2 parse:1,1",
              "1 1/-1"},
             {"convert", "convert1 answer4 convert2 refuse0 convert3", "1 0 0",
              "parse 1, parse 2, parse 3", "1/2 engine:1,2", ""},
             {"third video waits", "ready3 download1 download2 download3", "0 0 0",
              "image 1i, video 1, image 2i, video 2, image 3i",
              "0/0 video:3 loading:1,2 engine:1i,1,2i,2,3i", "1 3/0, 2 3/0, 3 3/1"},
             {"end starts it, and gives a parse slot",
              "ready3 download1 download2 download3 endvideo1", "0 0 0 1",
              "image 1i, video 1, image 2i, video 2, image 3i, video 3",
              "1/0 loading:2,3 engine:1i,2i,2,3i,3", "1 3/3, 2 3/0, 3 3/0"},
             {"one end starts two",
              "limit4 ready4 downfree2 waitvideo1 waitvideo2 waitvideo3 endvideo4", "1",
              "video 1, video 2", "3/1 video:3 loading:1,2 engine:1,2",
              "1 3/0, 2 3/0, 3 3/-1, 4 3/3"},
             {"but one when not answered 0",
              "limit4 ready4 downfree2 waitvideo1 waitvideo2 answer5 endvideo4", "0", "video 1",
              "3/2 video:2 loading:1 engine:1", "1 3/0, 2 3/-1, 3 3/-1, 4 3/3"},
             {"nothing queued", "downfree1 queue0", "0", "", "3/1", ""},
             {"full engine list, downloads", "ready1 full0 video1 image1i", "0 0", "",
              "3/1 image:1i engine:v,w,x,y,z", "1 3/-1"},
             {"thumbnail waits for no parse", "ready2 parse3 parse4 parse5 image1i endparse3",
              "0 0 0 0 0", "parse 3, parse 4, parse 5", "1/2 image:1i engine:4,5",
              "1 3/-1, 2 3/-1, 3 3/-1, 4 -1/-1, 5 -1/-1"},
             {"but for a thumbnail", "ready2 image1i parsefree0 image2i stop9 stopped1i", "0 0 0 7",
              "image 1i, stop 9, image 2i", "0/2 engine:2i", "1 3/-1, 2 3/-1"},
             {"finished thumbnail", "ready2 image1i parsefree0 image2i finish1i fail2i", "0 0 7 7",
              "image 1i, image 2i", "1/2", "1 3/-1, 2 3/-1"},
             {"refused thumbnail starts a parse",
              "ready1 parsefree1 waitparse1 refuseimages0 thumbnail1", "-1", "image 1i, parse 1",
              "0/2 engine:1", "1 3/-1"},
             {"video hides it", "ready1 refuseimages0 download1", "0", "image 1i, video 1",
              "3/1 loading:1 engine:1", "1 3/0"},
             {"release starts nothing", "ready2 waitvideo2 waitimage2i release1 endother2", "0", "",
              "3/2 video:2 image:2i", "1 3/3, 2 -1/3"},
             {"the type says what starts", "ready2 waitvideo2 waitimage2i endimage1", "1",
              "image 2i", "2/2 video:2 engine:2i", "1 3/3, 2 3/-1"},
             {"refused videos", "ready3 downfree1 waitvideo2 waitvideo3 refuse0 video1", "-1",
              "video 1, video 2, video 3", "3/1", "1 3/3, 2 3/3, 3 3/3"},
             {"refusals before acceptances",
              "limit4 ready5 downfree1 waitvideo1 waitvideo3 waitvideo2 waitvideo4 refuseodd0 "
              "endvideo5",
              "0", "video 1, video 3, video 2, video 4", "3/0 loading:2,4 engine:2,4",
              "1 3/3, 2 3/0, 3 3/3, 4 3/0, 5 3/3"},
             {"a refusal between",
              "limit4 ready5 downfree2 waitvideo2 waitvideo1 waitvideo4 refuseodd0 endvideo5", "0",
              "video 2, video 1, video 4", "3/1 loading:2,4 engine:2,4",
              "1 3/3, 2 3/0, 3 3/-1, 4 3/0, 5 3/3"},
             {"no formats, no task", "ready1 formatless1 video1 parsefree2 image7i", "0 0", "",
              "1/1", "1 3/-1"},
             {"the refused are not reset", "ready2 downfree1 waitvideo2 refuse0 resetvideo1", "0",
              "video 2", "3/2", "1 -1/3, 2 3/3"},
             {"as many as the limit", "ready1 loading2 loading3 video1", "0", "", "3/1 loading:2,3",
              "1 3/0"},
             {"already loading", "ready1 loading1 video1", "0", "", "3/1 loading:1", "1 3/0"},
             {"already at the engine", "ready2 atengine1 video1 atengine2i image2i", "0 0", "",
              "2/1 loading:1 engine:1,2i", "1 3/0, 2 3/-1"},
             {"stop and pause",
              "limit0 ready2 answer9 video1 video2 video1 waitparse1 waitimage1 waitimage1i stop1 "
              "pause2",
              "0 0 0 9 9", "stop 1, suspend 2", "3/0 video:2 image:1", "1 3/1, 2 3/1"},
             {"stop-all", "ready1 parse3 parsefree0 stopall3 download1", "0 0 0", "parse 3, stop 3",
              "3/2 engine:3", "1 3/-1, 3 -1/-1"},
             {"ends with a parse", "ready1 stopall3 parse2 download1", "0 0 0",
              "stop 3, parse 2, image 1i, video 1", "1/1 loading:1 engine:2,1i,1",
              "1 3/0, 2 -1/-1"},
             {"drops responses", "parse1 parse2 stopall1 parsefree1 respond1", "0 0 0 0",
              "parse 1, parse 2, stop 1", "1/2 engine:2", "1 -1/-1, 2 -1/-1"},
             {"stopped video", "limit1 ready3 video1 video2 video3 stop1 stopped1", "0 0 0 0 7",
              "video 1, stop 1, video 2", "3/0 video:3 loading:2 engine:2", "1 3/3, 2 3/0, 3 3/1"},
             {"stop undoes it", "limit1 ready2 video1 video2 stopall9 stop1 stopped1", "0 0 0 0 7",
              "video 1, stop 9, stop 1, video 2", "3/0 loading:2 engine:2", "1 3/3, 2 3/0"},
             {"stopped by stop-all", "limit1 ready2 video1 video2 stopall1 stopped1", "0 0 0 7",
              "video 1, stop 1", "3/1 video:2", "1 3/3, 2 3/1"},
             {"events of lost tasks", "ready1 parse2 video1 remove1 remove2 parsefail2 fail1",
              "0 0 7 7", "parse 2, video 1", "3/2", ""}});
    }
    void plays()
    {
        QFETCH(QString, script);
        Play f;
        QTEST(f.run(script), "results");
        QTEST(f.takeCalls(), "calls");
        QTEST(f.state(), "state");
        QTEST(f.states(), "states");
    }

    void releasesByKey_data()
    {
        addRows({"key", "loading", "unlocked", "released"},
                {{"video", "22222222222222222222222222222222", "", "1/1", "1/1"},
                 {"others load", "22222222222222222222222222222222", "xy", "1/0", "1/1"},
                 {"image", "222222222222222222222222222222221", "xy", "1/0", "1/0"},
                 {"with a 1", "a1b", "", "1/0", "1/0"},
                 {"without", "222222222222222222222222222222222", "", "0/0", "0/0"}});
    }
    void releasesByKey()
    {
        QFETCH(QString, key);
        QFETCH(QString, loading);
        TaskFixture f;
        for (const char *operation : {"unlocked", "released"}) {
            f.down->m_nParseFree = f.down->m_nDownFree = 0;
            m_DownLoadingList = loading.split(QString(), Qt::SkipEmptyParts);
            m_DownloadAllTask = {u"x"_s, key, key}; // its own elements may be passed
            if (operation == QByteArray("unlocked"))
                f.down->DownloadUnlock(m_DownloadAllTask[1], FILE_TYPE_VIDEO, false);
            else
                f.down->ReleaseLock(m_DownloadAllTask[1]);
            QTEST(f.state().section(u' ', 0, 0), operation);
            QCOMPARE(m_DownloadAllTask, QStringList(u"x"_s));
        }
    }

    void oldThumbnailGoesFirst()
    {
        TaskFixture f;
        f.parsed(1);
        const QString path = f.dl() + u'/' + f.keyOf(1) + u"1.jpg"_s;
        QVERIFY(f.write(path, "old"));
        f.down->DownloadImage(f.keyOf(1) + u"1"_s);
        QCOMPARE(f.files(f.dl()) + f.task(1)->ImagePath, path);
    }

    void parsesAgainForLargerPictures_data()
    {
        addRows({"width", "height", "video", "expected"},
                {{"larger", "1280", "720", "1", "1"},
                 {"no video wanted", "1280", "720", "0", "0"},
                 {"same area", "480", "480", "1", "0"},
                 {"negative product", "50000", "50000", "1", "0"},
                 {"small product", "65536", "65536", "1", "0"}});
    }
    void parsesAgainForLargerPictures()
    {
        QFETCH(QString, width);
        QFETCH(QString, height);
        QFETCH(QString, video);
        QFETCH(QString, expected);
        TaskFixture f;
        f.parsed(1, true);
        f.task(1)->VideoWidth = 640;
        f.task(1)->VideoHeight = 360;
        Profile_Desc wanted = f.profile(u"avi"_s, width.toInt(), height.toInt());
        wanted.includeVideo = video == u"1";
        f.engine.setResult(-1);
        QCOMPARE(f.down->IsReDownLoadVideo(f.task(1)->MD5Code, &wanted), expected == u"1");
        QCOMPARE(f.task(1)->Profile->m_pDesc->fileTypeExt, u"avi"_s);
        QCOMPARE(f.task(1)->IsOrgVideo, 1 - expected.toInt());
        QCOMPARE(m_ConverterList.count(f.keyOf(1)), expected.toInt());
        QCOMPARE(f.takeCalls(), expected == u"1" ? u"parse 1"_s : u""_s);
    }
};

QTEST_GUILESS_MAIN(QueuesTest)
#include "tst_queues.moc"
