/**
 * Every order: what can happen to three tasks, in every order in which it can happen.
 *
 * A run plays some tasks through driver and library; whenever more than one thing can happen next,
 * it asks for a choice: whether the engine takes a request, which request has its end, whether that
 * is success or failure. Depth-first search takes every choice wherever the run is in a situation
 * (who is at which stage, and who waits in which order) that was not met before; so every situation
 * that can be reached is left in every possible way, though not along every road that leads to it.
 * Roads are sampled at random, with four tasks and with the user stopping some.
 */
#include "driverfixture.h"

#include <QRandomGenerator>
#include <QTest>

#include <map>
#include <set>

namespace {

using Kind = ScriptedEngine::Kind;

/** Decides what happens next. */
class Choices
{
public:
    Choices() = default;
    Choices(const Choices &) = delete;
    Choices &operator=(const Choices &) = delete;
    virtual ~Choices() = default;
    virtual int choose(int count) = 0;
    virtual void meet(const QString & /*situation*/) {}
};

/** Depth-first, through all that has not been met. */
class Search : public Choices
{
public:
    int choose(int count) override
    {
        if (m_at == m_road.size())
            m_road.push_back({0, m_known ? 1 : count});
        return m_road[m_at++].taken;
    }

    void meet(const QString &situation) override
    {
        if (m_at == m_road.size() && !m_met.insert(situation).second)
            m_known = true;
    }

    /** @return whether there is another road to take, from the beginning */
    bool turnBack()
    {
        while (!m_road.empty() && m_road.back().taken + 1 == m_road.back().count)
            m_road.pop_back();
        if (!m_road.empty())
            ++m_road.back().taken;
        m_at = 0;
        m_known = false;
        return !m_road.empty();
    }

    std::size_t situations() const { return m_met.size(); }

private:
    struct Fork
    {
        int taken;
        int count;
    };
    std::vector<Fork> m_road;
    std::size_t m_at = 0;
    bool m_known = false;
    std::set<QString> m_met;
};

class Dice : public Choices
{
public:
    explicit Dice(quint32 seed) : m_random(seed) {}
    int choose(int count) override { return int(m_random.bounded(count)); }

private:
    QRandomGenerator m_random;
};

/** Plays runs on one driver, which must be at rest after each. */
class Player
{
public:
    Player(int limit, int tasks, bool stops) : m_fixture(limit), m_limit(limit), m_stops(stops)
    {
        for (int number = 1; number <= tasks; ++number)
            m_keys.append(TaskFixture::keyOf(number));
    }

    /** @return what went wrong, or "" */
    QString play(Choices &choices)
    {
        begin(choices);
        while (!m_atWork.empty()) {
            choices.meet(situation());
            happen(choices);
            m_fixture.turn();
            if (const QString fault = overrun(); !fault.isEmpty())
                return fault;
        }
        return verdict();
    }

private:
    void begin(Choices &choices)
    {
        m_fixture.driver->controller().m_pHistory->removeAll();
        for (const QString &path : std::as_const(m_files))
            QFile::remove(path);
        m_files.clear();
        m_fixture.results.clear();
        m_fixture.idleCount = 0;
        m_fixture.engine.reset();
        m_fixture.engine.setHook([this, &choices](Kind kind, const tagTaskInfo &request) {
            return take(choices, kind, request);
        });
        m_parsed.clear();
        for (int number = 1; number <= m_keys.size(); ++number)
            m_fixture.add(m_fixture.url(number));
        m_fixture.turn();
    }

    int take(Choices &choices, Kind kind, const tagTaskInfo &request)
    {
        if (choices.choose(2) == 1)
            return -1;
        m_atWork[QString::fromLatin1(request.szTaskKey)] = kind;
        if (kind == Kind::Video) {
            m_files.append(QString::fromLocal8Bit(request.szSavePath));
            QFile(m_files.last()).open(QIODevice::Append);
        }
        return 0;
    }

