/** Output names, finished files, conversion information and removal. */
#include "taskfixture.h"

#include <QRandomGenerator>
#include <QStorageInfo>

namespace {

bool copyFile(const QString &source, const QString &destination)
{
    return CopyFileC(source.toLocal8Bit().data(), destination.toLocal8Bit().data());
}

} // namespace

class FilesTest : public QObject
{
    Q_OBJECT

private slots:
    // Callers pass list elements and record fields, which the operation itself removes or
    // overwrites.
    void argumentsMayBeWhatTheOperationChanges()
    {
        TaskFixture f;
        m_ReDownLoadList = {u"first key that is longer than a small string"_s};
        QCOMPARE(f.down->getVideoFileName(f.dl(), QString(), u".mp4"_s, m_ReDownLoadList.first()),
                 f.dl() + u"/first key that is longer than a small string.mp4"_s);
        CXMLInfo *record = f.down->m_pHistory->Add(nullptr);
        record->MD5Code = u"K"_s;
        record->SaveAsFileName = u"/s/old name that is longer than a small string.mp4"_s;
        f.down->ReNameSaveAsFileName(u"K"_s, u"/s/b.mp4"_s, record->SaveAsFileName);
        QCOMPARE(record->SaveAsExt, u"/s/old name that is longer than a small string.mp4"_s);
    }

    void videoNames_data()
    {
        addRows({"title", "existing", "name"}, // "KEY" stands for the task key
                {{"cleaned", "My: Video?", "", "My Video.mp4"},
                 {"first free", "My Video", "My Video.mp4,My Video_0.mp4", "My Video_1.mp4"},
                 {"empty", "", "", "KEY.mp4"},
                 {"blank", " \t\r\n", "", "KEY.mp4"},
                 {"Latin-1", "Caf\xc3\xa9", "", "Caf\xc3\xa9.mp4"},
                 {"outside Latin-1", "\xe4\xb8\xad", "", ".mp4"},
                 {"outside, taken", "\xe4\xb8\xad", ".mp4", "_0.mp4"},
                 {"percent", "50%", "50%.mp4", "50%_0.mp4"},
                 {"marker", "100%1 sure", "", "100.mp4 sure%3"},
                 {"high marker", "%5", "", "%5.mp4"},
                 {"marker, taken", "%1", ".mp4%3", "0_.mp4%3"}});
    }
    void videoNames()
    {
        QFETCH(QString, title);
        QFETCH(QString, existing);
        QFETCH(QString, name);
        TaskFixture f;
        const QString key = f.keyOf(1);
        for (const QString &file : existing.split(u',', Qt::SkipEmptyParts))
            QVERIFY(f.write(f.dl() + u'/' + file, "x"));
        const QString folder = f.dl().replace(u'/', u'\\');
        const QString path = f.dl() + u'/' + name.replace(u"KEY"_s, key);
        QCOMPARE(f.down->getVideoFileName(f.dl(), title, u".mp4"_s, key), path);
        if (existing.isEmpty())
            QCOMPARE(f.down->getVideoFileName(folder, title, u".mp4"_s, key), path);
    }

    void nameIsReusedOnce()
    {
        TaskFixture f;
        QVERIFY(f.write(f.dl() + u"/a.mp4"_s, "x"));
        QDir(f.dl()).mkdir(u"a_0.mp4"_s);
        m_ReDownLoadList = {u"other"_s, f.keyOf(1), f.keyOf(1)};
        for (const QString &name : {u"/a.mp4"_s, u"/a_1.mp4"_s}) {
            QCOMPARE(f.down->getVideoFileName(f.dl(), u"a"_s, u".mp4"_s, f.keyOf(1)),
                     f.dl() + name);
            QCOMPARE(m_ReDownLoadList, QStringList(u"other"_s));
        }
    }

    void baseNames_data()
    {
        addRows({"path", "split"}, {{"two dots", "/d/Clip.part.mp4", "Clip.part|mp4"},
                                    {"folder", "/d.x/", "|"},
                                    {"hidden", "/d/.hidden", "|hidden"},
                                    {"no dot", "/d.x/clip", "clip|"},
                                    {"backslashes", "C:\\d\\a.flv", "a|flv"},
                                    {"no slash", "a.flv", "|old"}});
    }
    void baseNames()
    {
        QFETCH(QString, path);
        QString extension = u"old"_s;
        const QString base = CDown::GetFileBaseName(path, extension);
        QTEST(base + u'|' + extension, "split");
    }

