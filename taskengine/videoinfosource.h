/** How the video-info response of a page is come by: the one place that knows the site. */
#ifndef VIDEODOWN_TASKENGINE_VIDEOINFOSOURCE_H
#define VIDEODOWN_TASKENGINE_VIDEOINFOSOURCE_H

#include <string>

namespace taskengine {

/**
 * The default source: `scheme://host[:port]/get_video_info?video_id=ID`, where ID is the "v" query
 * parameter of the page's address or, without one, the last segment of its path. The answer is a
 * form-encoded list of fields.
 */
class VideoInfoSource
{
public:
    VideoInfoSource() = default;
    VideoInfoSource(const VideoInfoSource &) = delete;
    VideoInfoSource &operator=(const VideoInfoSource &) = delete;
    virtual ~VideoInfoSource() = default;

    /** @return the address to fetch for a page; empty when it does not name a video */
    virtual std::string infoAddress(const std::string &pageAddress) const;

    /** @return the answer as "key=value" lines, each ended by CR LF; empty when there are none */
    virtual std::string lines(const std::string &answer) const;
};

/**
 * @return the output of a video-info command as lines, each ended by CR LF; empty when no line has
 * the form "key=value"
 */
std::string linesOfCommand(const std::string &output);

} // namespace taskengine

#endif
