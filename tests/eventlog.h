/** Engine requests for tests, and a log of the events that answer them. */
#ifndef VIDEODOWN_TESTS_EVENTLOG_H
#define VIDEODOWN_TESTS_EVENTLOG_H

#include "engine/taskengine.h"

#include <QList>

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

struct LoggedEvent
{
    std::string key;
    tagDownloadStateCode code = DOWN_STATE_NONE;
    double value = 0;
    std::string text;
    FILE_TYPE type = FILE_TYPE_VIDEO;
};

/** Receives the callbacks of every request that it makes. */
class EventLog
{
public:
    /** Called inside each callback, after the event was noted. Set before the first request. */
    std::function<void(const LoggedEvent &)> hook;

    tagTaskInfo parse(const std::string &key, const std::string &page)
    {
        tagTaskInfo record = request(key);
        copy(record.szPageURL, page);
        record.nTaskType = 0;
        record.pfnVideoInfoCallback = onResponse;
        return record;
    }

    tagTaskInfo video(const std::string &key, const std::string &address, const std::string &path)
    {
        tagTaskInfo record = request(key);
        copy(record.szDownloadURL, address);
        copy(record.szSavePath, path);
        record.nTaskType = 1;
        record.nFileType = FILE_TYPE_VIDEO;
        return record;
    }

    tagTaskInfo image(const std::string &key, const std::string &address, const std::string &path)
    {
        tagTaskInfo record = video(key, address, path);
        record.nFileType = FILE_TYPE_IMAGE;
        return record;
    }

    QList<LoggedEvent> events(const std::string &key = {})
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        QList<LoggedEvent> found;
        std::copy_if(m_events.begin(), m_events.end(), std::back_inserter(found),
                     [&key](const LoggedEvent &event) { return key.empty() || event.key == key; });
        return found;
    }

    qsizetype count(const std::string &key, tagDownloadStateCode code)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::count_if(m_events.begin(), m_events.end(), [&](const LoggedEvent &event) {
            return event.key == key && event.code == code;
        });
    }

    /** Waits for the key's event with this code. @return whether it came */
    bool waitFor(const std::string &key, tagDownloadStateCode code)
    {
        return await(key, [code](tagDownloadStateCode one) { return one == code; }).code == code;
    }

    /** Waits for the key's terminal event. @return it, or DOWN_STATE_NONE when none came */
    LoggedEvent end(const std::string &key) { return await(key, isTerminal); }

    template <std::size_t Size>
    static void copy(char (&field)[Size], const std::string &text)
    {
        field[text.copy(field, Size - 1)] = '\0';
    }

private:
    /** Generous: it only ends a test that has failed. */
    static constexpr std::chrono::seconds deadline{60};

    template <typename Predicate>
    LoggedEvent await(const std::string &key, const Predicate &isWanted)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        auto event = m_events.cend();
        m_news.wait_for(lock, deadline, [&] {
            event = std::find_if(m_events.cbegin(), m_events.cend(), [&](const auto &one) {
                return one.key == key && isWanted(one.code);
            });
            return event != m_events.cend();
        });
        return event != m_events.cend() ? *event : LoggedEvent();
    }

    tagTaskInfo request(const std::string &key)
    {
        tagTaskInfo record(key.c_str());
        record.nEngineParam1 = 3;
        record.nEngineParam2 = 1;
        record.nEngineParam3 = 1;
        record.pUserData = this;
        record.pfnStateCallback = onState;
        return record;
    }

    int note(const LoggedEvent &event)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_events.append(event);
        }
        m_news.notify_all();
        if (hook)
            hook(event);
        return 0;
    }

    static int onState(void *self, const char *key, tagDownloadStateCode code, double value,
                       FILE_TYPE type)
    {
        return static_cast<EventLog *>(self)->note({key, code, value, {}, type});
    }

    static int onResponse(void *self, const char *key, tagDownloadStateCode code, char *data,
                          unsigned long length)
    {
        const std::string text(data); // up to the NUL that must be there
        const auto value = static_cast<double>(length);
        return static_cast<EventLog *>(self)->note({key, code, value, text, FILE_TYPE_VIDEO});
    }

    std::mutex m_mutex;
    std::condition_variable m_news;
    QList<LoggedEvent> m_events; // guarded by m_mutex
};

#endif