    void renames()
    {
        TaskFixture f;
        f.parse(1);
        CXMLInfo *task = f.task(1);
        task->Title = task->BaseName = u"old"_s;
        task->FileName = f.dl() + u"/old.mp4"_s;
        task->SaveAsFileName = f.out() + u"/any.flv"_s;
        const auto rename = [&](const QString &base) {
            return f.down->setSaveAsFileName(f.keyOf(1), f.dl() + u'/' + base + u".mp4"_s, base);
        };
        QVERIFY(!rename(u"new"_s) && !f.down->setSaveAsFileName(u"none"_s, u"a"_s, u"b"_s));
        QCOMPARE(task->BaseName, u"old"_s);
        QVERIFY(f.write(task->FileName, "x") && f.write(f.out() + u"/old.flv"_s, "y"));
        QVERIFY(rename(u"new"_s));
        QCOMPARE(f.files(f.dl()) + u' ' + f.files(f.out()), u"new.mp4 new.flv"_s);
        QFile::remove(f.out() + u"/new.flv"_s);
        QVERIFY(!rename(u"newer"_s)); // there is no copy to rename, but the video was
        QCOMPARE(task->Title + task->BaseName + f.files(f.dl()), u"newernewernewer.mp4"_s);
        QCOMPARE(task->FileName, f.dl() + u"/newer.mp4"_s);
        QCOMPARE(f.down->getSaveAsFileName(f.keyOf(1)), f.out() + u"/newer.flv"_s);
        QVERIFY(!f.down->ReNameSaveAsFileName(f.keyOf(1), u"s"_s, u""_s)); // no history file
        QCOMPARE(CDown::getSaveAsFileName(task) + CDown::getSaveAsExt(task), u"smp4"_s);
        f.down->m_strXmlFile = u"h.xml"_s;
        QVERIFY(f.down->ReNameSaveAsFileName(f.keyOf(1), u"s"_s, u"e"_s));
        QCOMPARE(CDown::getSaveAsExt(task) + CDown::getProFileExt(task), u"emp4"_s);
        task->IsOrgVideo = 1;
        QCOMPARE(CDown::getProFileExt(task), u"flv"_s);
        QVERIFY(!f.down->ReNameSaveAsFileName(u"none"_s, u"s"_s, u"e"_s));
    }

    void copiesBytes()
    {
        TaskFixture f;
        const QString source = f.dl() + u"/a b.mp4"_s;
        const QString copy = f.out() + u"/copy"_s;
        QByteArray bytes(300 * 1024 + 7, '\0');
        QRandomGenerator random(1);
        for (char &byte : bytes)
            byte = static_cast<char>(random.bounded(256));
        for (const QByteArray &content : {bytes, QByteArray("\xff"), QByteArray()}) {
            QVERIFY(f.write(source, content));
            QVERIFY(copyFile(source, copy)); // over the longer copy of the round before
            QVERIFY(f.read(copy) == content && f.read(source) == content);
        }
        QVERIFY(f.write(copy, "kept"));
        QVERIFY(!copyFile(f.dl() + u"/none"_s, copy) && !copyFile(copy, f.out() + u"/no/copy"_s));
        QVERIFY(QFile::link(copy, f.out() + u"/link"_s) && copyFile(copy, f.out() + u"/link"_s));
        QVERIFY(copyFile(copy, copy));
        QCOMPARE(f.read(copy), QByteArray("kept"));
    }

