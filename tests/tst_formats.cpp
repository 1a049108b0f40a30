/** Reading the offered formats, choosing among them, and the better-video check. */
#include "taskfixture.h"

namespace {

const char *const listed = "37/1920x1080/9/0/115,22/1280x720/9/0/115,35/854x480/9/0/115,"
                           "34/640x360/9/0/115,18/640x360/9/0/115,5/320x240/7/0/0";
const QString nothing = u"0   0 0"_s;

tagVideoInfo want(const QString &text) // extension width height
{
    tagVideoInfo info{};
    info.strExt = text.section(u' ', 0, 0);
    info.nWidth = text.section(u' ', 1, 1).toInt();
    info.nHeight = text.section(u' ', 2).toInt();
    info.strSize = u"%1*%2"_s.arg(info.nWidth).arg(info.nHeight);
    info.nArea = static_cast<unsigned long long>(info.nWidth) *
                 static_cast<unsigned long long>(info.nHeight);
    return info;
}

QString text(int format, const QString &extension, const QString &size, int width, int height)
{
    return u"%1 %2 %3 %4 %5"_s.arg(format).arg(extension, size).arg(width).arg(height);
}

QString mainGroup(const tagVideoInfo &info)
{
    return text(info.nFmt, info.strExt, info.strSize, info.nWidth, info.nHeight);
}

QString fallbackGroup(const tagVideoInfo &info)
{
    return text(info.nFallbackFmt, info.strFallbackExt, info.strFallbackSize, info.nFallbackWidth,
                info.nFallbackHeight);
}

} // namespace

class FormatsTest : public QObject
{
    Q_OBJECT

private slots:
    void streamAddresses_data()
    {
        addRows({"streams", "format", "found", "address"},
                {{"second", "34|A,18|B|extra", "18", "B", "B0"},
                 {"first stream", "34|A,18|B", "22", "", "A1"},
                 {"first match", "34|A,34|C", "34", "A", "A0"},
                 {"cut at a comma", "34|a%2Cb,c|d,18|B", "34", "a%2Cb", "a%2Cb0"},
                 {"no number is 0", "34|A,x|Z", "0", "Z", "Z0"},
                 {"empty address", "5|A,34|,34|C", "34", "", "A1"},
                 {"no bar", "34,18|B", "34", "", "1"},
                 {"empty", "", "34", "", "1"},
                 {"number too large", "4294967330|A,34|B", "34", "B", "B0"}});
    }
    void streamAddresses()
    {
        QFETCH(QString, streams);
        QFETCH(QString, format);
        QTEST(CDown::getHttp(streams.split(u','), format.toInt()), "found");
        int fallback = 0;
        const QString address = CDown::getDownLoadHttp(streams, format.toInt(), fallback);
        QTEST(address + QString::number(fallback), "address");
    }

    void copiesToBothGroups()
    {
        tagVideoInfo src = want(u"mp4 1280 720"_s);
        tagVideoInfo dst{};
        CDown::CopyVideoStruct(&src, &dst);
        QCOMPARE(mainGroup(dst), u"0 mp4 1280*720 1280 720"_s);
        QCOMPARE(fallbackGroup(dst), mainGroup(dst));
        QCOMPARE(dst.nArea, 0ULL);
        QCOMPARE(fallbackGroup(src), nothing);
    }

