#include "taskengine/address.h"

namespace taskengine {

Address parsedAddress(const std::string &text)
{
    Address address(curl_url());
    const unsigned flags = CURLU_NON_SUPPORT_SCHEME; // distinguished from what is no address at all
    if (address && curl_url_set(address.get(), CURLUPART_URL, text.c_str(), flags) != CURLUE_OK)
        address.reset();
    return address;
}

std::string addressPart(const Address &address, CURLUPart which)
{
    char *text = nullptr;
    if (curl_url_get(address.get(), which, &text, 0) != CURLUE_OK)
        return {};
    std::string copy(text);
    curl_free(text);
    return copy;
}

std::string hostOf(const std::string &text)
{
    const Address address = parsedAddress(text);
    if (!address)
        return {};
    return addressPart(address, CURLUPART_HOST) + ':' + addressPart(address, CURLUPART_PORT);
}

std::string resolvedAddress(const std::string &base, const std::string &reference)
{
    const Address address = parsedAddress(base);
    const unsigned flags = CURLU_NON_SUPPORT_SCHEME | CURLU_URLENCODE;
    if (!address ||
        curl_url_set(address.get(), CURLUPART_URL, reference.c_str(), flags) != CURLUE_OK)
        return {};
    return addressPart(address, CURLUPART_URL);
}

std::optional<Fault> addressFault(const std::string &address)
{
    const Address checked = parsedAddress(address);
    if (!checked)
        return permanent(Failure::BadAddress);
    const std::string scheme = addressPart(checked, CURLUPART_SCHEME);
    if (scheme != "http" && scheme != "https")
        return permanent(Failure::ForbiddenProtocol);
    return std::nullopt;
}

} // namespace taskengine
