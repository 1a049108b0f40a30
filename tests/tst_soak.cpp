/** Many tasks over HTTP, faults in the answers, a user who changes his mind: nothing is lost. */
#include "driver/downloaddriver.h"
#include "site/faultoption.h"
#include "site/videosite.h"
#include "taskengine/failure.h"
#include "taskengine/options.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <malloc.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VIDEODOWN_IS_SLOW true
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VIDEODOWN_IS_SLOW true
#endif
#endif
#ifndef VIDEODOWN_IS_SLOW
#define VIDEODOWN_IS_SLOW qEnvironmentVariableIsSet("VIDEODOWN_EMULATED")
#endif

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t videoSize = 30000;
constexpr int window = 40;           // tasks of which the end is awaited at once
constexpr int patience = 1000 * 600; // milliseconds; only ends what hangs
// Of one length, so that none begins with another: faults are ordered by the beginning of a path.
constexpr unsigned firstNumber = 100000;

int setting(const char *name, int otherwise)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : otherwise;
}

qsizetype openFiles()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
}

/** Bytes that the allocator has given out; 0 where a sanitizer is the allocator. */
qint64 heapInUse()
{
    return qint64(mallinfo2().uordblks);
}

/** Bytes of memory that the process really uses. */
qint64 residentSize()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/** What an answer may have; each meets one request. */
constexpr const char *faults[] = {
    "prefix=/stream/small-%1/,cut=10000",
    "prefix=/stream/small-%1/,cut=20000,etag=other",
    "prefix=/stream/small-%1/,cut=5000,ignore-range",
    "prefix=/stream/small-%1/,latency=30",
    "prefix=/stream/small-%1/,header-latency=5",
    "prefix=/stream/small-%1/,header-flood=300000",
    "prefix=/stream/small-%1/,unannounced",
    "prefix=/stream/small-%1/,length=40000",
    "prefix=/stream/small-%1/,two-lengths",
    "prefix=/stream/small-%1/,gzip-bomb=1000000",
    "prefix=/stream/small-%1/,redirect=/stream/small-%1/34",
    "prefix=/stream/small-%1/,redirect=file:///etc/hostname",
    "prefix=/stream/small-%1/,status=200",
    "prefix=/stream/small-%1/,status=403",
    "prefix=/stream/small-%1/,status=404",
    "prefix=/stream/small-%1/,status=416",
    "prefix=/stream/small-%1/,status=500",
    "prefix=/stream/small-%1/,status=503,retry-after=0",
    "prefix=/thumbnail/small-%1.jpg,status=404",
    "prefix=/thumbnail/small-%1.jpg,endless",
    "prefix=/get_video_info?video_id=small-%1,status=404",
    "prefix=/get_video_info?video_id=small-%1,status=200",
};

/** What further connections may meet. */
constexpr const char *pieceFaults[] = {
    "first=2,status=403",
    "first=1,earlier=100",
    "first=1,total-more=5",
    "first=1,shorter=100",
    "first=1,longer=100",
    "first=2,status=429",
    "first=1,cut=2000",
    "first=1,ignore-range",
    "first=2,length=4000",
    "at-once=1",
    "first=1,etag=other,ignore-if-range",
};

Misbehaviour fault(unsigned number, quint32 kind)
{
    const QString text = u"first=1,"_s + QString::fromLatin1(faults[kind]).arg(number);
    return *readMisbehaviour(text.toStdString());
}

/** The stream comes so slowly that several connections are worth while; the second has a fault. */
void addPieceFault(VideoSite &site, unsigned number, quint32 kind)
{
    for (const char *text : {"first=1", pieceFaults[kind], "first=0"}) {
        const QString slow = u"prefix=/stream/small-%1/,rate=20000,"_s.arg(number);
        site.addMisbehaviour(*readMisbehaviour((slow + QLatin1String(text)).toStdString()));
    }
}

struct Counts
{
    int finished = 0;
    int failed = 0;
    int stopped = 0;
    int faulty = 0;
    std::size_t requests = 0;
};

