#include "taskengine/transfer.h"

#include "taskengine/address.h"
#include "taskengine/requestheaders.h"

#include <algorithm>
#include <utility>

namespace taskengine {

namespace {

constexpr std::size_t receiveBuffer = std::size_t{256} * 1024;
constexpr std::size_t smallestBuffer = 4096;
constexpr long mostRedirects = 10;
constexpr std::size_t mostHeaderBytes = std::size_t{256} * 1024;
constexpr const char *protocols = "http,https";

long proxyType(std::int32_t type)
{
    switch (static_cast<ProxyType>(type)) {
    case ProxyType::Socks5:
        return CURLPROXY_SOCKS5;
    case ProxyType::Socks5RemoteNames:
        return CURLPROXY_SOCKS5_HOSTNAME;
    default:
        return CURLPROXY_HTTP;
    }
}

/** Under a limit the data shall come in small pieces, and often. */
long bufferFor(std::size_t rateLimit)
{
    const std::size_t size = rateLimit == 0 ? receiveBuffer : rateLimit / 8;
    return static_cast<long>(std::clamp(size, smallestBuffer, receiveBuffer));
}

/** A bare IPv6 address would be read as host and port. */
std::string proxyHost(const char *text)
{
    const std::string host = text;
    const bool isBare = host.find(':') != std::string::npos && host.front() != '[';
    return isBare ? "[" + host + "]" : host;
}

} // namespace

Transfer::Transfer(CURLM *multi, RateLimit &rate, TransferClient &client, const tagTaskInfo &record,
                   const Options &options)
    : m_multi(multi),
      m_rate(rate),
      m_client(client),
      m_record(record),
      m_options(options),
      m_easy(curl_easy_init())
{
}

Transfer::~Transfer()
{
    cancel();
}

bool Transfer::start(TransferRequest request)
{
    m_request = std::move(request);
    m_curlMayRedirect = curlMayRedirect();
    m_redirects = 0;
    return m_easy && begin(m_request.address);
}

bool Transfer::begin(const std::string &address)
{
    CURL *easy = m_easy.get();
    curl_easy_reset(easy);
    m_began = false;
    m_headerBytes = 0;
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onWrite);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    setLimits();
    setProxy();
    if (curl_easy_setopt(easy, CURLOPT_URL, address.c_str()) != CURLE_OK || !setFields(address))
        return false;
    restartSpeedCheck(Clock::now());
    m_running = curl_multi_add_handle(m_multi, easy) == CURLM_OK;
    return m_running;
}

void Transfer::setLimits()
{
    CURL *easy = m_easy.get();
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, protocols);
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, m_curlMayRedirect ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirects);
    // Each transfer gets a connection of its own: a paused one must not hold up its neighbours.
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(m_options.connectTimeLimit.count()));
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, bufferFor(m_options.rateLimit));
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // Cancelling must not wait for a name server.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, m_options.userAgent.c_str());
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    if (!m_options.caFile.empty())
        curl_easy_setopt(easy, CURLOPT_CAINFO, m_options.caFile.c_str());
}

/** Empty texts rather than none: those would let the environment name a proxy. */
void Transfer::setProxy()
{
    CURL *easy = m_easy.get();
    const tagProxyParam &proxy = m_record.proxyParam;
    if (m_record.nProxySet != 1 && m_options.proxyFromEnvironment)
        return;
    curl_easy_setopt(easy, CURLOPT_NOPROXY, "");
    if (m_record.nProxySet != 1) {
        curl_easy_setopt(easy, CURLOPT_PROXY, "");
        return;
    }
    curl_easy_setopt(easy, CURLOPT_PROXY, proxyHost(proxy.szProxyText1).c_str());
    curl_easy_setopt(easy, CURLOPT_PROXYPORT, static_cast<long>(proxy.nProxyValue1));
    curl_easy_setopt(easy, CURLOPT_PROXYTYPE, proxyType(proxy.nProxyValue2));
    if (proxy.szProxyText2[0] == '\0')
        return;
    curl_easy_setopt(easy, CURLOPT_PROXYUSERNAME, proxy.szProxyText2);
    curl_easy_setopt(easy, CURLOPT_PROXYPASSWORD, proxy.szProxyText3);
}

/** curl would take fields of ours along to any host, and tell a secure page's to insecure ones. */
bool Transfer::curlMayRedirect() const
{
    return m_request.headers.empty() &&
           refererFor(m_request.page, "https://h/") == refererFor(m_request.page, "http://h/");
}

bool Transfer::setFields(const std::string &address)
{
    m_headers.reset();
    const auto add = [this](const std::string &field) {
        curl_slist *list = curl_slist_append(m_headers.get(), field.c_str());
        if (list == nullptr)
            return false;
        static_cast<void>(m_headers.release());
        m_headers.reset(list);
        return true;
    };
    if (m_request.offset > 0 && !add("If-Range: " + m_request.validator))
        return false;
    const bool mayKnow = m_redirects == 0 || isSameHost(m_request.address, address);
    if (mayKnow && !std::all_of(m_request.headers.begin(), m_request.headers.end(), add))
        return false;
    curl_easy_setopt(m_easy.get(), CURLOPT_HTTPHEADER, m_headers.get());
    const std::string referer = refererFor(m_request.page, address);
    if (!referer.empty())
        curl_easy_setopt(m_easy.get(), CURLOPT_REFERER, referer.c_str());
    if (m_request.offset == 0)
        return true;
    // Not CURLOPT_RESUME_FROM, which takes any whole answer for an error.
    std::string range = std::to_string(m_request.offset) + "-";
    if (m_request.end >= 0)
        range += std::to_string(m_request.end - 1);
    return curl_easy_setopt(m_easy.get(), CURLOPT_RANGE, range.c_str()) == CURLE_OK;
}

