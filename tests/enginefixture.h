/** What the tests of the task engine share: a site, a folder, a log, and tables of rows. */
#ifndef VIDEODOWN_TESTS_ENGINEFIXTURE_H
#define VIDEODOWN_TESTS_ENGINEFIXTURE_H

#include "eventlog.h"
#include "faultserver.h"
#include "site/videosite.h"
#include "taskengine/options.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using taskengine::Failure;

using Change = std::function<void(Misbehaviour &)>;

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(Failure)
Q_DECLARE_METATYPE(Change)

using namespace Qt::StringLiterals;

constexpr std::size_t videoSize = 600000;

/** Stands in tables for a request that does not fail. */
constexpr Failure none{};

template <typename>
using ColumnName = const char *;

/** Adds the columns of a data table. @return what adds a row to it */
template <typename... Types>
auto table(ColumnName<Types>... names)
{
    (QTest::addColumn<Types>(names), ...);
    return [](const char *name, const Types &...cells) { (QTest::newRow(name) << ... << cells); };
}

inline std::string answer(const std::string &status, const std::string &headers,
                          const std::string &body)
{
    return "HTTP/1.1 " + status + "\r\n" + headers +
           "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}

inline QString native(const std::string &path)
{
    return QFile::decodeName(path.c_str());
}

inline std::string contentsOf(const std::string &path)
{
    QFile file(native(path));
    return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string("(no file)");
}

inline void write(const std::string &path, const std::string &contents)
{
    QFile file(native(path));
    QVERIFY(file.open(QFile::WriteOnly) && file.write(contents.c_str()) >= 0);
}

/** The engine, initialised, and a site for it, both for one test. */
class EngineFixture : public QObject
{
protected:
    void begin()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_log = std::make_unique<EventLog>();
        m_site = std::make_unique<VideoSite>();
        m_site->setSmallVideoSize(videoSize);
        QVERIFY(m_folder->isValid() && m_site->start());
        m_options = {};
        taskengine::setOptions(m_options);
        QCOMPARE(DownloadInit(), 0);
    }

    /** No request that was accepted may have ended more than once. */
    void finish()
    {
        QCOMPARE(DownloadCleanup(), 0);
        QCOMPARE(DownloadCleanup(), -1);
        m_site->stop();
        QMap<std::string, int> open;
        for (const LoggedEvent &event : m_log->events()) {
            open[event.key] +=
                event.code == DOWN_STATE_START_DOWNLOAD || event.code == DOWN_STATE_START_PARSE;
            open[event.key] -= isTerminal(event.code) ? 1 : 0;
            QVERIFY2(open[event.key] >= 0, event.key.c_str());
        }
    }

    std::string path(const std::string &name) const
    {
        return m_folder->path().toStdString() + name;
    }
    std::string stream(int format = 34) const
    {
        return m_site->baseAddress() + "/stream/small-1/" + std::to_string(format);
    }
    std::string thumbnail() const { return m_site->baseAddress() + "/thumbnail/small-1.jpg"; }
    static std::string bytes() { return smallVideoBytes(1, 34, videoSize); }
    tagTaskInfo video(const std::string &key = "video", std::int32_t tries = 1) const
    {
        tagTaskInfo record = m_log->video(key, stream(), path("/video.flv"));
        record.nEngineParam2 = tries;
        return record;
    }

    static int send(const tagTaskInfo &record)
    {
        if (record.nTaskType == 0)
            return ParseVideoInfo(record);
        return record.nFileType == FILE_TYPE_IMAGE ? DownloadImage(record) : DownloadVideo(record);
    }

    void misbehave(const Change &change, unsigned firstRequests = 0) const
    {
        Misbehaviour misbehaviour;
        misbehaviour.firstRequests = firstRequests;
        change(misbehaviour);
        m_site->addMisbehaviour(misbehaviour);
    }

    void answerWith(int status, const char *type, unsigned firstRequests = 0) const
    {
        misbehave(
            [=](Misbehaviour &fault) {
                fault.answer = SiteAnswer{status, type, {}, "x"};
            },
            firstRequests);
    }

    void compareEnd(const std::string &key, tagDownloadStateCode code, double value = -1) const
    {
        const LoggedEvent event = m_log->end(key);
        QVERIFY2(event.code == code,
                 qPrintable(u"code %1, value %2"_s.arg(event.code).arg(event.value)));
        if (value >= 0)
            QCOMPARE(event.value, value);
    }

    void compareFailure(const std::string &key, Failure failure) const
    {
        const bool isParse = m_log->count(key, DOWN_STATE_START_PARSE) > 0 ||
                             m_log->end(key).code == DOWN_STATE_PARSE_FAIL;
        compareEnd(key, isParse ? DOWN_STATE_PARSE_FAIL : DOWN_STATE_DOWNLOAD_FAIL,
                   static_cast<double>(failure));
    }

    /** The whole video, if it does not fail. */
    void compareOutcome(const std::string &key, Failure failure) const
    {
        if (failure == none)
            compareEnd(key, DOWN_STATE_DOWNLOAD_FINISH, videoSize);
        else
            compareFailure(key, failure);
    }

    double lastValue(const std::string &key, tagDownloadStateCode code) const
    {
        double value = -1;
        for (const LoggedEvent &event : m_log->events(key))
            value = event.code == code ? event.value : value;
        return value;
    }

    void compareFiles(const QStringList &names) const
    {
        QCOMPARE(
            QDir(m_folder->path())
                .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                           QDir::Name),
            names);
    }

    std::unique_ptr<EventLog> m_log;
    std::unique_ptr<VideoSite> m_site;
    std::unique_ptr<QTemporaryDir> m_folder;
    taskengine::Options m_options;
};

#endif
