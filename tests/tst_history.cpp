#include "down/cdown.h"
#include "history/historyfile.h"
#include "history/plainreader.h"

#include <QApplication>
#include <QBuffer>
#include <QDomDocument>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>
#include <QTimer>

#include <cmath>
#include <memory>
#include <thread>

#include <pthread.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

// Wraps tasks so that they stand four levels below the root.
QByteArray document(const QByteArray &tasks)
{
    return "<DownloadInfos_History><year><month><day>" + tasks +
           "</day></month></year></DownloadInfos_History>";
}

QByteArray task(const QByteArray &key)
{
    return "<Info><MD5Code>" + key + "</MD5Code><Title>t</Title></Info>";
}

// A piece of content for a field or a task, of every kind that XML has; `depth` levels may follow.
QByteArray randomContent(QRandomGenerator &random, int depth)
{
    static const QList<QByteArray> names{"Title",    "State", "Profile", "vFps",
                                         "pspTitle", "x",     "Info"};
    static const QList<QByteArray> pieces{"a",
                                          " ",
                                          "1",
                                          "\n \t",
                                          "&amp;",
                                          "&#32;",
                                          "&#xd;",
                                          "&e;",
                                          "&Title;<Title>t</Title>",
                                          "&Profile;<Profile><pspTitle>p</pspTitle></Profile>",
                                          "<?Profile?><Profile><pspTitle>p</pspTitle></Profile>",
                                          "<Profile><?pspTitle?><pspTitle>p</pspTitle></Profile>",
                                          "\r\n",
                                          "\xc2\xa0",
                                          "<!-- a&#1;b -->",
                                          "<!---->",
                                          "<![CDATA[ ]]>",
                                          "<![CDATA[]]>",
                                          "<![CDATA[a&#1;b]]>",
                                          "<![CDATA[<Info>]]>",
                                          "<?Title p?>",
                                          "<?Profile?>",
                                          "<?State 1?>",
                                          "<?x &#1; ?>"};
    QByteArray content;
    for (int count = random.bounded(5); count > 0; --count) {
        if (depth == 0 || random.bounded(2) == 0) {
            content += pieces.at(random.bounded(int(pieces.size())));
        } else {
            const QByteArray name = names.at(random.bounded(int(names.size())));
            content += '<' + name + '>' + randomContent(random, depth - 1) + "</" + name + '>';
        }
    }
    return content;
}

// The tasks of a document as the DOM has them, four levels below its root.
void readByDom(const QByteArray &bytes, CXMLHistory &history)
{
    QDomDocument document;
    document.setContent(bytes, true);
    QList<QDomNode> level{document.documentElement()};
    for (int depth = 0; depth < 4; ++depth) {
        QList<QDomNode> next;
        for (const QDomNode &node : std::as_const(level)) {
            for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
                next.append(child);
        }
        level = next;
    }
    for (const QDomNode &node : std::as_const(level)) {
        if (node.nodeName() == QLatin1String("Info") && node.isElement())
            history.Add(nullptr)->fromDomNode(node.toElement());
    }
}

// Every stored field.
QStringList storedIn(const CXMLHistory &history)
{
    QStringList stored;
    for (CXMLInfo *info : history.m_InfoList) {
        QDomDocument document;
        QDomElement element = document.createElement(QStringLiteral("Info"));
        info->toDomNode(document, element);
        document.appendChild(element);
        stored << document.toString(0);
    }
    return stored;
}

QStringList keysOf(const CXMLHistory &history)
{
    QStringList keys;
    for (const CXMLInfo *info : history.m_InfoList)
        keys << info->MD5Code;
    return keys;
}

QString randomText(QRandomGenerator &random)
{
    QString text;
    for (int length = random.bounded(12); length > 0; --length) {
        switch (random.bounded(6)) {
        case 0:
            text += QChar(ushort(random.bounded(0x80))); // control characters, NUL included
            break;
        case 1:
            text += QChar(ushort(random.bounded(0x10000))); // lone surrogates, U+FFFE
            break;
        case 4:
            text += QChar(ushort(random.bounded(0xa1, 0x100)));
            break;
        case 2:
            text += QString::fromUcs4(&U"\U0001F600\U0010FFFF\U00020000"[random.bounded(3)], 1);
            break;
        case 3:
            text += QStringLiteral("]]><&\"'\r\n\t &#13;&amp;<!--").mid(random.bounded(20), 4);
            break;
        default:
            text += QChar(ushort(u'a' + random.bounded(26)));
        }
    }
    return text.trimmed().isEmpty() ? QString() : text; // parsers drop mere white space
}