    /** Sizes and offsets beyond 32 bits; the source takes no space, the copy does for a moment. */
    void copiesLargeFiles()
    {
        if (sizeof(void *) > 4)
            return QTest::qSkip("only 32-bit programs have trouble with such files", __FILE__,
                                __LINE__);
        constexpr qint64 size = 3LL << 30;
        TaskFixture f;
        if (QStorageInfo(f.out()).bytesAvailable() < size * 3 / 2)
            QTest::qSkip("needs 4.5 GiB of free space", __FILE__, __LINE__);
        QFile source(f.dl() + u"/large"_s);
        QVERIFY(source.open(QIODevice::WriteOnly) && source.resize(size));
        const qint64 marks[] = {0, (1LL << 31) - 2, size - 4};
        for (const qint64 mark : marks)
            QVERIFY(source.seek(mark) && source.write("mark") == 4);
        source.close();
        QVERIFY(copyFile(source.fileName(), f.out() + u"/large"_s));
        QFile copy(f.out() + u"/large"_s);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.size(), size);
        for (const qint64 mark : marks)
            QVERIFY(copy.seek(mark) && copy.read(4) == "mark");
    }

    void copiesVideosThatAreKept()
    {
        TaskFixture f;
        f.parse(1, true);
        const QString key = f.keyOf(1);
        f.task(1)->FileName = f.dl() + u"/a.flv"_s;
        f.task(1)->SaveAsFileName = f.out() + u"/unused"_s;
        QVERIFY(!f.down->CopyVideo(key)); // the video is missing
        QVERIFY(f.write(f.dl() + u"/a.flv"_s, "video"));
        QVERIFY(f.down->CopyVideo(key + u"1"_s) && !f.down->CopyVideo(f.keyOf(2)));
        for (int value : {0, 2}) {
            f.task(1)->IsOrgVideo = value;
            QVERIFY(!f.down->CopyVideo(key));
        }
        QCOMPARE(f.files(f.out()), u""_s);
        f.task(1)->IsOrgVideo = 1;
        QVERIFY(f.down->CopyVideo(key));
        QCOMPARE(f.files(f.out()), u"a.flv"_s);
        f.task(1)->SaveAsPath = f.dl();
        QVERIFY(f.down->CopyVideo(key)); // onto itself
        QCOMPARE(f.read(f.dl() + u"/a.flv"_s), QByteArray("video"));
    }

    void conversions()
    {
        TaskFixture f;
        f.parse(1);
        CXMLInfo *task = f.task(1);
        task->VideoExt = u"mp4"_s;
        task->VideoWidth = 640;
        task->VideoHeight = 360;
        task->FileName = u"\\d\\Clip.x.mp4"_s;
        task->SaveAsPath = u"\\s"_s;
        tagConvertInfo info;
        const auto convert = [&](int keep, const QString &extension, int width) {
            task->IsOrgVideo = keep;
            Profile_Desc wanted = f.profile(extension, width, 360);
            f.down->SaveProfile(f.keyOf(1), &wanted);
            info.nConvert = 9;
            return f.down->getConvertInfo(f.keyOf(1), &info) ? info.nConvert : -1;
        };
        QCOMPARE(convert(0, u"mp4"_s, 640), 0);
        QCOMPARE(convert(1, u"avi"_s, 640), 0);
        QVERIFY(!f.down->getConvertInfo(u"none"_s, &info) && info.strSrcFile.isNull());
        QCOMPARE(convert(0, u"mp4"_s, 64), 1);
        QCOMPARE(convert(2, u"MP4"_s, 640), 1);
        QCOMPARE(info.strSrcFile + u' ' + info.strDstFile, u"/d/Clip.x.mp4 /s/Clip.x.MP4"_s);
        QCOMPARE(info.ProfileDesc.vSize_Width, 640);
    }

    void removals()
    {
        TaskFixture f;
        std::vector<std::unique_ptr<CXMLInfo>> unlinked;
        for (int number = 1; number <= 5; ++number) {
            f.parse(number);
            f.task(number)->FileName = f.dl() + u"/%1.mp4"_s.arg(number);
            f.task(number)->ImagePath = f.dl() + u"/%1.jpg"_s.arg(number);
            QVERIFY(f.write(f.task(number)->FileName, "v"));
            QVERIFY(number == 2 || f.write(f.task(number)->ImagePath, "i"));
        }
        unlinked.emplace_back(f.task(1));
        f.parse(1); // a new record takes its place, and leaves its files alone
        for (int number : {1, 2, 3})
            unlinked.emplace_back(f.task(number));
        f.takeCalls();
        const QString lists = f.state();
        f.down->remove(u"none"_s, true);
        f.down->remove(f.keyOf(1), false);
        f.down->remove(f.task(2)->MD5Code, true); // its thumbnail is missing
        QCOMPARE(f.files(f.dl()), u"1.jpg 1.mp4 3.jpg 3.mp4 4.jpg 4.mp4 5.jpg 5.mp4"_s);
        QVERIFY(f.down->DeleteVideoFile(f.keyOf(3)) && !f.down->DeleteVideoFile(0));
        QVERIFY(QFile::remove(f.task(4)->ImagePath) && !f.down->DeleteVideoFile(f.keyOf(4)));
        f.down->remove(0, false);
        f.down->remove(7, false);
        QVERIFY(!f.down->TaskExist(f.keyOf(3)) && unlinked[3]->MD5Code == f.keyOf(3));
        QCOMPARE(f.down->getIndex(f.keyOf(5)), 1);
        QVERIFY(!f.down->DeleteVideoFile(u"none"_s));
        QVERIFY(QFile::remove(f.task(5)->FileName)); // its thumbnail goes all the same
        f.down->removeAll(true);
        QCOMPARE(f.files(f.dl()), u"1.jpg 1.mp4"_s);
        f.down->removeAll(false);
        QCOMPARE(f.takeCalls() + f.state(), lists);
    }
};

QTEST_GUILESS_MAIN(FilesTest)
#include "tst_files.moc"
