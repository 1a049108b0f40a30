/** Reading a site's video-info response: key=value lines, as the engine delivers them. */
#ifndef VIDEODOWN_VIDEO_VIDEOINFORESPONSE_H
#define VIDEODOWN_VIDEO_VIDEOINFORESPONSE_H

#include "history/cxmlinfo.h"

#include <string_view>

namespace videoinforesponse {

/** Whether the response holds a line at all: anything but CR and LF. */
bool hasLines(std::string_view response);

/**
 * Stores the response's values in the record. Fields without a line keep what they had; of two
 * lines with one key the later wins. Values are taken as they stand, without any decoding but that
 * of characters: "title=" is UTF-8, the others are narrow text (strutil/narrowtext.h).
 */
void store(std::string_view response, CXMLInfo &record);

} // namespace videoinforesponse

#endif
