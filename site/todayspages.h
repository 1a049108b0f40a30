#ifndef VIDEODOWN_SITE_TODAYSPAGES_H
#define VIDEODOWN_SITE_TODAYSPAGES_H

#include "site/videosite.h"

#include <string>

/**
 * A video's page as sites write them today, HTML, with the video's MP4 formats. Empty for a kind
 * that there is not:
 * - "video": a video element with a source for each format;
 * - "opengraph": Open Graph fields in the head;
 * - "jsonld": a schema.org VideoObject;
 * - "pieces": a video element with an HLS playlist;
 * - "guarded": as "video", with addresses that want the page's cookie and its address as referrer.
 * @param base the address that the client used, without a slash at the end
 */
std::string todaysPage(const std::string &kind, const SiteVideo &video, const std::string &base);

/** An HLS playlist of one piece. */
std::string playlist();

#endif
