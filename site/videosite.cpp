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

namespace {

const std::string visitorCookie = "visitor=yes";

bool isGuarded(const std::string &path)
{
    return path.rfind("/guarded/", 0) == 0;
}

/** Whether somebody comes from the page to which the guarded streams belong. */
bool isGuest(const httplib::Request &request, const std::string &base)
{
    return request.get_header_value("Cookie").find(visitorCookie) != std::string::npos &&
           request.get_header_value("Referer").rfind(base + "/today/guarded/", 0) == 0;
}

Resource refusal()
{
    return {403,
            "text/html; charset=utf-8",
            std::string("<!DOCTYPE html>\n<p>Not from here</p>\n"),
            {},
            {}};
}

} // namespace

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
    const MetFault met = faults.take(request.target);
    gate.pause(met.fault.latency);
    const bool isPage = request.path == "/watch";
    const std::string id = request.get_param_value(isPage ? "v" : "video_id");
    const std::string host = request.get_header_value("Host");
    const bool isSecure = tlsPort > 0 && host == "127.0.0.1:" + std::to_string(tlsPort);
    const std::string base = (isSecure ? "https://" : "http://") + host;
    const bool isRefused = isGuarded(request.path) && !isGuest(request, base);
    if (request.path.rfind("/today/guarded/", 0) == 0)
        response.set_header("Set-Cookie", visitorCookie + "; Path=/guarded");
    deliver(request, response, isRefused ? refusal() : resources.find(request.path, id, base), met,
            gate);
}

void VideoSite::Private::record(const httplib::Request &request)
{
    const std::lock_guard lock(mutex);
    requests.push_back({request.method, request.target, request.get_header_value("Range"),
                        request.get_header_value("If-Range"), request.get_header_value("Host"),
                        request.get_header_value("Referer"), request.get_header_value("Cookie"),
                        request.remote_port});
}

VideoSite::VideoSite(std::string mediaFolder)
    : m_d(std::make_unique<Private>(std::move(mediaFolder)))
{
}

VideoSite::~VideoSite()
{
    stop();
}

bool VideoSite::start(int port)
{
    const int bound = m_d->server.bind(port);
    if (bound <= 0)
        return false;
    m_d->port = bound;
    m_d->listener = std::thread([this] { m_d->server.listen_after_bind(); });
    // The library's stop() is lost when it comes before the listener runs.
    while (!m_d->server.is_running())
        std::this_thread::yield();
    return true;
}

bool VideoSite::startTls()
{
    m_d->tls = std::make_unique<TlsFront>(port());
    if (!m_d->tls->makeCertificate() || !m_d->tls->start())
        return false;
    m_d->tlsPort = m_d->tls->port();
    return true;
}

bool VideoSite::startProxy(const std::string &user, const std::string &password)
{
    m_d->proxy = std::make_unique<Proxy>(port(), user, password);
    return m_d->proxy->start();
}

void VideoSite::stop()
{
    m_d->gate.close();
    if (m_d->tls)
        m_d->tls->stop();
    if (m_d->proxy)
        m_d->proxy->stop();
    m_d->server.stop();
    if (m_d->listener.joinable())
        m_d->listener.join();
}

int VideoSite::port() const
{
    return m_d->port;
}

std::string VideoSite::baseAddress() const
{
    return "http://127.0.0.1:" + std::to_string(port());
}

std::string VideoSite::secureAddress() const
{
    return "https://127.0.0.1:" + std::to_string(m_d->tlsPort);
}

std::string VideoSite::certificate() const
{
    return m_d->tls ? m_d->tls->certificate() : std::string();
}

int VideoSite::proxyPort() const
{
    return m_d->proxy ? m_d->proxy->port() : 0;
}

std::string VideoSite::pageAddress(const std::string &id) const
{
    return baseAddress() + "/watch?v=" + id;
}

void VideoSite::addVideo(const SiteVideo &video)
{
    m_d->resources.catalogue().add(video);
}

void VideoSite::setSmallVideoSize(std::size_t bytes)
{
    m_d->resources.setSmallVideoSize(bytes);
}

void VideoSite::addMisbehaviour(const Misbehaviour &misbehaviour)
{
    m_d->faults.add(misbehaviour);
}

void VideoSite::clearMisbehaviours()
{
    m_d->faults.clear();
}

void VideoSite::release()
{
    m_d->gate.release();
}

std::vector<SiteRequest> VideoSite::requests() const
{
    const std::lock_guard lock(m_d->mutex);
    return m_d->requests;
}

std::size_t VideoSite::requestCount(const std::string &prefix) const
{
    const std::lock_guard lock(m_d->mutex);
    const auto fits = [&prefix](const SiteRequest &request) {
        return request.target.compare(0, prefix.size(), prefix) == 0;
    };
    return static_cast<std::size_t>(
        std::count_if(m_d->requests.begin(), m_d->requests.end(), fits));
}

bool VideoSite::waitForHeld(std::size_t count, std::chrono::milliseconds limit) const
{
    return m_d->gate.waitForHeld(count, limit);
}
