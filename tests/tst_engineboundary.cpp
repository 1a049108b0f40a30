/** What crosses the boundary to the engine, and the controller's configuration behind it. */
#include "taskfixture.h"

#include <new>

namespace {

bool isZero(const tagProxyParam &proxy)
{
    const tagProxyParam zero{};
    return std::memcmp(&proxy, &zero, sizeof zero) == 0;
}

tagProxyParam someProxy()
{
    tagProxyParam proxy{};
    qstrcpy(proxy.szProxyText1, QByteArray(127, 'a').constData());
    proxy.nProxyValue1 = 1;
    proxy.nProxyValue2 = 8080;
    qstrcpy(proxy.szProxyText2, "user");
    qstrcpy(proxy.szProxyText3, "secret");
    return proxy;
}

bool hasConstructedValues(const volatile tagTaskInfo &info)
{
    const auto *bytes = reinterpret_cast<const volatile unsigned char *>(&info);
    for (std::size_t i = 0; i < sizeof info; ++i) {
        const bool isMinusOne = (i >= 2112 && i < 2128) || (i >= 3552 && i < 3560);
        if (bytes[i] != (isMinusOne ? 0xFF : 0))
            return false;
    }
    return true;
}

} // namespace

class EngineBoundaryTest : public QObject
{
    Q_OBJECT

private slots:
    void configuration() // first: no controller has been made yet
    {
        QVERIFY(DOWN_THREADNUM_MAX == 0 && g_bApplicationExit && !g_bStopAll);
        m_DownloadAllTask = m_DownLoadingList = m_ConverterList = {u"old"_s};
        m_ReDownLoadList = {u"kept"_s};
        TaskFixture f(2, [](tagDownInfo &info) { info.strXmlFile = u" "_s; });
        QVERIFY(f.down->AutoSaveXmlFile() && m_ConverterList.isEmpty());
        QCOMPARE(f.state(), u"3/2 again:kept"_s);
        QVERIFY(f.down->m_nProxySet == 0 && isZero(f.down->m_ProxyParam));
        f.down->m_nDownFree = 1;
        f.down->setDownThreadNum(2);
        QCOMPARE(f.down->m_nDownFree, 1);
        f.down->setDownThreadNum(4);
        QVERIFY(f.down->m_nDownFree == 4 && DOWN_THREADNUM_MAX == 4);
        QCOMPARE(f.down->m_nEngineTaskMax, 5);
        f.engine.setResult(42);
        CDown::Downinit();
        QCOMPARE(CDown::SetProductAppDataPath("/p"), 42);
        QVERIFY(CDown::DownUninit() == 42 && CDown::Quit() == 42);
        QVERIFY(CDown::Start(u"k"_s) == 0 && CDown::ParsePause(u"k"_s) == 0);
        QCOMPARE(f.takeCalls(), u"init, path /p, cleanup, quit"_s);
    }

    /** Nothing of a request, such as a password, stays in memory when it is gone. */
    void emptyValues()
    {
        tagTaskInfo info(QByteArray(80, 'k').constData());
        QCOMPARE(QByteArray(info.szTaskKey), QByteArray(63, 'k'));
        alignas(tagTaskInfo) static unsigned char storage[sizeof(tagTaskInfo)];
        auto *cleared = new (storage) tagTaskInfo(nullptr);
        QVERIFY(hasConstructedValues(*cleared));
        *cleared = info;
        qstrcpy(cleared->szPageURL, "page");
        qstrcpy(cleared->szSavePath, "path");
        cleared->proxyParam = someProxy();
        cleared->nProxySet = cleared->nEngineParam1 = cleared->nTaskType = 1;
        cleared->pUserData = storage;
        cleared->~tagTaskInfo();
        QVERIFY(hasConstructedValues(*reinterpret_cast<volatile tagTaskInfo *>(storage)));
    }

