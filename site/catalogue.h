#ifndef VIDEODOWN_SITE_CATALOGUE_H
#define VIDEODOWN_SITE_CATALOGUE_H

#include "site/videosite.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/** What the site knows of a format number. */
struct FormatDescription
{
    int number;
    const char *extension;
    const char *contentType;
    /** Frame size as the lists write it, and the three fields behind it in `fmt_list`. */
    const char *frameSize;
    const char *requirements;
};

/** The description of a format number; null for one that the site does not have. */
const FormatDescription *findFormat(int number);

/** The number in an id that is a prefix and a number ("small-17"), else nothing. */
std::optional<unsigned> numberBehind(const std::string &prefix, const std::string &id);

/** The videos of one site. All members may be called on any thread. */
class Catalogue
{
public:
    Catalogue();

    void add(const SiteVideo &video);
    /** The video with this id, one of the catalogue or one made from a number. */
    std::optional<SiteVideo> find(const std::string &id) const;

private:
    mutable std::mutex m_mutex;
    // Protected by m_mutex:
    std::map<std::string, SiteVideo> m_videos;
};

#endif
