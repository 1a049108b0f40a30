#ifndef VIDEODOWN_SITE_FORMENCODING_H
#define VIDEODOWN_SITE_FORMENCODING_H

#include <string>
#include <utility>
#include <vector>

/** Percent-encodes every byte but ASCII letters, digits and "-_.~"; with `plus`, a blank becomes
 * "+". */
std::string percentEncode(const std::string &text, bool plus = false);

/** `name=value&name=value...`, values encoded as forms are, names as they stand. */
std::string formEncode(const std::vector<std::pair<std::string, std::string>> &fields);

/** Text with the characters that HTML reserves as entities. */
std::string htmlEscape(const std::string &text);

#endif
