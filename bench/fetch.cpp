// Fetches addresses with the default task engine alone:
//   bench_fetch FOLDER PARALLEL [CONNECTIONS] < ADDRESSES
// A file gets at most so many connections (1). Files are named by the number of their line, from 0.
#include "engine/taskengine.h"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>
#include <vector>

namespace {

class Batch
{
public:
    Batch(std::string folder, int parallel, int connections)
        : m_folder(std::move(folder)), m_parallel(parallel), m_connections(connections)
    {
        for (std::string line; std::getline(std::cin, line);)
            m_addresses.push_back(line);
    }

    // Returns whether every address was fetched.
    bool run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (m_running < m_parallel && m_next < m_addresses.size())
            startNext();
        m_change.wait(lock, [this] { return m_running == 0; });
        return m_failures == 0;
    }

private:
    // An engine only queues, so requests may be sent under the lock and from inside callbacks.
    void startNext()
    {
        const std::size_t number = m_next++;
        tagTaskInfo request(std::to_string(number).c_str());
        const std::string path = m_folder + '/' + std::to_string(number);
        m_addresses[number].copy(request.szDownloadURL, sizeof request.szDownloadURL - 1);
        path.copy(request.szSavePath, sizeof request.szSavePath - 1);
        request.nTaskType = 1;
        request.nFileType = FILE_TYPE_VIDEO;
        request.nEngineParam1 = m_connections;
        request.pUserData = this;
        request.pfnStateCallback = onState;
        if (DownloadVideo(request) == 0)
            ++m_running;
        else
            ++m_failures;
    }

    static int onState(void *user, const char *, tagDownloadStateCode code, double value, FILE_TYPE)
    {
        if (code == DOWN_STATE_DOWNLOAD_FINISH || code == DOWN_STATE_DOWNLOAD_FAIL)
            static_cast<Batch *>(user)->ended(code, value);
        return 0;
    }

    void ended(tagDownloadStateCode code, double value)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (code == DOWN_STATE_DOWNLOAD_FAIL) {
            std::fprintf(stderr, "bench_fetch: a download failed with %g\n", value);
            ++m_failures;
        }
        --m_running;
        if (m_next < m_addresses.size())
            startNext();
        if (m_running == 0)
            m_change.notify_one();
    }

    std::mutex m_mutex;
    std::condition_variable m_change;
    std::string m_folder;
    std::vector<std::string> m_addresses;
    std::size_t m_next = 0;
    int m_parallel;
    int m_connections;
    int m_running = 0;
    int m_failures = 0;
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3 && argc != 4) {
        std::fputs("usage: bench_fetch FOLDER PARALLEL [CONNECTIONS] < ADDRESSES\n", stderr);
        return 2;
    }
    Batch batch(argv[1], std::atoi(argv[2]), argc > 3 ? std::atoi(argv[3]) : 1);
    if (DownloadInit() != 0)
        return 1;
    const bool complete = batch.run();
    Quit();
    DownloadCleanup();
    return complete ? 0 : 1;
}
