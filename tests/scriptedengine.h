/** A task engine that transfers nothing: it records what it is asked and answers as told. */
#ifndef VIDEODOWN_TESTS_SCRIPTEDENGINE_H
#define VIDEODOWN_TESTS_SCRIPTEDENGINE_H

#include "engine/taskengine.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <mutex>

/**
 * Defines the nine engine functions. There is one per process, as of any engine; `reset` makes it
 * new. All functions may be called from any thread; the hook and the callbacks run without its
 * lock, so they may call the controller, and through it the engine, again.
 */
class ScriptedEngine
{
public:
    enum class Kind { Parse, Video, Image };
    using Hook = std::function<int(Kind, const tagTaskInfo &)>;

    static ScriptedEngine &instance();

    /** Forgets requests, calls, result and hook. */
    void reset();
    /** What every function answers from now on while no hook is set; 0 at first. */
    void setResult(int result);
    /** Decides each request's answer; may answer it at once by calling its callbacks. */
    void setHook(const Hook &hook);

    /** The calls in order: "parse KEY", "video KEY", "image KEY", "stop KEY", "init", ... */
    QStringList calls() const;
    /** The calls whose name is `name`, without the name. */
    QStringList calls(const char *name) const;
    void clearCalls();
    /** The latest request under this key; ends the program when there is none. */
    tagTaskInfo request(const QString &key) const;

    /** Reports an event of the latest request under `key`. @return the state callback's result */
    int sendState(const QString &key, tagDownloadStateCode code, double value = 0) const;
    /** Delivers a response to the latest request under `key`. @return the callback's result */
    int sendResponse(const QString &key, const QByteArray &text) const;

    // What the engine functions call.
    int answer(Kind kind, const tagTaskInfo &request);
    int note(const char *name, const char *argument = nullptr);

private:
    using Guard = std::lock_guard<std::mutex>;
    mutable std::mutex m_mutex;
    std::deque<tagTaskInfo> m_requests;
    QStringList m_calls;
    Hook m_hook;
    int m_result = 0;
};

#endif