    void choices_data()
    {
        const char *const three = "43/640x360,34/640x360,18/640x360";
        addRows( // a call's result follows its name; "+" is both groups, "=" the main one
            {"call", "formats", "wanted", "chosen"},
            {{"mp4", "best 1", listed, "mp4 640 360", "+18 mp4 640*360 640 360"},
             {"flv", "best 1", listed, "flv 640 360", "+34 flv 640*360 640 360"},
             {"exact case", "best 1", listed, "MP4 640 360", "+34 flv 640*360 640 360"},
             {"next larger", "best 1", listed, "mp4 1024 576", "+22 mp4 1280*720 1280 720"},
             {"too large", "best 0", listed, "mp4 4096 2304",
              "fallback 37 mp4 1920*1080 1920 1080"},
             {"wanted shape", "best 1", listed, "mp4 480 480", "+18 mp4 480*480 480 480"},
             {"mp4 gives way", "best 1", "18/64x36/9,34/64x36", "mp4 64 36", "+34 flv 64*36 64 36"},
             {"last of an area", "best 1", listed, "mp4 500 300", "+18 mp4 640*360 640 360"},
             {"no size", "best 1", listed, "mp4 0 0", "+5 flv 320*240 320 240"},
             {"sizeless", "best 1", "18/AxB,5/320x240", "flv 0 0", "+18 mp4 0*0 0 0"},
             {"unknown", "best 1", "43/640x360/99", "mp4 1 1", "+43 no fmt 640*360 640 360"},
             {"as text", "best 1", "018/640x360, 5/64x36", "a 9 9", "+5 no fmt 64*36 64 36"},
             {"sign", "best 1", "22/2147483647x2,37/100000x50000", "a 9 9",
              "+37 mp4 100000*50000 100000 50000"},
             {"overflow", "best 0", "22/99999999999x2", "a 9 9",
              "fallback 22 mp4 99999999999*2 0 2"},
             {"malformed", "best 1", ",34,18/640x360,22/1280,x", "a 9 9",
              "+18 mp4 640*360 640 360"},
             {"newest", "equal 1", three, "mp4 640 360", "=18 mp4 640*360 640 360"},
             {"dropped", "equal 1", three, "avi 640 360", "=43 no fmt 640*360 640 360"},
             {"own shape", "equal 1", listed, "flv 480 480", "=34 flv 640*360 640 360"},
             {"newest of the next", "equal 1", three, "mp4 600 300", "+18 mp4 640*360 640 360"},
             {"largest mp4, oldest", "equal 0", "22/64x36,18/64x36,35/85x48,38/2x2", "mp4 128 72",
              "=22 mp4 64*36 64 36"},
             {"no mp4", "equal 0", "35/854x480", "mp4 1280 720", "+0   0 0"},
             {"empty", "equal 0", "", "mp4 1280 720", "+0   0 0"},
             {"hostile", "equal 1", "22/2147483647x2,18/1x1,/,x", "mp4 2 2",
              "+22 mp4 2147483647*2 2147483647 2"},
             {"35 first", "source 0", listed, "5|A,34|B,35|C", "=35 flv 854*480 854 480"},
             {"34 then", "source 0", listed, "35|,34|B,5|A", "=34 flv 640*360 640 360"},
             {"5 untested", "source 0", listed, "22|A", "=5 flv 320*240 320 240"},
             {"not listed", "source 0", "22/1280x720", "22|A", "+0   0 0"},
             {"last entry", "source 0", "5/1x2,5/3x4,05/5x6,5,5/7,", "5|A", "=5 flv 3*4 3 4"}});
    }
    void choices()
    {
        QFETCH(QString, call);
        QFETCH(QString, formats);
        QFETCH(QString, wanted);
        tagVideoInfo wish = want(wanted);
        tagVideoInfo out{};
        const bool result = call.startsWith(u"best") ? CDown::getBestVideoFmt(formats, &wish, &out)
                            : call.startsWith(u"equal")
                                ? CDown::FindVideSizeToEqual(formats, &wish, &out)
                                : CDown::getBestVideoSrcFmt(wanted, formats, nullptr, &out);
        QCOMPARE(result, call.endsWith(u'1'));
        QVERIFY(call.startsWith(u"best") || mainGroup(wish) == mainGroup(want(wanted)));
        const QString first = mainGroup(out);
        const QString second = fallbackGroup(out);
        if (call == u"equal 1" && first != second)
            QCOMPARE(out.nArea, quint64(out.nWidth) * quint64(out.nHeight));
        QTEST(first == second     ? u'+' + first
              : second == nothing ? u'=' + first
              : first == nothing  ? u"fallback "_s + second
                                  : first + u" and "_s + second,
              "chosen");
    }

