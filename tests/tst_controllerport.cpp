/** The driver's way to the controller: what is sent, and what is left behind when it is not. */
#include "driver/controllerport.h"
#include "taskfixture.h"

#include <QTest>

using Answer = ControllerPort::Answer;

class ControllerPortTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ScriptedEngine::instance().reset(); }

    // The controller answers 0 or -1 in each case, and keeps keys that nobody calls up.
    void answers_data()
    {
        QTest::addColumn<bool>("engineRefuses");
        QTest::addColumn<int>("atEngine"); // requests of somebody else's
        QTest::addColumn<bool>("answersAtOnce");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("free"); // slots for parses and videos
        constexpr int full = maxVideoLimit + 3;
        QTest::newRow("sent") << false << 0 << false << Answer::Sent << u"2 1"_s;
        QTest::newRow("ended inside the request") << false << 0 << true << Answer::Sent << u"3 2"_s;
        QTest::newRow("refused") << true << 0 << false << Answer::Refused << u"3 2"_s;
        QTest::newRow("the list is full") << false << full << false << Answer::Refused << u"3 2"_s;
    }

    void answers()
    {
        QFETCH(bool, engineRefuses);
        QFETCH(int, atEngine);
        QFETCH(bool, answersAtOnce);
        QTemporaryDir folder;
        ScriptedEngine &engine = ScriptedEngine::instance();
        ControllerPort port({folder.path(), 2, {}}, [] {});
        const QString key = CDown::GetURLToMD5(TaskFixture::url(1));
        engine.setHook([&](ScriptedEngine::Kind kind, const tagTaskInfo &) {
            if (answersAtOnce)
                engine.sendState(key + (kind == ScriptedEngine::Kind::Image ? u"1"_s : QString()),
                                 DOWN_STATE_DOWNLOAD_FAIL, 404);
            return engineRefuses ? -1 : 0;
        });
        const auto occupy = [](int count) {
            const ControllerLock lock;
            m_DownloadAllTask = QStringList(count, u"somebody else's"_s);
        };
        DownloadRequest request;
        request.address = TaskFixture::url(1);
        request.outputFolder = folder.path();
        occupy(atEngine);
        QTEST(port.parse(key, request), "answer");
        if (!engine.calls("parse").isEmpty() && !engineRefuses && !answersAtOnce)
            engine.sendResponse(key, TaskFixture::response(1));
        occupy(atEngine);
        {
            const ControllerLock lock;
            CXMLInfo *record = port.controller().getXMLInfo(key);
            QVERIFY(record != nullptr);
            record->ImageURL = u"http://s/image"_s;
            record->FileName = folder.filePath(u"video"_s);
            record->fmt_list = u"18/640x360"_s;
            record->fmt_stream_map = u"18|http://s/18"_s;
        }
        port.controller().m_ImageWaitList = QStringList{key + u"11"_s}; // somebody else's
        QTEST(port.downloadThumbnail(key), "answer");
        occupy(atEngine);
        QTEST(port.download(key, folder.path(), true), "answer");
        port.forget(key);
        const ControllerLock lock;
        const CDown &down = port.controller();
        QVERIFY(down.m_ParseWaitList.isEmpty() && down.m_DownloadWaitList.isEmpty() &&
                m_ReDownLoadList.isEmpty());
        if (!answersAtOnce) // an end starts what waits
            QCOMPARE(down.m_ImageWaitList, QStringList{key + u"11"_s});
        QTEST(u"%1 %2"_s.arg(down.m_nParseFree).arg(down.m_nDownFree), "free");
    }

    void nothingToDo()
    {
        QTemporaryDir folder;
        ControllerPort port({folder.path(), 2, {}}, [] {});
        QCOMPARE(port.downloadThumbnail(u"unknown"_s), Answer::NothingToDo);
        CXMLInfo *record = port.controller().m_pHistory->Add(nullptr);
        record->MD5Code = u"key"_s;
        record->VideoWidth = 640;
        record->VideoHeight = 360;
        QCOMPARE(port.parseForUpgrade(u"key"_s, TaskFixture::profile(u"mp4"_s, 640, 360)),
                 Answer::NothingToDo);
        QVERIFY(ScriptedEngine::instance().calls("parse").isEmpty());
    }
};

QTEST_GUILESS_MAIN(ControllerPortTest)
#include "tst_controllerport.moc"
