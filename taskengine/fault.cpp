#include "taskengine/fault.h"

#include "taskengine/retrydelay.h"

#include <cerrno>

namespace taskengine {

namespace {

long responseCode(CURL *easy)
{
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    return status;
}

bool didProxyRefuse(CURL *easy)
{
    long connectStatus = 0;
    curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &connectStatus);
    return connectStatus != 0 && connectStatus / 100 != 2;
}

std::chrono::milliseconds retryAfter(CURL *easy)
{
    curl_off_t seconds = 0;
    curl_easy_getinfo(easy, CURLINFO_RETRY_AFTER, &seconds);
    return retryAfterDelay(seconds);
}

/** Whose earlier answer may have been longer than announced: what is left of it comes first then.
 */
bool wasUsedBefore(CURL *easy)
{
    long connections = 0;
    return curl_easy_getinfo(easy, CURLINFO_NUM_CONNECTS, &connections) == CURLE_OK &&
           connections == 0;
}

Fault noHttpFault(CURL *easy)
{
    return wasUsedBefore(easy) ? transient(Failure::ConnectionLost)
                               : permanent(Failure::MalformedResponse);
}

/** curl reports an answer that is no HTTP with the same code as a redirect to another protocol. */
Fault protocolFault(CURL *easy)
{
    return responseCode(easy) / 100 == 3 ? permanent(Failure::ForbiddenProtocol)
                                         : noHttpFault(easy);
}

} // namespace

Fault permanent(Failure failure)
{
    return {static_cast<double>(failure), false, {}};
}

Fault transient(Failure failure)
{
    return {static_cast<double>(failure), true, {}};
}

Fault statusFault(CURL *easy)
{
    const long status = responseCode(easy);
    const bool mayPass = status == 408 || status == 425 || status == 429 || status / 100 == 5;
    return {static_cast<double>(status), mayPass, retryAfter(easy)};
}

Fault transferFault(CURL *easy, CURLcode code, bool viaProxy)
{
    if (didProxyRefuse(easy))
        return permanent(Failure::ProxyFailed);
    switch (code) {
    case CURLE_URL_MALFORMAT:
        return permanent(Failure::BadAddress);
    case CURLE_UNSUPPORTED_PROTOCOL:
        return protocolFault(easy);
    case CURLE_COULDNT_RESOLVE_HOST:
        return permanent(Failure::UnknownHost);
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return permanent(Failure::ProxyFailed);
    case CURLE_COULDNT_CONNECT:
        return transient(viaProxy ? Failure::ProxyFailed : Failure::ConnectionFailed);
    case CURLE_OPERATION_TIMEDOUT:
        return transient(Failure::TimedOut);
    case CURLE_TOO_MANY_REDIRECTS:
        return permanent(Failure::TooManyRedirects);
    case CURLE_PARTIAL_FILE:
        return transient(Failure::ShortBody);
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        return transient(Failure::ConnectionLost);
    case CURLE_WEIRD_SERVER_REPLY:
        return noHttpFault(easy);
    case CURLE_WRITE_ERROR:
        return permanent(Failure::MalformedResponse);
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_PEER_FAILED_VERIFICATION:
        return permanent(Failure::TlsFailed);
    default:
        return permanent(Failure::Internal);
    }
}

Fault fileFault(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return permanent(Failure::DiskFull);
    case ENOENT:
    case ENOTDIR:
        return permanent(Failure::FolderMissing);
    case ENAMETOOLONG:
        return permanent(Failure::NameTooLong);
    case EMFILE:
    case ENFILE:
        return permanent(Failure::TooManyFiles);
    case EIO:
        return permanent(Failure::DiskError);
    case EFBIG:
        return permanent(Failure::FileTooLarge);
    default:
        return permanent(Failure::FileNotWritable);
    }
}

Fault commandFault(int error)
{
    switch (error) {
    case EMFILE:
    case ENFILE:
        return permanent(Failure::TooManyFiles);
    case EAGAIN:
    case ENOMEM:
        return permanent(Failure::Internal);
    default:
        return permanent(Failure::CommandNotFound);
    }
}

} // namespace taskengine
