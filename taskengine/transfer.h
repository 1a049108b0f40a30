/** One HTTP transfer with everything that all transfers have in common. */
#ifndef VIDEODOWN_TASKENGINE_TRANSFER_H
#define VIDEODOWN_TASKENGINE_TRANSFER_H

#include "engine/taskengine.h"
#include "taskengine/options.h"
#include "taskengine/ratelimit.h"

#include <chrono>
#include <cstdint>
#include <curl/curl.h>
#include <memory>
#include <string>
#include <vector>

namespace taskengine {

using Clock = std::chrono::steady_clock;

/** What a transfer reports to its owner, on the transfer thread. */
class TransferClient
{
public:
    TransferClient() = default;
    TransferClient(const TransferClient &) = delete;
    TransferClient &operator=(const TransferClient &) = delete;

    /** The headers are complete. @return false to end the transfer with CURLE_WRITE_ERROR */
    virtual bool responseBegan() = 0;

    /** A piece of the body. @return false to end the transfer with CURLE_WRITE_ERROR */
    virtual bool received(const char *data, std::size_t length) = 0;

    /** Last call, not made after `Transfer::cancel`. A new transfer may be started from here. */
    virtual void transferEnded(CURLcode code) = 0;

protected:
    ~TransferClient() = default;
};

/** What to fetch. */
struct TransferRequest
{
    std::string address;
    std::int64_t offset = 0; ///< where to begin; needs a validator when it is not 0
    std::int64_t end = -1;   ///< where to end, when the offset is not 0; -1: with the file
    std::string validator{}; ///< for If-Range
    /** Further fields, "Name: value"; they reach no other host by a redirect. */
    std::vector<std::string> headers{};
    std::string page{}; ///< whose Referer is sent; empty for none
};

/** A transfer, which may be started again after it has ended. Used on the transfer thread only. */
class Transfer
{
public:
    /** @param multi, rate, client, record and options outlive the transfer */
    Transfer(CURLM *multi, RateLimit &rate, TransferClient &client, const tagTaskInfo &record,
             const Options &options);
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;
    ~Transfer();

    /** @return whether it was started; the client hears nothing otherwise */
    bool start(TransferRequest request);

    /** Ends it without a word to the client. */
    void cancel();

    void setPaused(bool paused);

    /** Goes on after the rate limit has held it back. */
    void letGo();

    /** Ends the transfer when it has been too slow for too long. */
    void checkSpeed(Clock::time_point now);

    /** The multi handle reported the end. */
    void end(CURLcode code);

    CURL *easy() const { return m_easy.get(); }

private:
    struct HandleDeleter
    {
        void operator()(CURL *easy) const { curl_easy_cleanup(easy); }
    };
    struct ListDeleter
    {
        void operator()(curl_slist *list) const { curl_slist_free_all(list); }
    };

    void setLimits();
    void setProxy();
    bool begin(const std::string &address);
    bool curlMayRedirect() const;
    bool setFields(const std::string &address);
    std::string redirection() const;
    bool isConnected() const;
    void pauseReceiving(bool paused);
    void hold();
    void endHold();
    void restartSpeedCheck(Clock::time_point now);
    std::size_t write(const char *data, std::size_t length);
    static std::size_t onWrite(char *data, std::size_t size, std::size_t count, void *self);
    static std::size_t onHeader(char *data, std::size_t size, std::size_t count, void *self);

    CURLM *const m_multi;
    RateLimit &m_rate;
    TransferClient &m_client;
    const tagTaskInfo &m_record;
    const Options &m_options;
    std::unique_ptr<CURL, HandleDeleter> m_easy;
    std::unique_ptr<curl_slist, ListDeleter> m_headers;
    TransferRequest m_request;
    bool m_curlMayRedirect = false; ///< else redirects are followed here
    int m_redirects = 0;            ///< those followed here
    bool m_running = false;
    bool m_paused = false;
    bool m_held = false; ///< by the rate limit
    Clock::time_point m_heldSince;
    bool m_began = false;
    std::size_t m_headerBytes = 0;
    std::uint64_t m_speedBytes = 0;
    Clock::time_point m_speedSince;
};

} // namespace taskengine

#endif
