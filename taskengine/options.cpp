#include "taskengine/options.h"

#include "engine/annotatedmutex.h"
#include "taskengine/settings.h"

#include <curl/curl.h>
#include <utility>

namespace taskengine {

namespace {

/** Never destroyed: threads of the application may still read it while the process ends. */
struct Settings
{
    AnnotatedMutex mutex;
    std::shared_ptr<const Options>
        options VIDEODOWN_GUARDED_BY(mutex) = std::make_shared<Options>();
};

Settings &settings()
{
    static auto *instance = new Settings;
    return *instance;
}

} // namespace

void setOptions(const Options &options)
{
    auto copy = std::make_shared<const Options>(options);
    const MutexLock lock(settings().mutex);
    settings().options = std::move(copy);
}

Options options()
{
    return *currentOptions();
}

std::string transferLibrary()
{
    return std::string("libcurl ") + curl_version_info(CURLVERSION_NOW)->version;
}

std::shared_ptr<const Options> currentOptions()
{
    const MutexLock lock(settings().mutex);
    return settings().options;
}

} // namespace taskengine
