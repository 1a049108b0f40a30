/** Task records, the task list, conversion profiles and the accessors that show them. */
#include "taskfixture.h"

#include <tuple>

namespace {

auto fields(Profile_Desc &p)
{
    return std::tie(p.kindID, p.fileTypeID, p.fileTypeExt, p.outFormat, p.includeVideo, p.vCodecID,
                    p.vCodecFcc, p.vCodecExtra, p.vCodecLevel, p.vQuality, p.aQuality, p.vBitRate,
                    p.userOrginalSize, p.vSize_Width, p.vSize_Height, p.vFps, p.vAspect,
                    p.interlaced, p.mplex, p.includeAudio, p.aCodecID, p.aBitRate, p.aSampleRate,
                    p.aChannels, p.aVolume, p.pspTitle);
}

Profile_Desc filledProfile()
{
    Profile_Desc p;
    fields(p) = std::make_tuple(1, 2, u"3"_s, u"4"_s, true, 6, 7, 8, 9, 10, 11, 12, true, 14, 15,
                                1.5F, 2.5F, true, 19, true, 21, 22, 23, 24, 25, u"26"_s);
    return p;
}

} // namespace

class RecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void newRecord()
    {
        const QDateTime before = QDateTime::currentDateTime();
        const CXMLInfo info(nullptr);
        for (const QDateTime &date : {info.DownLoadDate, info.TaskCreateTime,
                                      info.DownLoadStartTime, info.DownLoadFinishTime})
            QVERIFY(date >= before && date.timeSpec() == Qt::LocalTime);
        QCOMPARE(QList<int>({info.State, info.ParseState, info.DownState, info.ThreadNum,
                             info.Duration, info.Progress, info.IsOrgVideo, info.VideoWidth}),
                 QList<int>({-1, -1, -1, 1, 1, 0, 0, 0}));
        QVERIFY(!info.Title.isNull() && info.Title.isEmpty() && !info.ConvertionDesc.isNull());
        Profile_Desc zero;
        QVERIFY(fields(*info.Profile->m_pDesc) == fields(zero));
        QVERIFY(!zero.pspTitle.isNull() && zero.vFps + zero.vAspect == 0.0F && !zero.includeVideo);
    }

    void listKeepsOrderAndOwnership()
    {
        CXMLHistory list;
        list.removeAll();
        CXMLInfo *first = list.Add(nullptr);
        auto *second = new CXMLInfo(nullptr);
        QCOMPARE(list.Add(second), second);
        CXMLInfo *third = list.Add(nullptr);
        QVERIFY(first->History == &list && second->History == nullptr);
        first->MD5Code = second->MD5Code = u"K"_s;
        third->MD5Code = u"k"_s;
        QCOMPARE(list.item(u"K"_s), first);
        QCOMPARE(list.GetIndex(u"k"_s), 2);
        QCOMPARE(list.item(u"K "_s), nullptr);
        QCOMPARE(list.GetIndex(QString()), -1);
        list.remove(-1);
        list.remove(3);
        QCOMPARE(list.count(), 3);
        list.remove(0);
        const std::unique_ptr<CXMLInfo> unlinked(first);
        QCOMPARE(unlinked->MD5Code, u"K"_s);
        QCOMPARE(list.item(u"K"_s), second);
        QCOMPARE(list.item(1), third);
        list.removeAll();
        QCOMPARE(list.count(), 0);
        list.Add(nullptr);
    }

    void lookUpsFindTheFirst()
    {
        CXMLHistory list;
        const auto make = [](const char *key) {
            auto *info = new CXMLInfo(nullptr);
            info->MD5Code = QString::fromLatin1(key);
            return info;
        };
        list.Add(make("other"));
        CXMLInfo *late = list.Add(make("K"));
        for (int times = 0; times < 3; ++times)
            QCOMPARE(list.item(u"K"_s), late);
        // However the list changes, what was found before does not matter.
        CXMLInfo *early = make("K");
        list.m_InfoList.prepend(early);
        QCOMPARE(list.item(u"K"_s), early);
        list.item(1)->MD5Code = u"late"_s;
        QCOMPARE(list.GetIndex(u"late"_s), 1);
        list.Add(make("late"));
        QCOMPARE(list.GetIndex(u"late"_s), 1);
        QVERIFY(list.item(-1) == nullptr && list.item(4) == nullptr);
        list.Add(early); // deleted once, with the list
    }

    void profilesAreCopiedWhole()
    {
        TaskFixture f;
        Profile_Desc filled = filledProfile();
        Profile_Desc copy;
        f.down->DoParseVideo(f.url(1), f.out(), nullptr, false);
        QVERIFY(fields(*f.task(1)->Profile->m_pDesc) == fields(copy));
        CDown::setProfileDesc(f.task(1), &filled);
        CDown::getProfileDesc(f.task(1), &copy);
        QVERIFY(fields(copy) == fields(filled));
        copy.pspTitle = u"other"_s;
        copy.vCodecExtra = -9;
        f.down->SaveProfile(f.keyOf(1), &copy);
        f.down->SaveProfile(u"none"_s, &filled);
        QVERIFY(!f.down->IsReDownLoadVideo(f.keyOf(1), nullptr) || f.task(1)->IsOrgVideo == 0);
        QVERIFY(fields(*f.task(1)->Profile->m_pDesc) == fields(copy));
        QCOMPARE(filled.pspTitle, u"26"_s);
    }

    void accessors()
    {
        TaskFixture f;
        f.parse(1);
        f.parse(2);
        const QString key = f.keyOf(2);
        for (const QString &any : {key, key.toLower()}) {
            f.down->setDownState(any, 4);
            f.down->setParseState(any, 5);
            f.down->setProgress(any, 6);
            const int answer = any == key ? 0 : -1;
            QCOMPARE(f.down->setVideoSize(any, 5000000000), answer == 0);
            QCOMPARE(f.down->TaskExist(any), answer == 0);
            QCOMPARE(f.down->getDownState(any), answer == 0 ? 4 : -1);
            QCOMPARE(f.down->getParseState(any), answer == 0 ? 5 : -1);
            QCOMPARE(f.down->getProgress(any), answer == 0 ? 6 : -1);
            QCOMPARE(f.down->getXMLInfo(any), answer == 0 ? f.down->item(1) : nullptr);
        }
        QVERIFY(f.down->TaskExist(f.keyOf(1)));
    }
};

QTEST_GUILESS_MAIN(RecordsTest)
#include "tst_records.moc"