    void requests_data()
    {
        addRows({"proxySet"}, {{"without proxy", "0"}, {"with proxy", "1"}, {"other flag", "2"}});
    }
    void requests()
    {
        QFETCH(QString, proxySet);
        TaskFixture f;
        tagProxyParam proxy = someProxy();
        f.down->setProxyInfo(&proxy);
        f.down->setProxyInfo(nullptr);
        f.down->setProxySet(proxySet.toInt());
        std::vector<tagTaskInfo> sent;
        f.engine.setHook([&sent](ScriptedEngine::Kind, const tagTaskInfo &info) {
            sent.push_back(info);
            return 0;
        });
        f.parsed(1);
        QCOMPARE(f.down->DoDownloadVideo(f.keyOf(1), true), 0);
        QCOMPARE(sent.size(), 3U);
        const QString key = f.keyOf(1);
        const QString expected[] = {
            // task type, file type, key, address, file
            u"0 -1 "_s + key + u"  "_s,
            u"1 1 %1 http://s/t.jpg %2/%1.jpg"_s.arg(key + u"1"_s, f.dl()),
            u"1 0 "_s + key + u" http://s/18 "_s + f.dl() + u"/Clip 1.mp4"_s};
        for (std::size_t i = 0; i < 3; ++i) {
            const tagTaskInfo &info = sent[i];
            const auto text = [](const char *narrow) { return QString::fromLocal8Bit(narrow); };
            QCOMPARE(
                u"%1 %2 %3 %4 %5"_s.arg(info.nTaskType)
                    .arg(info.nFileType)
                    .arg(text(info.szTaskKey), text(info.szDownloadURL), text(info.szSavePath)),
                expected[i]);
            QCOMPARE(text(info.szPageURL), f.url(1));
            QCOMPARE(info.nReserved1 + info.nReserved2, -2);
            QCOMPARE(info.nProxySet, proxySet.toInt());
            QVERIFY(proxySet == u"1" ? std::memcmp(&info.proxyParam, &proxy, sizeof proxy) == 0
                                     : isZero(info.proxyParam));
            QVERIFY(info.nEngineParam1 == 3 && info.nEngineParam2 == 5);
            QCOMPARE(info.nEngineParam3, 500);
            QCOMPARE(info.pUserData, f.down.get());
            QCOMPARE(info.pfnVideoInfoCallback != nullptr, i == 0);
            QVERIFY(info.pfnStateCallback != nullptr);
        }
    }

    void overlongTextsAreRefusals_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("result");
        for (const char *field : {"page", "stream", "image", "path", "key"}) {
            const int most = qstrcmp(field, "key") == 0 ? 63 : 1023;
            QTest::addRow("%s fits", field) << QString::fromLatin1(field) << most << 0;
            QTest::addRow("%s too long", field) << QString::fromLatin1(field) << most + 1 << -1;
        }
    }
    void overlongTextsAreRefusals()
    {
        QFETCH(QString, field);
        QFETCH(int, length);
        QFETCH(int, result);
        TaskFixture f;
        f.parsed(1);
        CXMLInfo *task = f.task(1);
        const QString text = QString(length, u'x');
        int answer = 0;
        if (field == u"page") {
            answer = f.down->DoParseVideo(text, f.out(), nullptr, false);
            task = f.down->item(1);
            QCOMPARE(task->ParseState, result == 0 ? -1 : 3);
        } else if (field == u"image") {
            task->ImageURL = text;
            answer = f.down->DownloadImage(task->MD5Code + u"1"_s);
        } else {
            if (field == u"stream")
                task->fmt_stream_map = u"18|"_s + text;
            if (field == u"path")
                f.down->m_strDownloadPath = QString(length - 11, u'x'); // "/Clip 1.mp4"
            if (field == u"key")
                task->MD5Code = text;
            answer = f.down->DownloadVideo(task->MD5Code);
            QCOMPARE(task->DownState, result == 0 ? 0 : 3);
        }
        QCOMPARE(answer, result);
        QCOMPARE(f.engine.calls().size(), result + 1);
        if (result != 0) // a key of that length gives no slot back
            QCOMPARE(f.state(), field == u"key" ? u"3/1"_s : u"3/2"_s);
    }
};

QTEST_GUILESS_MAIN(EngineBoundaryTest)
#include "tst_engineboundary.moc"
