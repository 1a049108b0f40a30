#include "site/videosite.h"

#include "site/delivery.h"
#include "site/faults.h"
#include "site/gate.h"
#include "site/httpserver.h"
#include "site/proxy.h"
#include "site/resource.h"
#include "site/tlsfront.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

class VideoSite::Private
{
public:
    explicit Private(std::string mediaFolder);

    void serve(const httplib::Request &request, httplib::Response &response);
    void record(const httplib::Request &request);

    Resources resources;
    Faults faults;
    Gate gate;
    std::atomic<int> port{0};
    HttpServer server;
    std::thread listener;
    std::unique_ptr<TlsFront> tls;
    std::unique_ptr<Proxy> proxy;
    std::atomic<int> tlsPort{0};

    mutable std::mutex mutex;
    // Protected by mutex:
    std::vector<SiteRequest> requests;
};

VideoSite::Private::Private(std::string mediaFolder)
    : resources(mediaFolder.empty() ? VIDEOSITE_MEDIA_FOLDER : std::move(mediaFolder)), server(gate)
{
    server.Get(".*", [this](const httplib::Request &request, httplib::Response &response) {
        serve(request, response);
    });
}

void VideoSite::Private::serve(const httplib::Request &request, httplib::Response &response)
{
    record(request);
    const Misbehaviour fault = faults.take(request.target);
    gate.pause(fault.latency);
    const bool isPage = request.path == "/watch";
    const std::string id = request.get_param_value(isPage ? "v" : "video_id");
    const std::string host = request.get_header_value("Host");
    const bool isSecure = tlsPort > 0 && host == "127.0.0.1:" + std::to_string(tlsPort);
    const std::string base = (isSecure ? "https://" : "http://") + host;
    deliver(request, response, resources.find(request.path, id, base), fault, gate);
}

void VideoSite::Private::record(const httplib::Request &request)
{
    const std::lock_guard lock(mutex);
    requests.push_back({request.method, request.target, request.get_header_value("Range"),
                        request.get_header_value("If-Range"), request.remote_port});
}

VideoSite::VideoSite(std::string mediaFolder) : d(std::make_unique<Private>(std::move(mediaFolder)))
{
}

VideoSite::~VideoSite()
{
    stop();
}

bool VideoSite::start(int port)
{
    const int bound = d->server.bind(port);
    if (bound <= 0)
        return false;
    d->port = bound;
    d->listener = std::thread([this] { d->server.listen_after_bind(); });
    // The library's stop() is lost when it comes before the listener runs.
    while (!d->server.is_running())
        std::this_thread::yield();
    return true;
}

bool VideoSite::startTls()
{
    d->tls = std::make_unique<TlsFront>(port());
    if (!d->tls->makeCertificate() || !d->tls->start())
        return false;
    d->tlsPort = d->tls->port();
    return true;
}

bool VideoSite::startProxy(const std::string &user, const std::string &password)
{
    d->proxy = std::make_unique<Proxy>(port(), user, password);
    return d->proxy->start();
}

void VideoSite::stop()
{
    d->gate.close();
    if (d->tls)
        d->tls->stop();
    if (d->proxy)
        d->proxy->stop();
    d->server.stop();
    if (d->listener.joinable())
        d->listener.join();
}

int VideoSite::port() const
{
    return d->port;
}

std::string VideoSite::baseAddress() const
{
    return "http://127.0.0.1:" + std::to_string(port());
}

std::string VideoSite::secureAddress() const
{
    return "https://127.0.0.1:" + std::to_string(d->tlsPort);
}

std::string VideoSite::certificate() const
{
    return d->tls ? d->tls->certificate() : std::string();
}

int VideoSite::proxyPort() const
{
    return d->proxy ? d->proxy->port() : 0;
}

std::string VideoSite::pageAddress(const std::string &id) const
{
    return baseAddress() + "/watch?v=" + id;
}

void VideoSite::addVideo(const SiteVideo &video)
{
    d->resources.catalogue().add(video);
}

void VideoSite::setSmallVideoSize(std::size_t bytes)
{
    d->resources.setSmallVideoSize(bytes);
}

void VideoSite::addMisbehaviour(const Misbehaviour &misbehaviour)
{
    d->faults.add(misbehaviour);
}

void VideoSite::clearMisbehaviours()
{
    d->faults.clear();
}

void VideoSite::release()
{
    d->gate.release();
}

std::vector<SiteRequest> VideoSite::requests() const
{
    const std::lock_guard lock(d->mutex);
    return d->requests;
}

std::size_t VideoSite::requestCount(const std::string &prefix) const
{
    const std::lock_guard lock(d->mutex);
    const auto fits = [&prefix](const SiteRequest &request) {
        return request.target.compare(0, prefix.size(), prefix) == 0;
    };
    return static_cast<std::size_t>(std::count_if(d->requests.begin(), d->requests.end(), fits));
}

bool VideoSite::waitForHeld(std::size_t count, std::chrono::milliseconds limit) const
{
    return d->gate.waitForHeld(count, limit);
}
