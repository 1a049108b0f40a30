/** The rate that transfers share, with transfers that only count, at times that the test says. */
#define VIDEODOWN_TASKENGINE_TRANSFER_H // instead of the engine's transfers

#include "taskengine/ratelimit.h"
#include "taskengine/settings.h"

#include <QTest>

#include <functional>
#include <memory>
#include <vector>

namespace taskengine {

class Transfer
{
public:
    void letGo() { onLetGo(); }
    std::function<void()> onLetGo;
};

} // namespace taskengine

#include "taskengine/ratelimit.cpp" // NOLINT(bugprone-suspicious-include)

namespace {

std::size_t limit = 0;

} // namespace

std::shared_ptr<const taskengine::Options> taskengine::currentOptions()
{
    Options options;
    options.rateLimit = limit;
    return std::make_shared<const Options>(options);
}

namespace {

using taskengine::RateLimit;
using namespace std::chrono_literals;

// A transfer whose site has this many bytes for it at a time, now and then.
struct Download
{
    explicit Download(RateLimit &all, std::size_t size) : rate(all), piece(size)
    {
        transfer.onLetGo = [this] {
            isHeld = false;
            take();
        };
    }
    Download(const Download &) = delete;
    Download &operator=(const Download &) = delete;
    ~Download() { rate.forget(transfer); }

    void take()
    {
        isHeld = isHeld || !rate.take(transfer, piece);
        received += isHeld ? 0 : piece;
    }

    RateLimit &rate;
    const std::size_t piece;
    taskengine::Transfer transfer;
    bool isHeld = false;
    std::size_t received = 0;
};

} // namespace

class RateLimitTest : public QObject
{
    Q_OBJECT

    using Downloads = std::vector<std::unique_ptr<Download>>;

    // Everybody takes what it can, for so many seconds of the test's own time; the last one has
    // something only at every tenth turn if it is slow.
    void run(Downloads &downloads, int seconds, bool lastIsSlow = false)
    {
        const RateLimit::Clock::time_point end = m_now + std::chrono::seconds(seconds);
        for (int turn = 0; m_now < end; ++turn) {
            for (const auto &each : downloads) {
                const bool isSlow = lastIsSlow && each == downloads.back();
                while (!isSlow && !each->isHeld)
                    each->take();
                if (isSlow && turn % 10 == 0)
                    each->take();
            }
            const auto wake = m_rate.wakeTime();
            m_now = wake == RateLimit::Clock::time_point::max() ? m_now + 100ms : wake;
            m_rate.tick(m_now);
        }
    }

    Downloads make(const std::vector<std::size_t> &pieces)
    {
        Downloads downloads;
        for (const std::size_t piece : pieces)
            downloads.push_back(std::make_unique<Download>(m_rate, piece));
        return downloads;
    }

    static std::size_t sum(const Downloads &downloads)
    {
        std::size_t all = 0;
        for (const auto &each : downloads)
            all += each->received;
        return all;
    }

    RateLimit m_rate;
    RateLimit::Clock::time_point m_now{1h};

private slots:
    void init()
    {
        limit = 1000;
        m_now += 1h;
        m_rate.tick(m_now);
    }

    void shares_data()
    {
        QTest::addColumn<std::vector<std::size_t>>("pieces");
        QTest::newRow("one") << std::vector<std::size_t>{50};
        QTest::newRow("two") << std::vector<std::size_t>{125, 125};
        QTest::newRow("many") << std::vector<std::size_t>(20, 100);
        QTest::newRow("larger than a second's") << std::vector<std::size_t>{3000, 3000, 3000};
    }

    /** All get the same, and together what the limit says: at most a burst and a piece beyond it.
     */
    void shares()
    {
        QFETCH(const std::vector<std::size_t>, pieces);
        Downloads downloads = make(pieces);
        run(downloads, 100);
        const std::size_t all = sum(downloads);
        QVERIFY2(all >= 100 * limit - pieces[0] && all <= 100 * limit + 100 + pieces[0],
                 qPrintable(QString::number(all)));
        for (const auto &each : downloads)
            QVERIFY2(each->received + each->piece >= all / pieces.size() &&
                         each->received <= all / pieces.size() + each->piece,
                     qPrintable(QString::number(each->received)));
    }

    /** What a slow one leaves is the others', and it is not made to wait for more than a round. */
    void slowOnesCostNobody()
    {
        Downloads downloads = make({100, 100, 10});
        run(downloads, 100, true);
        QVERIFY(sum(downloads) >= 100 * limit - 100);
        QVERIFY(downloads[0]->received + 100 >= downloads[1]->received);
        QVERIFY(downloads[1]->received + 100 >= downloads[0]->received);
        QVERIFY2(downloads[2]->received >= std::size_t{40} * 10,
                 qPrintable(QString::number(downloads[2]->received)));
    }

    /** An idle time is made up for by a tenth of a second's bytes only. */
    void idleTimesAreLost()
    {
        Downloads downloads = make({10, 10});
        m_now += 50s;
        m_rate.tick(m_now);
        run(downloads, 10);
        QVERIFY(sum(downloads) <= 10 * limit + 100 + 10);
    }

    /** Whoever is gone keeps nobody waiting; without a limit, nobody waits. */
    void heldOnesAreLetGo()
    {
        Downloads downloads = make({5000, 10, 10});
        for (const auto &each : downloads)
            each->take();
        QVERIFY(!downloads[0]->isHeld && downloads[1]->isHeld && downloads[2]->isHeld);
        downloads.erase(downloads.begin() + 1);
        m_rate.tick(m_now + 4s);
        QVERIFY(downloads[1]->isHeld);
        limit = 0;
        m_rate.tick(m_now + 4s);
        QVERIFY(!downloads[1]->isHeld);
        QCOMPARE(m_rate.wakeTime(), RateLimit::Clock::time_point::max());
    }
};

QTEST_GUILESS_MAIN(RateLimitTest)
#include "tst_ratelimit.moc"
