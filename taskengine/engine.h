/** The engine behind the nine functions. */
#ifndef VIDEODOWN_TASKENGINE_ENGINE_H
#define VIDEODOWN_TASKENGINE_ENGINE_H

#include "taskengine/transferloop.h"

namespace taskengine {

/** Runs from its construction until `stop`. Every member may be called from any thread. */
class Engine
{
public:
    /** @throws std::exception when there are no threads or no memory to be had */
    Engine();
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;
    ~Engine();

    /** @return whether the request was accepted */
    bool submit(RequestKind kind, const tagTaskInfo &record);

    /** @return whether there is a request with this key */
    bool command(const char *key, Command::Verb verb);

    /** Ends what runs; see `EventDispatcher::stop`. @return whether no callback is in flight */
    bool stop();

private:
    /** Holds libcurl's global state; first to come and last to go. */
    struct CurlUse
    {
        CurlUse();
        CurlUse(const CurlUse &) = delete;
        CurlUse &operator=(const CurlUse &) = delete;
        ~CurlUse();
    };

    const CurlUse m_curl;
    const std::shared_ptr<RequestTable> m_table;
    EventDispatcher m_events;
    TransferLoop m_loop;
};

} // namespace taskengine

#endif
