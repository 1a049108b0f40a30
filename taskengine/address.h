/** Web addresses, read by libcurl. */
#ifndef VIDEODOWN_TASKENGINE_ADDRESS_H
#define VIDEODOWN_TASKENGINE_ADDRESS_H

#include "taskengine/fault.h"

#include <curl/curl.h>
#include <memory>
#include <optional>
#include <string>

namespace taskengine {

struct AddressDeleter
{
    void operator()(CURLU *address) const { curl_url_cleanup(address); }
};
using Address = std::unique_ptr<CURLU, AddressDeleter>;

/** @return null when the text is no address; its scheme may be any */
Address parsedAddress(const std::string &text);

/** @return a part of an address; empty when it has none */
std::string addressPart(const Address &address, CURLUPart which);

/** @return host and port of an address, to tell sites apart; empty when it is none */
std::string hostOf(const std::string &address);

/** @return where a reference leads from an address (RFC 3986, section 5); empty: nowhere */
std::string resolvedAddress(const std::string &base, const std::string &reference);

/** @return why an address cannot be fetched, if so: no address, or neither HTTP nor HTTPS */
std::optional<Fault> addressFault(const std::string &address);

} // namespace taskengine

#endif
