#include "engine/taskengine.h"

#include "engine/annotatedmutex.h"
#include "taskengine/engine.h"

#include <exception>
#include <memory>
#include <utility>

namespace {

using taskengine::Command;
using taskengine::Engine;
using taskengine::RequestKind;

/** Never destroyed: callbacks may still be in flight while the process ends. */
struct Boundary
{
    AnnotatedMutex mutex; ///< never held while the engine works, waits or calls back
    /** Null: requests are refused. */
    std::shared_ptr<Engine> engine VIDEODOWN_GUARDED_BY(mutex);
    /** Stopping, or stopped with callbacks in flight. */
    std::shared_ptr<Engine> former VIDEODOWN_GUARDED_BY(mutex);
    bool initialised VIDEODOWN_GUARDED_BY(mutex) = false;
};

Boundary &boundary()
{
    static auto *instance = new Boundary;
    return *instance;
}

std::shared_ptr<Engine> currentEngine()
{
    const MutexLock lock(boundary().mutex);
    return boundary().engine;
}

/** @return the engine to be stopped; also when somebody else is stopping it already */
std::shared_ptr<Engine> takeEngine()
{
    std::shared_ptr<Engine> oldest; // ended outside the lock, because that waits for callbacks
    const MutexLock lock(boundary().mutex);
    if (boundary().engine) {
        oldest = std::exchange(boundary().former, std::move(boundary().engine));
        boundary().engine = nullptr;
    }
    return boundary().former;
}

int submit(RequestKind kind, const tagTaskInfo &request)
{
    const std::shared_ptr<Engine> engine = currentEngine();
    return engine && engine->submit(kind, request) ? 0 : -1;
}

int command(const char *key, Command::Verb verb)
{
    const std::shared_ptr<Engine> engine = currentEngine();
    return engine && key != nullptr && engine->command(key, verb) ? 0 : -1;
}

} // namespace

int DownloadInit()
{
    const MutexLock lock(boundary().mutex);
    try {
        if (!boundary().engine)
            boundary().engine = std::make_shared<Engine>();
    } catch (const std::exception &) {
        return -1;
    }
    boundary().initialised = true;
    return 0;
}

int Quit()
{
    const std::shared_ptr<Engine> engine = takeEngine();
    if (!engine || !engine->stop())
        return 0;
    const MutexLock lock(boundary().mutex);
    if (boundary().former == engine) // nothing is left to wait for
        boundary().former = nullptr;
    return 0;
}

int DownloadCleanup()
{
    Quit();
    const MutexLock lock(boundary().mutex);
    return std::exchange(boundary().initialised, false) ? 0 : -1;
}

int SetProductAppDataPath(const char *path)
{
    return path == nullptr ? -1 : 0;
}

// NOLINTBEGIN(performance-unnecessary-value-param): the boundary passes records by value

int ParseVideoInfo(tagTaskInfo request)
{
    return submit(RequestKind::Parse, request);
}

int DownloadVideo(tagTaskInfo request)
{
    return submit(RequestKind::Video, request);
}

int DownloadImage(tagTaskInfo request)
{
    return submit(RequestKind::Image, request);
}

// NOLINTEND(performance-unnecessary-value-param)

int StopDownload(const char *key)
{
    return command(key, Command::Verb::Stop);
}

int SuspendedDownload(const char *key)
{
    return command(key, Command::Verb::TogglePause);
}
