/** Driver, library, default engine and a real HTTP site together. */
#include "driver/downloaddriver.h"
#include "site/videosite.h"
#include "taskengine/options.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t videoSize = 20000;
constexpr int patience = 60000; // milliseconds, for what takes a fraction of a second

// Every fifth page does not exist.
std::string videoOf(unsigned number)
{
    return number % 5 == 0 ? "failing-" + std::to_string(2 * number)
                           : "small-" + std::to_string(number);
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
}

class Bench
{
public:
    explicit Bench(int jobs)
    {
        QDir(root.path()).mkdir(u"dl"_s);
        site.setSmallVideoSize(videoSize);
        listening = site.start();
        DownloadDriver::Settings settings;
        settings.downloadFolder = root.filePath(u"dl"_s);
        settings.videoLimit = jobs;
        settings.failureText = [](double code) {
            return QString::fromStdString(taskengine::failureText(code));
        };
        driver = std::make_unique<DownloadDriver>(settings);
        QObject::connect(driver.get(), &DownloadDriver::ended,
                         [this](const DownloadResult &result) { results.append(result); });
    }

    QString add(const std::string &video)
    {
        DownloadRequest request;
        request.address = QString::fromStdString(site.pageAddress(video));
        request.outputFolder = root.filePath(u"out"_s);
        request.keepSource = true;
        return driver->add(request);
    }

    bool waitUntilIdle() const
    {
        QSignalSpy idle(driver.get(), &DownloadDriver::idle);
        return idle.wait(patience);
    }

    VideoSite site;
    bool listening = false;
    QTemporaryDir root;
    QList<DownloadResult> results;
    std::unique_ptr<DownloadDriver> driver;
};

} // namespace

class EndToEndTest : public QObject
{
    Q_OBJECT

private slots:
    void batches_data()
    {
        QTest::addColumn<int>("jobs");
        QTest::newRow("one at a time") << 1;
        QTest::newRow("two") << 2;
        QTest::newRow("five") << 5;
    }

    void batches()
    {
        QFETCH(int, jobs);
        constexpr unsigned tasks = 200;
        Bench bench(jobs);
        QVERIFY(bench.listening);
        QHash<QString, unsigned> numbers;
        for (unsigned number = 0; number < tasks; ++number)
            numbers.insert(bench.add(videoOf(number)), number);
        QVERIFY(bench.waitUntilIdle());
        QCOMPARE(bench.results.size(), qsizetype(tasks));
        for (const DownloadResult &result : std::as_const(bench.results)) {
            QVERIFY(numbers.contains(result.key));
            const unsigned number = numbers.take(result.key);
            if (number % 5 == 0) {
                QCOMPARE(result.outcome, DownloadOutcome::Failed);
                QVERIFY(result.failure.cause.contains(u"404 Not Found"_s));
            } else {
                QCOMPARE(contents(result.path),
                         QByteArray::fromStdString(smallVideoBytes(number, 34, videoSize)));
            }
        }
        const ControllerLock lock;
        const CDown &down = bench.driver->controller();
        QCOMPARE(down.m_nParseFree, 3);
        QCOMPARE(down.m_nDownFree, jobs);
        QVERIFY(m_DownloadAllTask.isEmpty() && m_DownLoadingList.isEmpty());
        QVERIFY(down.m_ParseWaitList.isEmpty() && down.m_DownloadWaitList.isEmpty() &&
                down.m_ImageWaitList.isEmpty());
    }

    // Stopped in the middle, then continued by another driver where it was.
    void stoppedVideosGoOn()
    {
        Bench bench(2);
        Misbehaviour halt;
        halt.prefix = "/stream/small-1/";
        halt.holdAfter = videoSize / 2;
        halt.firstRequests = 1;
        bench.site.addMisbehaviour(halt);
        connect(bench.driver.get(), &DownloadDriver::progressed,
                [&bench](const DownloadProgress &progress) {
                    if (progress.received >= qint64(videoSize / 2))
                        bench.driver->stopAll();
                });
        bench.add("small-1");
        QVERIFY(bench.waitUntilIdle());
        QCOMPARE(bench.results.takeFirst().outcome, DownloadOutcome::Stopped);
        QVERIFY(QDir(bench.root.filePath(u"out"_s)).isEmpty());
        disconnect(bench.driver.get(), &DownloadDriver::progressed, nullptr, nullptr);
        bench.add("small-1");
        QVERIFY(bench.waitUntilIdle());
        QCOMPARE(contents(bench.results.first().path),
                 QByteArray::fromStdString(smallVideoBytes(1, 34, videoSize)));
        const std::vector<SiteRequest> requests = bench.site.requests();
        QVERIFY(std::any_of(requests.cbegin(), requests.cend(), [](const SiteRequest &request) {
            return request.range == "bytes=" + std::to_string(videoSize / 2) + '-';
        }));
    }

    // The engine's threads may be in the middle of anything when the application has enough.
    void leavingInTheMiddle()
    {
        for (int round = 0; round < 10; ++round) {
            Bench bench(3);
            for (int number = 0; number < 20; ++number)
                bench.add("small-" + std::to_string(number));
            QTRY_VERIFY_WITH_TIMEOUT(bench.results.size() >= round, patience);
            bench.driver.reset();
            const ControllerLock lock;
            QVERIFY(m_DownLoadingList.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(EndToEndTest)
#include "tst_endtoend.moc"