QDateTime randomDate(QRandomGenerator &random)
{
    if (random.bounded(8) == 0)
        return {};
    return QDateTime(QDate(1, 1, 1).addDays(random.bounded(3652000)),
                     QTime(random.bounded(24), random.bounded(60), random.bounded(60)));
}

int randomInt(QRandomGenerator &random)
{
    return random.bounded(3) == 0 ? (random.bounded(2) == 0 ? INT_MIN : INT_MAX)
                                  : int(random.generate());
}

float randomFloat(QRandomGenerator &random)
{
    const quint32 bits = random.generate();
    float value = 0;
    memcpy(&value, &bits, sizeof value);
    return std::isfinite(value) ? value : 29.97F;
}

// A record with a random value in every kind of field.
void randomize(CXMLInfo &info, QRandomGenerator &random)
{
    for (QString *text : {&info.MD5Code, &info.Title, &info.fmt_list, &info.FileName, &info.VideoID,
                          &info.Profile->m_pDesc->pspTitle})
        *text = randomText(random);
    for (QDateTime *date : {&info.DownLoadDate, &info.TaskCreateTime, &info.DownLoadStartTime,
                            &info.DownLoadFinishTime})
        *date = randomDate(random);
    for (int *number : {&info.CategoryID, &info.State, &info.ParseState, &info.DownState,
                        &info.Duration, &info.Profile->m_pDesc->vSize_Width})
        *number = randomInt(random);
    info.FileSize = qint64(random.generate64());
    info.Profile->m_pDesc->vFps = randomFloat(random);
    info.Profile->m_pDesc->interlaced = random.bounded(2) == 1;
}

} // namespace

class HistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin");
        QVERIFY(m_folder.isValid());
        m_path = m_folder.filePath(QStringLiteral("history.xml"));
    }

    void emptyListGivesBareRoot()
    {
        write(m_path, QByteArray(10000, 'x'));
        CXMLHistory().SaveToFile(m_path);
        const QByteArray content = contentOf(m_path);
        QVERIFY(content.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
        QDomDocument parsed;
        QVERIFY(parsed.setContent(content));
        const QDomElement root = parsed.documentElement();
        QCOMPARE(root.tagName(), QStringLiteral("DownloadInfos_History"));
        QCOMPARE(root.attribute(QStringLiteral("version")), QStringLiteral("1.0"));
        QCOMPARE(root.attribute(QStringLiteral("CacheUseSize")), QStringLiteral("1000"));
        QCOMPARE(root.attribute(QStringLiteral("MaxID")), QStringLiteral("100"));
        QVERIFY(root.firstChild().isNull());
    }

    void groupsByDateInOrderOfOccurrence()
    {
        CXMLHistory history;
        const QDate dates[] = {{2012, 3, 7}, {2013, 5, 1}, {2012, 3, 7}, {2012, 5, 1}, {}};
        for (int i = 0; i < 5; ++i) {
            CXMLInfo *info = history.Add(nullptr);
            info->MD5Code = QString::number(i);
            info->DownLoadDate = QDateTime(dates[i], QTime(9, 5, 3));
        }
        history.SaveToFile(m_path);
        const QByteArray content = contentOf(m_path);
        QCOMPARE(content.count("<year "), 3);
        QCOMPARE(content.count("<month "), 4);
        QVERIFY(content.contains("\n   <year yearid=\"2012\">\n      <month monthid=\"3\">\n"
                                 "         <day dayid=\"7\">\n            <Info>\n"));
        QVERIFY(content.contains("<year yearid=\"0\">\n      <month monthid=\"0\">\n"
                                 "         <day dayid=\"0\">"));
        QVERIFY(content.contains("<DownLoadDate>2012-3-7 9:5:3</DownLoadDate>"));

        CXMLHistory loaded;
        loaded.LoadFromFile(m_path);
        loaded.LoadFromFile(m_path);
        QCOMPARE(keysOf(loaded).join(u' '), QStringLiteral("0 2 3 1 4 0 2 3 1 4"));
        QCOMPARE(loaded.item(0)->History, &loaded);
    }

    void writesWhatTheDomSerializerWrites()
    {
        QRandomGenerator random(7);
        CXMLHistory history;
        QDomDocument document;
        QDomElement day = document.createElement(QStringLiteral("day"));
        document.appendChild(day);
        for (int i = 0; i < 50; ++i) {
            CXMLInfo *info = history.Add(nullptr);
            randomize(*info, random);
            info->DownLoadDate = QDateTime(QDate(2020, 1, 1), QTime(0, 0));
            QDomElement element = document.createElement(QStringLiteral("Info"));
            day.appendChild(element);
            info->toDomNode(document, element);
        }
        QString dom;
        QTextStream stream(&dom);
        document.save(stream, 3);
        history.SaveToFile(m_path);
        // The same tasks stand three levels deeper in the file.
        QString written = QString::fromUtf8(contentOf(m_path));
        written = written.mid(written.indexOf(QStringLiteral("<Info>")));
        written.truncate(written.indexOf(QStringLiteral("         </day>")));
        QString indented = dom.mid(dom.indexOf(QStringLiteral("<Info>")));
        indented.truncate(indented.indexOf(QStringLiteral("</day>")));
        const QRegularExpression indentation(QStringLiteral("\n *"));
        QCOMPARE(written.replace(indentation, QStringLiteral("\n")),
                 indented.replace(indentation, QStringLiteral("\n")));
    }

    // What an earlier version saved; a folder without files would test nothing.
    void earlierVersionsAreRead()
    {
        const QDir folder(QStringLiteral(VIDEODOWN_HISTORIES));
        const QStringList names = folder.entryList({QStringLiteral("*.xml")});
        QVERIFY(!names.isEmpty());
        for (const QString &name : names) {
            CXMLHistory history;
            history.LoadFromFile(folder.filePath(name));
            history.SaveToFile(m_path);
            QVERIFY(history.count() > 0);
            QCOMPARE(contentOf(m_path), contentOf(folder.filePath(name)));
        }
    }

    void randomRecordsComeBack()
    {
        QRandomGenerator random(20261122);
        CXMLHistory history;
        for (int i = 0; i < 2000; ++i)
            randomize(*history.Add(nullptr), random);
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German)); // decimal commas must not reach the file
        history.SaveToFile(m_path);
        CXMLHistory loaded;
        loaded.LoadFromFile(m_path);
        QLocale::setDefault(before);
        QCOMPARE(loaded.count(), history.count());

        // The file's order is that of the groups.
        QStringList want = storedIn(history);
        QStringList got = storedIn(loaded);
        want.sort();
        got.sort();
        QCOMPARE(got, want);
    }

    void oddDates()
    {
        // In Berlin the clock went from 1:59:59 to 3:00:00 on that day.
        CXMLHistory history;
        history.Add(nullptr)->DownLoadDate = QDateTime(QDate(2021, 3, 28), QTime(2, 30, 0));
        history.item(0)->TaskCreateTime = QDateTime(QDate(10000, 1, 1), QTime(1, 2, 3));
        history.item(0)->DownLoadStartTime = QDateTime(QDate(-1, 1, 1), QTime(1, 2, 3));
        history.SaveToFile(m_path);
        QVERIFY(contentOf(m_path).contains("<TaskCreateTime></TaskCreateTime>"));
        QVERIFY(contentOf(m_path).contains("<DownLoadStartTime></DownLoadStartTime>"));
        CXMLHistory loaded;
        loaded.LoadFromFile(m_path);
        loaded.SaveToFile(m_path);
        QVERIFY(contentOf(m_path).contains("<DownLoadDate>2021-3-28 2:30:0</DownLoadDate>"));
    }

    void missingAndOddValues()
    {
        write(m_path,
              document("<Info><Title>first</Title><Title>second</Title><State> 7 </State>"
                       "<FileSize>9223372036854775807</FileSize><Duration>2147483648</Duration>"
                       "<unknown>x</unknown><TaskCreateTime>2012-13-1 1:2:3</TaskCreateTime>"
                       "<DownLoadDate>2012-3-7 9:5:3</DownLoadDate><VideoID>a<b>c</b>d</VideoID>"
                       "<BaseName>\xc2\xa0 </BaseName><Profile><includeVideo>TRUE</includeVideo>"
                       "<interlaced>1</interlaced><vFps>23,976</vFps><vAspect>1.5</vAspect>"
                       "</Profile><Profile><vAspect>2</vAspect></Profile></Info><Info/>"));
        CXMLHistory history;
        history.LoadFromFile(m_path);
        QCOMPARE(history.count(), 2);
        const CXMLInfo &odd = *history.item(0);
        QCOMPARE(odd.Title, QStringLiteral("first"));
        QCOMPARE(odd.State, 7);
        QCOMPARE(odd.FileSize, Q_INT64_C(9223372036854775807));
        QCOMPARE(odd.Duration, 0);
        QVERIFY(!odd.TaskCreateTime.isValid());
        QCOMPARE(odd.DownLoadDate, QDateTime(QDate(2012, 3, 7), QTime(9, 5, 3)));
        QCOMPARE(odd.VideoID, QStringLiteral("acd"));
        QVERIFY(odd.Profile->m_pDesc->includeVideo);
        QVERIFY(!odd.Profile->m_pDesc->interlaced);
        QCOMPARE(odd.Profile->m_pDesc->vFps, 0.0F);
        QCOMPARE(odd.Profile->m_pDesc->vAspect, 1.5F);
        const CXMLInfo &empty = *history.item(1);
        QCOMPARE(empty.State + empty.ParseState + empty.ThreadNum + empty.Duration, 0);
        QVERIFY(!empty.Title.isNull() && empty.Title.isEmpty() && !empty.DownLoadDate.isValid());
    }

    void readsAsTheDomDoes()
    {
        const int rounds = qEnvironmentVariableIntValue("VIDEODOWN_DOCUMENTS");
        QRandomGenerator random(11);
        for (int round = 0; round < qMax(rounds, 500); ++round) {
            const QByteArray heads[] = {"", "<?xml-stylesheet encoding='UTF-16'?>",
                                        "<?xml version='1.0' encoding='UTF-8'?>"};
            // Entities that are not declared here may be declared elsewhere.
            const QByteArray bytes = heads[random.bounded(3)] +
                                     "<!DOCTYPE d SYSTEM 'd' [<!ENTITY e 'b &#60;'>]>" +
                                     document("<Info>" + randomContent(random, 3) + "</Info>" +
                                              randomContent(random, 4));
            write(m_path, bytes);
            CXMLHistory got;
            got.LoadFromFile(m_path);
            CXMLHistory want;
            readByDom(bytes, want);
            QVERIFY2(storedIn(got) == storedIn(want), bytes.constData());
        }
    }

    // The quick way into records is for what is written, whatever its texts are; of what has
    // another form it finds the same or nothing.
    void plainHistoriesAreReadAlike()
    {
        const int rounds = qEnvironmentVariableIntValue("VIDEODOWN_DOCUMENTS");
        QRandomGenerator random(5);
        const QList<QByteArray> odd{"&#13;", "&#xd;", "]]>",  "\r",   " ",   "\xef\xbb\xbf",
                                    "\n",    "é",     "<x/>", "\xc3", "&lt", "<!---->"};
        for (int round = 0; round < qMax(rounds, 500); ++round) {
            CXMLHistory written;
            for (int i = round % 3; i > 0; --i)
                randomize(*written.Add(nullptr), random);
            QByteArray bytes = historyfile::serialize(written);
            const bool isPlain = !bytes.contains(">\xef\xbb\xbf");
            const auto changed = qsizetype(random.bounded(quint32(bytes.size())));
            if (round % 2 == 0)
                bytes.replace(bytes.indexOf('>', changed) + 1, random.bounded(2),
                              odd.at(random.bounded(int(odd.size()))));
            QBuffer buffer(&bytes);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            CXMLHistory got;
            const auto tasks = historyfile::plainTasks(buffer, &got, 40 + random.bounded(500));
            QVERIFY2(tasks || !isPlain || round % 2 == 0, bytes.constData());
            CXMLHistory want;
            want.m_InfoList = historyfile::tasks(historyfile::contentOf(bytes), &want);
            got.m_InfoList = tasks.value_or(QList<CXMLInfo *>());
            QVERIFY2(!tasks || storedIn(got) == storedIn(want), bytes.constData());
        }
    }

    // What the DOM holds is read as it is, white space too: only parsers drop that.
    void recordsPassThroughTheDom()
    {
        CXMLHistory history;
        QDomDocument document;
        const QDomElement month = document.createElement(u"month"_s);
        history.CreateAttributeNode(document, month, u"day"_s, u"dayid"_s, u"6"_s);
        history.CreateAttributeNode(document, month, u"day"_s, u"dayid"_s, u"7"_s);
        QCOMPARE(month.lastChildElement(u"day"_s).attribute(u"dayid"_s), u"7"_s);
        QDomElement element = document.createElement(u"Info"_s);
        CXMLInfo info(nullptr);
        info.Title = u" \n"_s;
        info.TaskCreateTime = QDateTime(QDate(2012, 3, 7), QTime(9, 5, 3));
        info.DownLoadDate = QDateTime(QDate(2013, 3, 7), QTime(9, 5, 3));
        info.toDomNode(document, element);
        CXMLInfo *read = history.Add(nullptr);
        read->fromDomNode(element);
        QCOMPARE(read->Title, u" \n"_s);
        QCOMPARE(read->TaskCreateTime, info.TaskCreateTime);
        QCOMPARE(read->DownLoadDate, info.DownLoadDate);
    }

    void readsOnlyTheFourthLevel_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("keys");
        QTest::newRow("other names above")
            << QByteArray("<r><a><b><c>" + task("A") + "</c></b><b><c>" + task("B") +
                          "</c></b></a></r>")
            << QStringLiteral("A B");
        QTest::newRow("too high") << QByteArray("<r><a><b>" + task("A") + "</b></a></r>")
                                  << QString();
        QTest::newRow("too deep") << QByteArray("<r><a><b><c><d>" + task("A") +
                                                "</d></c></b></a></r>")
                                  << QString();
        QTest::newRow("other case") << document("<info><MD5Code>A</MD5Code></info>") << QString();
        QTest::newRow("prefixed") << document("<x:Info xmlns:x='u'><MD5Code>A</MD5Code></x:Info>")
                                  << QString();
        QTest::newRow("not XML") << QByteArray("%PDF-1.4") << QString();
        QTest::newRow("empty") << QByteArray() << QString();
    }

    void readsOnlyTheFourthLevel()
    {
        QFETCH(QByteArray, content);
        write(m_path, content);
        CXMLHistory history;
        history.LoadFromFile(m_path);
        QTEST(keysOf(history).join(u' '), "keys");
    }

    void damageCostsOnlyTheDamage_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("keys");
        const QByteArray three = document(task("A") + task("B") + task("C"));
        const auto damaged = [&three](const QByteArray &what) {
            return QByteArray(three).replace("B</MD5Code><Title>t", "B</MD5Code><Title>" + what);
        };
        QTest::newRow("cut in the third")
            << three.left(three.indexOf("C</MD5") + 1) << QStringLiteral("A B ");
        QTest::newRow("not UTF-8") << damaged("\xff\xc3") << QStringLiteral("A B C");
        QTest::newRow("control characters")
            << damaged(QByteArray("\x01\0\x1f", 3)) << QStringLiteral("A B C");
        QTest::newRow("bad references")
            << damaged("&#0;&#x1F;&#xD800;&#xFFFFFFFFF;&#65;") << QStringLiteral("A B C");
        const QByteArray ours = R"(<?xml version="1.0" encoding="UTF-8"?>)";
        QTest::newRow("bad reference in a file like ours")
            << ours + damaged("&#1;") << QStringLiteral("A B C");
        QTest::newRow("U+FFFE in a file like ours")
            << ours + damaged("\xef\xbf\xbe") << QStringLiteral("A B C");
        QTest::newRow("mismatched tags") << damaged("<i></b>") << QStringLiteral("A B");
        QTest::newRow("unknown entity") << damaged("&nbsp;") << QStringLiteral("A B");
        QTest::newRow("byte order mark")
            << QByteArray("\xef\xbb\xbf" + three) << QStringLiteral("A B C");
        const QString wide = QString::fromUtf8(three);
        const char16_t mark = 0xfeff;
        QTest::newRow("UTF-16") << QByteArray(reinterpret_cast<const char *>(&mark), 2) +
                                       QByteArray(reinterpret_cast<const char *>(wide.utf16()),
                                                  wide.size() * 2)
                                << QStringLiteral("A B C");
        QTest::newRow("declared Latin-1")
            << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" +
                          document(task("\xe9")))
            << QStringLiteral("\u00e9");
        QTest::newRow("unknown encoding")
            << QByteArray("<?xml version=\"1.0\" encoding=\"klingon\"?>\n" + three)
            << QStringLiteral("A B C");
        QByteArray bomb = "<!DOCTYPE d [<!ENTITY e0 \"" + QByteArray(100, 'x') + "\">";
        for (int i = 1; i < 12; ++i)
            bomb += QStringLiteral("<!ENTITY e%1 \"%2\">")
                        .arg(i)
                        .arg(QStringLiteral("&e%1;").arg(i - 1).repeated(10))
                        .toLatin1();
        // Each reference is within the parser's own bounds.
        const QByteArray entity = "<!DOCTYPE d [<!ENTITY e \"" + QByteArray(4000, 'x') + "\">]>";
        const QByteArray references = QByteArray("&e;").repeated(60000);
        QTest::newRow("growing text") << entity + damaged(references) << QStringLiteral("A B");
        QTest::newRow("growing attribute in a file like ours")
            << ours + entity + damaged("<x a='" + references + "'/>") << QStringLiteral("A B");
        QTest::newRow("entity bomb") << bomb + "]>" + damaged("&e11;") << QStringLiteral("A B");
    }

    void damageCostsOnlyTheDamage()
    {
        QFETCH(QByteArray, content);
        write(m_path, content);
        CXMLHistory history;
        history.LoadFromFile(m_path);
        QTEST(keysOf(history).join(u' '), "keys");
    }

    void hostileFilesEndOnASmallStack()
    {
        QByteArray deep = document(task("A") + "<Info>" + QByteArray("<a>").repeated(100000));
        write(m_path, deep);
        auto history = std::make_unique<CXMLHistory>();
        history->Add(nullptr)->Title =
            QString(2000000, u'&'); // quadratic escaping would take minutes

        // std::thread cannot choose its stack size.
        struct Arguments
        {
            QString path;
            CXMLHistory *history;
        } arguments{m_path, history.get()};
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, std::size_t{512} * 1024);
        const auto run = [](void *data) -> void * {
            const auto &given = *static_cast<Arguments *>(data);
            CXMLHistory loaded;
            loaded.LoadFromFile(given.path);
            given.history->m_InfoList.first()->State = loaded.count();
            given.history->SaveToFile(given.path);
            return nullptr;
        };
        pthread_t thread;
        QCOMPARE(pthread_create(&thread, &attributes, run, &arguments), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
        QCOMPARE(history->item(0)->State, 2); // the sound task, and the one that never ends
        CXMLHistory loaded;
        loaded.LoadFromFile(m_path);
        QCOMPARE(loaded.item(0)->Title, history->item(0)->Title);
    }

    void randomMutationsLoad()
    {
        QRandomGenerator random(42);
        CXMLHistory history;
        for (int i = 0; i < 5; ++i)
            randomize(*history.Add(nullptr), random);
        history.SaveToFile(m_path);
        const QByteArray sound = contentOf(m_path);
        for (int round = 0; round < 2000; ++round) {
            QByteArray content = sound;
            for (int change = random.bounded(1, 6); change > 0; --change) {
                const qsizetype at = random.bounded(int(content.size()));
                switch (random.bounded(4)) {
                case 0:
                    content[at] = char(random.bounded(256));
                    break;
                case 1:
                    content.remove(at, random.bounded(1, 40));
                    break;
                case 2:
                    content.insert(at, content.mid(random.bounded(int(content.size())), 60));
                    break;
                default:
                    content.insert(at, random.bounded(2) == 0 ? "<" : "&");
                }
            }
            write(m_path, content);
            CXMLHistory loaded;
            loaded.LoadFromFile(m_path);
            QVERIFY2(loaded.count() <= 5 + 6, qPrintable(QString::number(round)));
            // Whatever was read must be fit to be kept.
            loaded.SaveToFile(m_path);
            CXMLHistory again;
            again.LoadFromFile(m_path);
            QCOMPARE(again.count(), loaded.count());
        }
    }

    void missingFileIsAnnouncedWithoutTheLock()
    {
        tagDownInfo settings;
        CDown controller(&settings);
        QStringList texts;
        QTimer::singleShot(0, [&texts] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (box == nullptr)
                return;
            texts << box->windowTitle() << box->text();
            std::thread([] { const ControllerLock lock; }).join();
            box->button(QMessageBox::Ok)->click();
        });
        {
            const ControllerLock lock;
            controller.LoadFromFile(QString());
        }
        QCOMPARE(texts, QStringList({QStringLiteral("information"),
                                     QStringLiteral("XML File does not exist!")}));
        QCOMPARE(controller.count(), 0);
    }

    void whereNoBoxCanBeShownLoadingGoesOn()
    {
        CXMLHistory history;
        std::thread([&] {
            history.LoadFromFile(m_folder.filePath(QStringLiteral("none.xml")));
        }).join();
        history.SaveToFile(QString());
        history.SaveToFile(m_folder.filePath(QStringLiteral("no/such/folder.xml")));
        QCOMPARE(history.count(), 0);
    }

private:
    QTemporaryDir m_folder;
    QString m_path;
};

QTEST_MAIN(HistoryTest)
#include "tst_history.moc"