/** Some of the tasks, on a controller and an engine of their own. */
class Lap : public QObject
{
public:
    Lap(VideoSite &site, int limit, quint32 seed, Counts &counts)
        : m_site(site), m_limit(limit), m_random(seed), m_counts(counts)
    {
        QDir(m_root.path()).mkdir(u"dl"_s);
        DownloadDriver::Settings settings;
        settings.downloadFolder = m_root.filePath(u"dl"_s);
        settings.videoLimit = limit;
        settings.failureText = [](double code) {
            return QString::fromStdString(taskengine::failureText(code));
        };
        settings.hasExpired = [](double code) { return code == 403 || code == 410; };
        m_driver = std::make_unique<DownloadDriver>(settings);
        connect(m_driver.get(), &DownloadDriver::ended, this, &Lap::settle);
    }

    void run(unsigned first, unsigned last)
    {
        QSignalSpy idle(m_driver.get(), &DownloadDriver::idle);
        m_next = first;
        m_last = last;
        while (m_open.size() < window && m_next < m_last)
            addNext();
        while (!m_open.isEmpty() || !m_driver->isIdle()) {
            if (!idle.wait(patience)) {
                broken += u"hangs"_s;
                return;
            }
        }
        checkRest();
    }

    QStringList broken; // promises

private:
    void addNext()
    {
        const unsigned number = m_next++;
        if (m_random.bounded(10) < 3) { // of three answers a task: one in ten
            if (m_random.bounded(8) == 0)
                addPieceFault(m_site, number, m_random.bounded(quint32(std::size(pieceFaults))));
            else
                m_site.addMisbehaviour(fault(number, m_random.bounded(quint32(std::size(faults)))));
            m_disturbed.insert(number);
            ++m_counts.faulty;
        }
        add(number);
    }

    void add(unsigned number)
    {
        DownloadRequest request;
        request.address =
            QString::fromStdString(m_site.pageAddress("small-" + std::to_string(number)));
        request.keepSource = number % 2 == 0;
        request.outputFolder = m_root.filePath(u"out"_s);
        m_open.insert(m_driver->add(request), number);
    }

    void settle(const DownloadResult &result)
    {
        if (!m_open.contains(result.key)) {
            broken += u"a second end of "_s + result.address;
            return;
        }
        const unsigned number = m_open.take(result.key);
        note(result, number);
        const bool again = result.outcome != DownloadOutcome::Finished && m_random.bounded(2) == 0;
        if (again)
            add(number);
        else if (m_random.bounded(4) == 0)
            forget(result.key);
        if (m_next < m_last && m_open.size() < window)
            addNext();
        meddle();
    }

    void note(const DownloadResult &result, unsigned number)
    {
        if (result.outcome != DownloadOutcome::Finished && !m_disturbed.contains(number))
            broken += u"undisturbed: %1: %2"_s.arg(result.address, result.failure.cause);
        if (result.outcome == DownloadOutcome::Finished) {
            ++m_counts.finished;
            QFile file(result.path);
            if (!file.open(QIODevice::ReadOnly) ||
                file.readAll().toStdString() != smallVideoBytes(number, 34, videoSize))
                broken += u"wrong bytes in "_s + result.path;
        } else if (result.outcome == DownloadOutcome::Failed) {
            ++m_counts.failed;
            if (result.failure.cause.isEmpty())
                broken += u"no cause for "_s + result.address;
        } else {
            ++m_counts.stopped;
        }
    }

    /** Takes the task from the list, as `videodown remove --delete-files` does. */
    void forget(const QString &key)
    {
        const ControllerLock lock;
        CXMLInfo *const record = m_driver->controller().getXMLInfo(key);
        m_driver->controller().remove(key, true);
        delete record;
    }

    void meddle()
    {
        if (m_open.isEmpty() || m_random.bounded(4) != 0)
            return;
        const QString key = std::next(m_open.begin(), m_random.bounded(int(m_open.size()))).key();
        if (m_random.bounded(2) == 0) {
            m_disturbed.insert(m_open.value(key));
            m_driver->stop(key);
            return;
        }
        const QByteArray name = key.toLatin1();
        if (SuspendedDownload(name.constData()) == 0) {
            // Not by a timer: in the event loop the key may pass to the task's next request.
            QThread::msleep(2);
            SuspendedDownload(name.constData());
        }
    }

