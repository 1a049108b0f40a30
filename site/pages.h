#ifndef VIDEODOWN_SITE_PAGES_H
#define VIDEODOWN_SITE_PAGES_H

#include "site/videosite.h"

#include <string>

// In all of these, `base` is the address that the client used: scheme and host, no slash at the
// end.

/** The page that lists the site's own videos, HTML. */
std::string indexPage(const std::string &base);

/** A video's page, HTML. */
std::string watchPage(const SiteVideo &video, const std::string &base);

/** The video-info response of a video, form-encoded. */
std::string videoInfo(const SiteVideo &video, const std::string &base);

/** Address of a video's thumbnail. */
std::string thumbnailAddress(const SiteVideo &video, const std::string &base);

#endif