    void happen(Choices &choices)
    {
        const int count = int(m_atWork.size());
        const int which = choices.choose(m_stops ? count + int(m_keys.size()) : count);
        if (which >= count) { // what is stopped must still have its end
            m_fixture.driver->stop(m_keys[which - count]);
            return;
        }
        const auto [key, kind] = *std::next(m_atWork.begin(), which);
        m_atWork.erase(key);
        const bool succeeds = choices.choose(2) == 0;
        if (kind == Kind::Parse && succeeds) {
            m_parsed.append(key.left(4));
            m_fixture.engine.sendResponse(key, TaskFixture::response(int(m_keys.indexOf(key))));
        } else {
            const auto failure =
                kind == Kind::Parse ? DOWN_STATE_PARSE_FAIL : DOWN_STATE_DOWNLOAD_FAIL;
            m_fixture.engine.sendState(key, succeeds ? DOWN_STATE_DOWNLOAD_FINISH : failure);
        }
    }

    QString situation() const
    {
        QString text;
        for (const auto &[key, kind] : m_atWork)
            text += key.left(4) + QString::number(int(kind)) + (key.size() > 32 ? u"i "_s : u" "_s);
        text += m_parsed.join(u'>') + u'/' + m_fixture.controllerState();
        for (const CXMLInfo *record : m_fixture.driver->controller().m_pHistory->m_InfoList)
            text += u" %1%2%3"_s.arg(record->State).arg(record->ParseState).arg(record->DownState);
        return text;
    }

    QString overrun() const
    {
        const auto videos = std::count_if(m_atWork.cbegin(), m_atWork.cend(), [](const auto &one) {
            return one.second == Kind::Video;
        });
        const bool fits = videos <= m_limit && qsizetype(m_atWork.size()) - videos <= 3 &&
                          m_fixture.controllerState().section(u' ', 2, 2) == u"0"_s;
        return fits ? QString() : u"slots: "_s + m_fixture.controllerState();
    }

    QString verdict() const
    {
        QSet<QString> ended;
        for (const DownloadResult &result : std::as_const(m_fixture.results))
            ended.insert(result.key);
        const QString rest = u"3 %1 0 0"_s.arg(m_limit);
        if (ended.size() == m_keys.size() && m_fixture.results.size() == m_keys.size() &&
            m_fixture.idleCount == 1 && m_fixture.controllerState() == rest &&
            m_DownLoadingList.isEmpty() && m_ReDownLoadList.isEmpty() && m_ConverterList.isEmpty())
            return {};
        return u"%1 ends of %2 tasks, idle %3 times, at rest with %4"_s
            .arg(m_fixture.results.size())
            .arg(ended.size())
            .arg(m_fixture.idleCount)
            .arg(m_fixture.controllerState());
    }

    DriverFixture m_fixture;
    const int m_limit;
    const bool m_stops;
    QStringList m_keys;
    QStringList m_files;
    QStringList m_parsed;             // in the order in which it came about
    std::map<QString, Kind> m_atWork; // at the engine
};

} // namespace

class OrdersTest : public QObject
{
    Q_OBJECT

private slots:
    void threeTasks_data()
    {
        QTest::addColumn<int>("limit");
        QTest::newRow("one video at once") << 1;
        QTest::newRow("two videos at once") << 2;
    }

    void threeTasks()
    {
        QFETCH(int, limit);
        Player player(limit, 3, false);
        Search search;
        int runs = 0;
        do {
            const QString fault = player.play(search);
            QVERIFY2(fault.isEmpty(), qPrintable(u"run %1: %2"_s.arg(runs).arg(fault)));
            ++runs;
        } while (search.turnBack());
        qInfo("%d runs through %zu situations", runs, search.situations());
    }

    void fourTasks()
    {
        const int runs = qEnvironmentVariableIntValue("VIDEODOWN_ORDERS");
        Player player(2, 4, true);
        for (quint32 seed = 1; seed <= quint32(runs > 0 ? runs : 5000); ++seed) {
            Dice dice(seed);
            const QString fault = player.play(dice);
            QVERIFY2(fault.isEmpty(), qPrintable(u"seed %1: %2"_s.arg(seed).arg(fault)));
        }
    }
};

QTEST_GUILESS_MAIN(OrdersTest)
#include "tst_orders.moc"