/** @return where the answer sends us, when it is for us to go there; else empty */
std::string Transfer::redirection() const
{
    long status = 0;
    curl_header *location = nullptr;
    if (m_curlMayRedirect || m_began ||
        curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status) != CURLE_OK ||
        status / 100 != 3 ||
        curl_easy_header(m_easy.get(), "Location", 0, CURLH_HEADER, -1, &location) != CURLHE_OK)
        return {};
    const char *from = nullptr;
    curl_easy_getinfo(m_easy.get(), CURLINFO_EFFECTIVE_URL, &from);
    return from == nullptr ? std::string() : resolvedAddress(from, location->value);
}

void Transfer::cancel()
{
    if (m_running)
        curl_multi_remove_handle(m_multi, m_easy.get());
    m_running = false;
    m_rate.forget(*this);
    endHold();
}

void Transfer::end(CURLcode code)
{
    if (!m_running)
        return;
    cancel();
    const bool mayFollow = code == CURLE_OK || code == CURLE_WRITE_ERROR;
    const std::string next = mayFollow ? redirection() : std::string();
    if (!next.empty()) {
        if (m_redirects++ < mostRedirects && begin(next))
            return;
        code = CURLE_TOO_MANY_REDIRECTS;
    }
    if (code == CURLE_OK && !m_began && !m_client.responseBegan())
        code = CURLE_WRITE_ERROR;
    m_client.transferEnded(code);
}

/**
 * Before the body `write` alone holds back what arrives: curl forgets a pause while connecting, and
 * header lines that it keeps back in one come out as a single line, without those that `judge`
 * needs.
 */
void Transfer::setPaused(bool paused)
{
    m_paused = paused;
    m_rate.forget(*this);
    endHold();
    restartSpeedCheck(Clock::now());
    if (!m_running || (paused && !m_began)) // then the first bytes are what is held
        return;
    pauseReceiving(paused);
}

void Transfer::pauseReceiving(bool paused)
{
    // Without a connection there is nothing to continue yet, or no more.
    const CURLcode code = curl_easy_pause(m_easy.get(), paused ? CURLPAUSE_RECV : CURLPAUSE_CONT);
    if (code != CURLE_OK && code != CURLE_BAD_FUNCTION_ARGUMENT)
        end(code);
}

void Transfer::letGo()
{
    endHold();
    pauseReceiving(false);
}

void Transfer::hold()
{
    if (!m_held)
        m_heldSince = Clock::now();
    m_held = true;
}

/** The site could not help it: the time does not count. */
void Transfer::endHold()
{
    if (m_held)
        m_speedSince += Clock::now() - m_heldSince;
    m_held = false;
}

/** curl's own check would count the pause that has just ended. */
void Transfer::checkSpeed(Clock::time_point now)
{
    const auto window = m_options.lowSpeedTime;
    if (!m_running || m_paused || m_held || window.count() <= 0 || now - m_speedSince < window)
        return;
    const std::uint64_t wanted =
        m_options.lowSpeedLimit * static_cast<std::uint64_t>(window.count()) / 1000;
    const bool tooSlow = m_speedBytes < wanted && isConnected();
    restartSpeedCheck(now);
    if (tooSlow)
        end(CURLE_OPERATION_TIMEDOUT);
}

/** Connecting has its own limit. */
bool Transfer::isConnected() const
{
    curl_off_t ready = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_PRETRANSFER_TIME_T, &ready);
    return ready > 0;
}

void Transfer::restartSpeedCheck(Clock::time_point now)
{
    m_speedSince = now;
    m_speedBytes = 0;
}

std::size_t Transfer::write(const char *data, std::size_t length)
{
    if (m_paused)
        return CURL_WRITEFUNC_PAUSE;
    if (!redirection().empty())
        return CURL_WRITEFUNC_ERROR; // of a redirect nobody wants the body
    if (!m_began) {
        m_began = true;
        if (!m_client.responseBegan())
            return CURL_WRITEFUNC_ERROR;
    }
    if (!m_rate.take(*this, length)) {
        hold();
        return CURL_WRITEFUNC_PAUSE;
    }
    m_speedBytes += length;
    return m_client.received(data, length) ? length : CURL_WRITEFUNC_ERROR;
}

std::size_t Transfer::onWrite(char *data, std::size_t size, std::size_t count, void *self)
{
    return static_cast<Transfer *>(self)->write(data, size * count);
}

/** curl keeps every header until the transfer ends, so somebody has to count them. */
std::size_t Transfer::onHeader(char *, std::size_t size, std::size_t count, void *self)
{
    auto *transfer = static_cast<Transfer *>(self);
    transfer->m_headerBytes += size * count;
    return transfer->m_headerBytes <= mostHeaderBytes ? size * count : 0;
}

} // namespace taskengine
