#include "driver/historykeeper.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <memory>

#include <sys/resource.h>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void addTask(CDown &controller, const QString &title)
{
    const ControllerLock lock;
    CXMLInfo *task = controller.m_pHistory->Add(nullptr);
    task->MD5Code = CDown::GetURLToMD5(title);
    task->Title = title;
}

// The child of `survivesKilling`: each save has one task more, and is told once it is done.
int saveContinuously(const QString &path)
{
    CDown controller(nullptr);
    HistoryKeeper keeper(controller, path);
    if (!keeper.open().isEmpty())
        return 1;
    for (int saves = 0; saves < 200; ++saves) {
        addTask(controller, QString(500, u'x'));
        if (!keeper.save().isEmpty())
            return 1;
        std::printf("%d\n", controller.count());
        std::fflush(stdout);
    }
    return 0;
}

// A controller with its keeper, as an application has them.
struct Application
{
    explicit Application(const QString &path) : keeper(controller, path), problem(keeper.open()) {}
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
            QCOMPARE(first.keeper.save(), QString());
            addTask(first.controller, QStringLiteral("two"));
            first.keeper.noteChange(); // saved by the destructor at the latest
        }
        Application second(m_path);
        QCOMPARE(second.controller.count(), 2);
        QCOMPARE(second.keeper.setAsidePath(), QString());
        QCOMPARE(contentOf(m_path + QLatin1String(".previous")).count("<Info>"), 1);
        QVERIFY(!QFile::exists(m_path + QLatin1String(".new")));
    }

    void changesAreSavedTogether()
    {
        Application application(m_path);
        for (int i = 0; i < 50; ++i) {
            addTask(application.controller, QString::number(i));
            application.keeper.noteChange();
        }
        QVERIFY(!QFile::exists(m_path));
        QTRY_COMPARE_WITH_TIMEOUT(contentOf(m_path).count("<Info>"), 50, 30000);
        QVERIFY(!QFile::exists(m_path + QLatin1String(".previous")));
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

        // What a full disk does to a file in the middle of its writing.
        rlimit old = {};
        getrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small = {65536, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        const QString problem = application.keeper.save();
        setrlimit(RLIMIT_FSIZE, &old);

        QVERIFY(problem.contains(QStringLiteral("the disk may be full")));
        QCOMPARE(contentOf(m_path), before);
        QVERIFY(!QFile::exists(m_path + QLatin1String(".new")));
        QCOMPARE(application.keeper.save(), QString());
    }

    void survivesKilling()
    {
        QRandomGenerator random(3);
        for (int round = 0; round < 10; ++round) {
            init();
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--save-continuously"), m_path});
            int saved = 0;
            for (const int last = random.bounded(1, 200); saved < last;) {
                QVERIFY(child.canReadLine() || child.waitForReadyRead(60000));
                while (child.canReadLine())
                    saved = child.readLine().toInt();
            }
            child.kill();
            QVERIFY(child.waitForFinished(60000));
            Application after(m_path);
            QCOMPARE(after.problem, QString());
            QCOMPARE(after.keeper.setAsidePath(), QString());
            QVERIFY(after.controller.count() >= saved);
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--save-continuously"))
        return saveContinuously(arguments.value(2));
    HistoryKeeperTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_historykeeper.moc"
