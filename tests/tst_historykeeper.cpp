#include "driver/historykeeper.h"
#include "driver/journal.h"
#include "driver/leftovers.h"
#include "driver/taskstate.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

QStringList synced; // paths, as they were then

int noteSync(int descriptor)
{
    synced << QFile::symLinkTarget(u"/proc/self/fd/%1"_s.arg(descriptor));
    return 0;
}

} // namespace

// In the place of the C library's: what reached the disk cannot be seen otherwise.
extern "C" int fsync(int descriptor)
{
    return noteSync(descriptor);
}

extern "C" int fdatasync(int descriptor)
{
    return noteSync(descriptor);
}

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString keyOf(const QString &title)
{
    return CDown::GetURLToMD5(title);
}

CXMLInfo *taskOf(CDown &controller, const QString &title)
{
    return controller.getXMLInfo(keyOf(title));
}

CXMLInfo *addTask(CDown &controller, const QString &title, TaskState state = TaskState::None)
{
    const ControllerLock lock;
    CXMLInfo *task = controller.m_pHistory->Add(nullptr);
    task->MD5Code = keyOf(title);
    task->Title = title;
    task->State = int(state);
    return task;
}

// What a full disk does to files that grow beyond 64 KiB.
struct FullDisk
{
    FullDisk()
    {
        getrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small = {65536, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &old); }
    rlimit old{};
};

// A controller with its keeper, as an application has them.
struct Application
{
    explicit Application(const QString &path)
        : keeper(controller, path,
                 [](const QString &file) {
                     return QStringList{file + u".part"_s, file + u".part-info"_s};
                 }),
          problem(keeper.open())
    {
    }
    bool commit(const QStringList &titles)
    {
        QStringList keys;
        for (const QString &title : titles)
            keys << keyOf(title);
        return keeper.commit(keys);
    }
    CDown controller{nullptr};
    HistoryKeeper keeper;
    QString problem;
};

} // namespace

class HistoryKeeperTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(QStringLiteral("data/history.xml"));
    }

    void savesAndKeepsThePreviousVersion()
    {
        {
            Application first(m_path);
            QCOMPARE(first.problem, QString());
            addTask(first.controller, QStringLiteral("one"));
            const QString folder = QFileInfo(m_path).path();
            synced.clear();
            QVERIFY(first.commit({u"one"_s}));
            QCOMPARE(synced, QStringList({folder, journal()}));
            synced.clear();
            QCOMPARE(first.keeper.save(), QString());
            QCOMPARE(synced, QStringList({m_path + u".new"_s, journal(), folder}));
            addTask(first.controller, QStringLiteral("two"));
            first.commit({QStringLiteral("two")}); // saved by the destructor
        }
        Application second(m_path);
        QCOMPARE(second.controller.count(), 2);
        QCOMPARE(second.keeper.setAsidePath(), QString());
        QCOMPARE(contentOf(m_path + QLatin1String(".previous")).count("<Info>"), 1);
        QVERIFY(!QFile::exists(m_path + QLatin1String(".new")));
    }

    // What a sudden end leaves: history and journal as they are, and nobody who saves.
    void journalCarriesWhatTheHistoryLacks()
    {
        {
            Application first(m_path);
            addTask(first.controller, u"one"_s);
            QCOMPARE(first.keeper.save(), QString());
            addTask(first.controller, u"two \U0001f386\n\"<&"_s, TaskState::Running);
            QVERIFY(first.commit({u"two \U0001f386\n\"<&"_s}));
            taskOf(first.controller, u"one"_s)->Profile->m_pDesc->vFps = 25;
            taskOf(first.controller, u"one"_s)->Progress = 7;
            QVERIFY(first.commit({u"one"_s}));
            first.keeper.recordSize(keyOf(u"two \U0001f386\n\"<&"_s), 5000000000);
            QVERIFY(!contentOf(m_path).contains("two"));
            takeAway();
        }
        Application second(m_path);
        QCOMPARE(second.problem + second.keeper.setAsidePath() + second.keeper.setAsideJournal(),
                 QString());
        QCOMPARE(second.controller.count(), 2);
        QCOMPARE(taskOf(second.controller, u"one"_s)->Profile->m_pDesc->vFps, 25);
        QCOMPARE(taskOf(second.controller, u"one"_s)->Progress, 7);
        const CXMLInfo *two = second.controller.m_pHistory->item(1);
        QCOMPARE(two->Title, u"two \U0001f386\n\"<&"_s);
        QCOMPARE(two->FileSize, 5000000000);
        QCOMPARE(second.keeper.save(), QString());
        QVERIFY(!QFile::exists(journal()));
        QCOMPARE(contentOf(m_path).count("<Info>"), 2);
    }

    // Cut anywhere, and with any line doubled, it gives what the whole lines before say.
    void damagedJournals()
    {
        {
            Application first(m_path);
            for (int progress = 1; progress <= 4; ++progress) {
                if (progress == 1)
                    addTask(first.controller, u"one"_s, TaskState::Running);
                taskOf(first.controller, u"one"_s)->Progress = progress;
                QVERIFY(first.commit({u"one"_s}));
            }
            takeAway();
        }
        const QByteArray whole = contentOf(journal());
        const QList<QByteArray> lines = whole.split('\n'); // head, four changes, an empty one
        QCOMPARE(lines.size(), 6);
        QVERIFY(lines.at(1).contains("\"Title\"") && !lines.at(2).contains("\"Title\""));
        const auto progressWith = [this](const QByteArray &bytes) {
            QFile::remove(m_path);
            write(journal(), bytes);
            Application after(m_path);
            const bool none = after.controller.count() == 0;
            const int progress = none ? 0 : taskOf(after.controller, u"one"_s)->Progress;
            // What comes later goes behind the damage.
            addTask(after.controller, u"later"_s, TaskState::Running);
            return after.problem.isEmpty() && after.commit({u"later"_s}) ? progress : -1;
        };
        for (qsizetype size = 0; size<whole.size(); size += size> 100 ? 53 : 7)
            QCOMPARE(progressWith(whole.left(size)),
                     qMax(0, int(whole.left(size).count('\n')) - 1));
        QByteArray doubled = whole;
        for (const QByteArray &line : lines.mid(0, 5))
            doubled += line + '\n';
        QCOMPARE(progressWith(doubled), 4);
        QByteArray spoiled = whole;
        spoiled[spoiled.indexOf(R"("Progress":"4")") + 12] = '9';
        QCOMPARE(progressWith(spoiled), 3);
        QCOMPARE(progressWith(QByteArray(5000, 'x')), 0);
        for (int line = 0; line < 100000; ++line)
            doubled += lines.at(1) + '\n';
        QCOMPARE(progressWith(doubled), 4);
    }

    void journalKnowsItsHistory_data()
    {
        QTest::addColumn<QByteArray>("history");
        QTest::addColumn<bool>("replays");
        const QByteArray root = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<DownloadInfos_History/>\n";
        QTest::newRow("its own") << QByteArray("same") << true;
        QTest::newRow("the next one") << QByteArray("next") << false;
        QTest::newRow("another one") << root << false;
        QTest::newRow("none") << QByteArray() << false;
        QTest::newRow("its own, damaged") << QByteArray("<DownloadInfos_History>") << true;
    }

    void journalKnowsItsHistory()
    {
        QFETCH(QByteArray, history);
        QFETCH(bool, replays);
        QByteArray before;
        QByteArray next;
        QByteArray lines;
        {
            Application first(m_path);
            addTask(first.controller, u"one"_s);
            QCOMPARE(first.keeper.save(), QString());
            before = contentOf(m_path);
            taskOf(first.controller, u"one"_s)->Progress = 7;
            QVERIFY(first.commit({u"one"_s}));
            // An end between the rename of a save and the removal of the journal.
            Journal copy(journal());
            QList<QJsonObject> entries;
            QCOMPARE(copy.open(m_path, Journal::digestOfFile(m_path), entries),
                     Journal::Found::Entries);
            taskOf(first.controller, u"one"_s)->Progress = 8;
            first.controller.SaveToFile(m_folder->filePath(u"next"_s));
            next = contentOf(m_folder->filePath(u"next"_s));
            QVERIFY(copy.announce(Journal::digestOfFile(m_folder->filePath(u"next"_s))));
            lines = contentOf(journal());
        }
        QFile::remove(m_path);
        if (!history.isEmpty())
            write(m_path, history == "same" ? before : history == "next" ? next : history);
        write(journal(), lines);
        Application after(m_path);
        const bool isKnown = replays || history == "next";
        QCOMPARE(after.keeper.setAsideJournal().isEmpty(), isKnown);
        QVERIFY(isKnown || contentOf(after.keeper.setAsideJournal()) == lines);
        const int progress =
            after.controller.count() == 0 ? 0 : taskOf(after.controller, u"one"_s)->Progress;
        QCOMPARE(progress, replays ? 7 : isKnown ? 8 : 0);
    }

    // Its digests were of another form.
    void journalOfAnEarlierVersionCounts()
    {
        const QString folder = QStringLiteral(VIDEODOWN_HISTORIES "/");
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        write(m_path, contentOf(folder + u"0.1.0.xml"_s));
        write(journal(), contentOf(folder + u"early.journal"_s));
        Application first(m_path);
        QCOMPARE(first.keeper.setAsideJournal(), QString());
        QCOMPARE(first.controller.getProgress(u"7F679DCC761CF3BA9A702EF3DFC2088C"_s), 55);
    }

    void leftoversAreTakenAway_data()
    {
        QTest::addColumn<TaskState>("state");
        QTest::addColumn<QByteArray>("video");
        QTest::addColumn<QStringList>("stay"); // of all the files below
        const QStringList files{u"copy.mp4"_s, u"video.mp4"_s};
        const QStringList parts{u"video.mp4.part"_s, u"video.mp4.part-info"_s};
        QTest::newRow("interrupted") << TaskState::Running << QByteArray() << parts;
        QTest::newRow("complete") << TaskState::Running << QByteArray("whole") << files.mid(1);
        QTest::newRow("finished") << TaskState::Finished << QByteArray() << files + parts;
    }

    void leftoversAreTakenAway()
    {
        QFETCH(TaskState, state);
        QFETCH(QByteArray, video);
        QFETCH(QStringList, stay);
        {
            Application first(m_path);
            CXMLInfo *task = addTask(first.controller, u"one"_s, TaskState::Running);
            task->IsOrgVideo = 1;
            task->FileSize = 5;
            task->FileName = file(u"video.mp4"_s);
            task->SaveAsFileName = file(u"copy.mp4"_s);
            task->ImagePath = file(u"image.jpg"_s);
            QVERIFY(first.commit({u"one"_s}));
            QCOMPARE(first.keeper.save(), QString()); // what is at work is remembered over a save
            task->State = int(state);
            QVERIFY(first.commit({u"one"_s}));
            takeAway();
        }
        write(file(u"video.mp4"_s), video);
        for (const QString &name : {u"copy.mp4"_s, u"image.jpg"_s})
            write(file(name), "");
        for (const QString &name : {u"video.mp4"_s, u"image.jpg"_s}) {
            write(file(name + u".part"_s), "part");
            write(file(name + u".part-info"_s), "facts");
        }
        Application after(m_path);
        stay.sort();
        QCOMPARE(
            QDir(m_folder->path()).entryList({u"*.mp4*"_s, u"*.jpg*"_s}, QDir::Files, QDir::Name),
            stay);
    }

    // The history then says what the files are called, and has no task that was skipped.
    void interruptedMoveIsFollowed_data()
    {
        QTest::addColumn<QStringList>("moved");
        QTest::newRow("none") << QStringList();
        QTest::newRow("copy") << QStringList{u"copy"_s};
        QTest::newRow("both") << QStringList{u"copy"_s, u"video"_s};
        QTest::newRow("ended") << QStringList{u"copy"_s, u"video"_s, u"record"_s};
    }

    void interruptedMoveIsFollowed()
    {
        QFETCH(const QStringList, moved);
        const QString one = u"one"_s;
        {
            Application first(m_path);
            CXMLInfo *task = addTask(first.controller, one, TaskState::Running);
            task->FileName = file(u"video_0"_s);
            task->SaveAsFileName = file(u"copy_0"_s);
            task->IsOrgVideo = 1;
            task->FileSize = 3;
            addTask(first.controller, u"two"_s, TaskState::Running);
            QVERIFY(first.commit({one, u"two"_s}));
            QCOMPARE(first.keeper.save(), QString());
            QVERIFY(first.keeper.drop(keyOf(u"two"_s)));
            MovedFiles files;
            for (const QString &name : {u"copy"_s, u"video"_s}) {
                files.moves.append({file(name + u"_0"_s), file(name)});
                write(file(name), "old one");
                write(file(moved.contains(name) ? name : name + u"_0"_s), "new");
            }
            files.size = 3;
            QVERIFY(first.keeper.beginMove(keyOf(one), files));
            QVERIFY(first.commit({one})); // says nothing meanwhile
            if (moved.contains(u"record"_s)) {
                task->FileName = file(u"elsewhere"_s); // by a later run
                first.keeper.endMove(keyOf(one));
            }
            takeAway();
        }
        Application after(m_path);
        QVERIFY(taskOf(after.controller, u"two"_s) == nullptr);
        const CXMLInfo &task = *taskOf(after.controller, one);
        const QString video = moved.contains(u"video"_s) ? u"video"_s : u"video_0"_s;
        const bool ended = moved.contains(u"record"_s);
        QCOMPARE(task.FileName, file(ended ? u"elsewhere"_s : video));
        QCOMPARE(task.SaveAsFileName,
                 file(moved.contains(u"copy"_s) && !ended ? u"copy"_s : u"copy_0"_s));
        for (const QString &name : {u"copy"_s, u"video"_s})
            QCOMPARE(contentOf(file(name)), moved.contains(name) ? "new" : "old one");
    }

    void interruptedUpgradeIsUndone_data()
    {
        QTest::addColumn<QByteArray>("present"); // where the old video was
        QTest::addColumn<QByteArray>("becomes");
        QTest::newRow("not begun") << QByteArray("-") << QByteArray("old");
        QTest::newRow("begun") << QByteArray() << QByteArray("old");
        QTest::newRow("complete") << QByteArray("larger") << QByteArray("old");
        QTest::newRow("somebody's")
            << QByteArray("theirs, not ours") << QByteArray("theirs, not ours");
    }

    void interruptedUpgradeIsUndone()
    {
        QFETCH(QByteArray, present);
        QFETCH(QByteArray, becomes);
        {
            Application first(m_path);
            CXMLInfo *task = addTask(first.controller, u"one"_s, TaskState::Finished);
            task->FileSize = 3;
            QVERIFY(first.commit({u"one"_s}));
            UpgradeFiles files;
            files.old = {{file(u"video.mp4"_s), file(u"video.mp4.former"_s)}};
            QVERIFY(first.keeper.beginUpgrade(keyOf(u"one"_s), files));
            files.fresh = {file(u"video.mp4"_s)};
            QVERIFY(first.keeper.beginUpgrade(keyOf(u"one"_s), files));
            first.keeper.recordSize(keyOf(u"one"_s), 6);
            task->State = int(TaskState::Running);
            QVERIFY(first.commit({u"one"_s}));
            takeAway();
        }
        write(file(u"video.mp4.former"_s), "old");
        if (present != "-")
            write(file(u"video.mp4"_s), present);
        write(file(u"video.mp4.part"_s), "part");
        Application after(m_path);
        QCOMPARE(contentOf(file(u"video.mp4"_s)), becomes);
        QCOMPARE(QFile::exists(file(u"video.mp4.former"_s)), becomes != "old");
        QVERIFY(!QFile::exists(file(u"video.mp4.part"_s)));
        QCOMPARE(taskOf(after.controller, u"one"_s)->FileSize, 3);
        QCOMPARE(taskOf(after.controller, u"one"_s)->State, int(TaskState::Finished));
    }

    void longJournalBecomesHistory()
    {
        Application application(m_path);
        addTask(application.controller, u"one"_s, TaskState::Running);
        for (int change = 0; change < 12; ++change) {
            taskOf(application.controller, u"one"_s)->fmt_list =
                QString(100000, QChar(u'a' + change));
            QVERIFY(application.commit({u"one"_s}));
        }
        QVERIFY(contentOf(m_path).contains("<Info>"));
        QVERIFY(contentOf(journal()).size() < 1000000);
    }

    // What cannot be written now is written with the next change.
    void failedCommitIsToldAndRepeated()
    {
        int told = 0;
        {
            Application application(m_path);
            connect(&application.keeper, &HistoryKeeper::saveFailed, [&told] { ++told; });
            addTask(application.controller, u"one"_s, TaskState::Running);
            QVERIFY(application.commit({u"one"_s}));
            addTask(application.controller, QString(100000, u'x'), TaskState::Running);
            const FullDisk full;
            QVERIFY(!application.commit({QString(100000, u'x')}));
            QVERIFY(!application.commit({u"one"_s}));
            QCOMPARE(told, 1);
        }
        {
            Application application(m_path);
            QCOMPARE(application.controller.count(),
                     2); // saved at the end, with the disk free again
            addTask(application.controller, QString(100000, u'y'), TaskState::Running);
            {
                const FullDisk full;
                QVERIFY(!application.commit({QString(100000, u'y')}));
            }
            QVERIFY(application.commit({}));
            takeAway();
        }
        QCOMPARE(Application(m_path).controller.count(), 3);
    }

    void locks()
    {
        const QString lock = m_path + u".lock"_s;
        QVERIFY(QDir(m_folder->path()).mkdir(u"data"_s));
        write(lock, ""); // of a program that ended between making and writing it
        {
            Application application(m_path);
            QCOMPARE(application.problem, QString());
            // That of a living program stays, however old.
            QFile file(lock);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(QDateTime(QDate(2001, 1, 1), QTime(0, 0)),
                                     QFileDevice::FileModificationTime));
            QVERIFY(Application(m_path).problem.contains(u"is in use by"_s));
        }
        QVERIFY(QDir(m_folder->path()).mkpath(lock + u"/x"_s));
        QVERIFY(Application(m_path).problem.contains(u"in the way"_s));
    }

    void damagedFileIsSetAside()
    {
        {
            Application first(m_path);
            addTask(first.controller, QStringLiteral("one"));
            addTask(first.controller, QStringLiteral("two"));
            QCOMPARE(first.keeper.save(), QString());
        }
        QByteArray damaged = contentOf(m_path);
        damaged.truncate(damaged.lastIndexOf("<Info>") + 40);
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(damaged);
        file.close();

        Application second(m_path);
        QCOMPARE(second.problem, QString());
        QCOMPARE(contentOf(second.keeper.setAsidePath()), damaged);
        QVERIFY(QRegularExpression(QStringLiteral("/history\\.xml\\.damaged-\\d{8}-\\d{6}$"))
                    .match(second.keeper.setAsidePath())
                    .hasMatch());
        QCOMPARE(second.controller.getXMLInfo(CDown::GetURLToMD5(QStringLiteral("one")))->Title,
                 QStringLiteral("one"));
        QVERIFY(contentOf(m_path).endsWith("</DownloadInfos_History>\n"));
    }

    void secondProgramIsToldWhoHoldsIt()
    {
        auto first = std::make_unique<Application>(m_path);
        CDown controller(nullptr);
        HistoryKeeper second(controller, m_path);
        const QString process = QString::number(QCoreApplication::applicationPid());
        QVERIFY2(second.open().contains(process), qPrintable(second.open()));
        QVERIFY(!second.save().isEmpty());
        first.reset();
        QCOMPARE(second.open(), QString());
    }

    void failedSaveLeavesTheHistory()
    {
        Application application(m_path);
        addTask(application.controller, QStringLiteral("one"));
        QCOMPARE(application.keeper.save(), QString());
        const QByteArray before = contentOf(m_path);
        addTask(application.controller, QString(100000, u'x'));

        QString problem;
        {
            const FullDisk full;
            problem = application.keeper.save();
        }
        QVERIFY(problem.contains(QStringLiteral("the disk may be full")));
        QCOMPARE(contentOf(m_path), before);
        QVERIFY(!QFile::exists(m_path + QLatin1String(".new")));
        QCOMPARE(application.keeper.save(), QString());
    }

private:
    QString journal() const { return m_path + u".journal"_s; }
    QString file(const QString &name) const { return m_folder->filePath(name); }

    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    // The folder is another one now: whoever saves at his end, saves to nowhere.
    void takeAway()
    {
        const QString folder = QFileInfo(m_path).path();
        QVERIFY(QDir().rename(folder, folder + u"-taken"_s));
        m_path = folder + u"-taken/history.xml"_s;
        QFile::remove(m_path + u".lock"_s);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

QTEST_GUILESS_MAIN(HistoryKeeperTest)

#include "tst_historykeeper.moc"