    void runRecordsTheChoice_data()
    {
        const char *all = "22|A,34|B,18|C,5|D";
        addRows({"keep", "byProfile", "streams", "want", "recorded"},
                {{"profile", "", "", all, "mp4 640 360", "C 640 360 mp4 mp4"},
                 {"wanted shape", "", "", all, "mp4 480 480", "C 480 480 mp4 mp4"},
                 {"keep source", "2", "", all, "mp4 640 360", "B 640 360 flv flv"},
                 {"profile always", "1", "1", all, "mp4 640 360", "C 640 360 mp4 mp4"},
                 {"no such stream", "", "", "5|D,22|A", "flv 640 360", "D 640 360 flv flv"},
                 {"none so large", "", "", all, "mp4 4096 2304", "A 1280 720 mp4 "},
                 {"no FLV", "1", "", "22|A", "mp4 640 360", "A 0 0  flv"}});
    }
    void runRecordsTheChoice()
    {
        QFETCH(QString, keep);
        QFETCH(QString, byProfile);
        QFETCH(QString, want);
        TaskFixture f(2, [&](tagDownInfo &info) { info.bUseProfileFmt = !byProfile.isEmpty(); });
        f.parsed(1);
        CXMLInfo *task = f.task(1);
        Profile_Desc desc = f.profile(want.section(u' ', 0, 0), want.section(u' ', 1, 1).toInt(),
                                      want.section(u' ', 2).toInt());
        f.down->SaveProfile(f.keyOf(1), &desc);
        QFETCH(QString, streams);
        task->fmt_stream_map = streams;
        task->IsOrgVideo = keep.toInt();
        task->Title = u" a:B? "_s;
        QCOMPARE(f.down->DownloadVideo(f.keyOf(1)), 0);
        QTEST(u"%1 %2 %3 %4 %5"_s.arg(task->DownLoadURL)
                  .arg(task->VideoWidth)
                  .arg(task->VideoHeight)
                  .arg(task->VideoExt, task->SaveAsExt),
              "recorded");
        QCOMPARE(task->FileName, f.dl() + u"/aB."_s + task->SaveAsExt);
        QCOMPARE(task->SaveAsFileName, f.out() + u"/aB."_s + task->SaveAsExt);
        QCOMPARE(task->BaseName + task->Title, u"aBaB"_s);
        const tagTaskInfo sent = f.engine.request(f.keyOf(1));
        QCOMPARE(QString::fromLocal8Bit(sent.szSavePath), task->FileName);
        QCOMPARE(QString::fromLocal8Bit(sent.szDownloadURL), task->DownLoadURL);
    }

    void betterVideo_data()
    {
        addRows({"formats", "wanted", "width", "calls"},
                {{"wanted size", listed, "mp4 1280 720", "640", "image 1i"},
                 {"next larger", listed, "mp4 1024 576", "640", "image 1i"},
                 {"larger flv", "35/854x480,34/640x360,18/640x360", "mp4 1280 720", "640", ""},
                 {"nothing offered", "", "mp4 1280 720", "640", ""},
                 {"offer unsigned", "22/2147483647x2", "mp4 1280 720", "640", "image 1i"},
                 {"disk unsigned", listed, "mp4 1280 720", "-640", ""}});
    }
    void betterVideo()
    {
        QFETCH(QString, formats);
        QFETCH(QString, wanted);
        QFETCH(QString, width);
        QFETCH(QString, calls);
        TaskFixture f;
        f.parsed(1);
        CXMLInfo *task = f.task(1);
        task->fmt_list = formats;
        task->VideoWidth = width.toInt();
        task->VideoHeight = 360;
        task->FileName = f.dl() + u"/v.mp4"_s;
        task->ImagePath = f.dl() + u"/i.jpg"_s;
        QVERIFY(f.write(task->FileName, "v") && f.write(task->ImagePath, "i"));
        task->Profile->m_pDesc->vSize_Width = want(wanted).nWidth;
        task->Profile->m_pDesc->vSize_Height = want(wanted).nHeight;
        m_ConverterList = {u"other"_s, f.keyOf(1)};
        QCOMPARE(f.down->DoDownloadVideo(m_ConverterList.last(), false), 0);
        QVERIFY(f.events.size() == 1 && f.events[0].type == f.betterVideo);
        QVERIFY(f.events[0].key == f.keyOf(1) && f.events[0].code == (calls.isEmpty() ? 0 : 1));
        QCOMPARE(f.takeCalls(), calls);
        QCOMPARE(f.files(f.root.filePath(u"dl"_s)), calls.isEmpty() ? u"i.jpg v.mp4"_s : u""_s);
        QCOMPARE(m_ConverterList, QStringList(u"other"_s));
        QVERIFY(f.down->IsBetterVideo(f.keyOf(1)) && f.down->IsBetterVideo(u"other"_s));
        m_ConverterList = {f.keyOf(1)};
        f.down->m_pfnBetterVideoCallback = nullptr;
        QCOMPARE(f.down->IsBetterVideo(f.keyOf(1)), !calls.isEmpty());
        QCOMPARE(f.events.size(), 1);
    }
};

QTEST_GUILESS_MAIN(FormatsTest)
#include "tst_formats.moc"
