#include "site/options.h"
#include "site/videosite.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <iostream>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

// Blocks the signals that end the program in every thread, so that they arrive here as data.
int openStopSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

bool inputHasEnded()
{
    std::array<char, 512> bytes{};
    return ::read(STDIN_FILENO, bytes.data(), bytes.size()) == 0;
}

void waitForEnd(int stopSignals, const Options &options)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + options.lifetime;
    // A negative descriptor is skipped.
    std::array<pollfd, 2> sources = {{
        {stopSignals, POLLIN, 0},
        {options.untilEndOfInput ? STDIN_FILENO : -1, POLLIN, 0},
    }};
    for (auto now = Clock::now(); now < end; now = Clock::now()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - now);
        const int ready = ::poll(sources.data(), sources.size(), static_cast<int>(left.count()));
        if (ready < 0 && errno != EINTR)
            return;
        if (ready > 0 && (sources[0].revents != 0 || inputHasEnded()))
            return;
    }
}

void configure(VideoSite &site, const Options &options)
{
    site.setSmallVideoSize(options.smallVideoSize);
    for (const Misbehaviour &fault : options.misbehaviours)
        site.addMisbehaviour(fault);
}

void announce(const VideoSite &site, const Options &options)
{
    std::cout << site.baseAddress() << '\n';
    if (!options.certificateFile.empty())
        std::cout << site.secureAddress() << '\n';
    if (options.proxyUser)
        std::cout << "127.0.0.1:" << site.proxyPort() << '\n';
    if (options.listPages) {
        for (const SiteVideo &video : siteCatalogue())
            std::cout << site.pageAddress(video.id) << '\n';
    }
    std::cout.flush();
}

bool writeCertificate(const VideoSite &site, const std::string &path)
{
    std::ofstream file(path);
    file << site.certificate() << std::flush;
    return bool(file);
}

bool start(VideoSite &site, const Options &options)
{
    const std::string &path = options.certificateFile;
    if (!site.start(options.port) || (!path.empty() && !site.startTls()) ||
        (options.proxyUser &&
         !site.startProxy(options.proxyUser->first, options.proxyUser->second))) {
        std::cerr << "videosite: cannot listen on 127.0.0.1\n";
        return false;
    }
    if (path.empty() || writeCertificate(site, path))
        return true;
    std::cerr << "videosite: cannot write " << path << '\n';
    return false;
}

int serve(const Options &options)
{
    const int stopSignals = openStopSignals();
    VideoSite site(options.mediaFolder);
    configure(site, options);
    if (!start(site, options))
        return 1;
    announce(site, options);
    waitForEnd(stopSignals, options);
    site.stop();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const Options options = readOptions(argc, argv);
    if (!options.error.empty()) {
        std::cerr << "videosite: " << options.error << '\n';
        return 2;
    }
    if (options.help) {
        std::cout << usage();
        return 0;
    }
    return serve(options);
}
