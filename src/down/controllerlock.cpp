#include "down/controllerlock.h"

#include <mutex>

namespace {

// Engine threads may still call back while the process's static objects are being destroyed.
std::recursive_mutex &mutex()
{
    static auto *const lock = new std::recursive_mutex;
    return *lock;
}

thread_local int heldDepth = 0;

} // namespace

ControllerMutex controllerMutex;

void ControllerMutex::lock() VIDEODOWN_THREAD_ANNOTATION(no_thread_safety_analysis)
{
    mutex().lock();
    ++heldDepth;
}

void ControllerMutex::unlock() VIDEODOWN_THREAD_ANNOTATION(no_thread_safety_analysis)
{
    --heldDepth;
    mutex().unlock();
}

ControllerUnlock::ControllerUnlock() : m_depth(heldDepth)
{
    for (int i = 0; i < m_depth; ++i)
        mutex().unlock();
    heldDepth = 0;
}

ControllerUnlock::~ControllerUnlock()
{
    for (int i = 0; i < m_depth; ++i)
        mutex().lock();
    heldDepth = m_depth;
}
