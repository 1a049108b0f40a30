#ifndef VIDEODOWN_SITE_RESOURCE_H
#define VIDEODOWN_SITE_RESOURCE_H

#include "site/catalogue.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/** A text that several owners share, because it may be large. */
class SharedText
{
public:
    SharedText(std::string text = {}) : m_text(std::make_shared<const std::string>(std::move(text)))
    {
    }
    const std::string &operator*() const { return *m_text; }
    const std::string *operator->() const { return m_text.get(); }

private:
    std::shared_ptr<const std::string> m_text;
};

/** What the site has at an address. */
struct Resource
{
    int status = 200;
    std::string contentType;
    SharedText body;
    /** Strong validator and date of a resource that can be had in parts; empty for other resources.
     */
    std::string entityTag;
    std::string lastModified;
};

/** Finds what the site has at an address. All members may be called on any thread. */
class Resources
{
public:
    explicit Resources(std::string mediaFolder);

    Catalogue &catalogue() { return m_catalogue; }
    void setSmallVideoSize(std::size_t bytes) { m_smallSize = bytes; }

    /**
     * @param path path of the address, without the query.
     * @param videoId the id that the query names; only the watch page and the video info ask for
     * it.
     * @param base the address that the client used, without a slash at the end.
     */
    Resource find(const std::string &path, const std::string &videoId,
                  const std::string &base) const;

private:
    Resource todayAt(const std::string &kindAndId, const std::string &base) const;
    Resource infoOf(const std::string &id, const std::string &base) const;
    Resource pageOf(const std::string &id, const std::string &base) const;
    Resource streamAt(const std::string &idAndFormat) const;
    Resource smallVideo(unsigned number, int format, const SiteVideo &video) const;
    Resource thumbnailAt(const std::string &fileName) const;
    Resource mediaFile(const std::string &name, const char *contentType,
                       const SiteVideo &video) const;

    const std::string m_mediaFolder;
    std::atomic<std::size_t> m_smallSize{4096};
    Catalogue m_catalogue;

    struct LargeVideo
    {
        unsigned number;
        int format;
        Resource resource;
    };
    mutable std::mutex m_mutex;
    // Protected by m_mutex: those made last, because making one takes time.
    mutable std::vector<LargeVideo> m_large;
};

#endif