    void checkRest()
    {
        const ControllerLock lock;
        const CDown &down = m_driver->controller();
        if (down.m_nParseFree != 3 || down.m_nDownFree != m_limit)
            broken += u"slots: %1 %2"_s.arg(down.m_nParseFree).arg(down.m_nDownFree);
        if (!m_DownloadAllTask.isEmpty() || !m_DownLoadingList.isEmpty() ||
            !down.m_ParseWaitList.isEmpty() || !down.m_DownloadWaitList.isEmpty() ||
            !down.m_ImageWaitList.isEmpty())
            broken += u"lists"_s;
    }

    VideoSite &m_site;
    const int m_limit;
    QRandomGenerator m_random;
    Counts &m_counts;
    QTemporaryDir m_root;
    QHash<QString, unsigned> m_open; // numbers of the tasks that have not ended, by key
    QSet<unsigned> m_disturbed;      // numbers of the tasks that need not finish
    unsigned m_next = 0;
    unsigned m_last = 0;
    std::unique_ptr<DownloadDriver> m_driver;
};

/** @return the promises that were broken */
QStringList run(std::pair<unsigned, unsigned> numbers, int limit, quint32 seed, Counts &counts)
{
    VideoSite site;
    site.setSmallVideoSize(videoSize);
    if (!site.start())
        return {u"no port"_s};
    Lap lap(site, limit, seed, counts);
    lap.run(numbers.first, numbers.second);
    counts.requests += site.requests().size();
    return lap.broken;
}

} // namespace

class SoakTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsLost()
    {
        const auto tasks =
            unsigned(setting("VIDEODOWN_SOAK_TASKS", VIDEODOWN_IS_SLOW ? 400 : 2000));
        const auto seed = quint32(setting("VIDEODOWN_SOAK_SEED", 1));
        const qsizetype filesBefore = openFiles();
        qint64 heapBefore = 0;
        qint64 heap = 0;
        Counts counts;
        taskengine::Options options = taskengine::options();
        options.leastPiece = 4000;
        taskengine::setOptions(options);
        constexpr int limits[] = {5, 2, 8, 3};
        for (unsigned lap = 0; lap < 4; ++lap) {
            const QStringList broken =
                run({firstNumber + tasks * lap / 4, firstNumber + tasks * (lap + 1) / 4},
                    limits[lap], seed + lap, counts);
            QVERIFY2(broken.isEmpty(), qPrintable(broken.join(u'\n')));
            heap = heapInUse();
            heapBefore = lap == 0 ? heap : heapBefore;
        }
        qInfo("%u tasks, %zu requests, %d faults: %d finished, %d failed, %d stopped; heap in use "
              "after a quarter %lld KiB, after all %lld KiB, resident %lld KiB; seed %u",
              tasks, counts.requests, counts.faulty, counts.finished, counts.failed, counts.stopped,
              heapBefore / 1024, heap / 1024, residentSize() / 1024, seed);
        QCOMPARE(openFiles(), filesBefore);
        QVERIFY(heap < heapBefore + qint64{128} * 1024); // what a lap took has been given back
    }

    // The engine's threads may be in the middle of anything when the application has enough.
    void leavingInTheMiddle()
    {
        VideoSite site;
        QVERIFY(site.start());
        for (int round = 0; round < 10; ++round) {
            const QTemporaryDir root;
            DownloadDriver::Settings settings;
            settings.downloadFolder = root.path();
            DownloadDriver driver(settings);
            QSignalSpy ended(&driver, &DownloadDriver::ended);
            DownloadRequest request;
            for (int number = 0; number < 20; ++number) {
                request.address =
                    QString::fromStdString(site.pageAddress("small-" + std::to_string(number)));
                driver.add(request);
            }
            QTRY_VERIFY_WITH_TIMEOUT(ended.size() >= round, patience);
        }
    }
};

// QtTest ends a test function after five minutes; a longer soak is meant to take longer.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("VIDEODOWN_SOAK_TASKS"))
        qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(24 * 3600 * 1000));
    QCoreApplication application(argc, argv);
    SoakTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_soak.moc"
