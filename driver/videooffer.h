/** What a site offers of a video, and which of it the library would fetch. */
#ifndef VIDEODOWN_DRIVER_VIDEOOFFER_H
#define VIDEODOWN_DRIVER_VIDEOOFFER_H

#include "engine/visibility.h"
#include "history/cxmlprofile.h"

#include <QList>
#include <QString>

/** One format on offer. */
struct OfferedFormat
{
    int number = 0;         ///< the site's number of the format
    QString extension;      ///< container, without the dot
    int width = 0;          ///< pixels
    int height = 0;         ///< pixels
    bool hasStream = false; ///< the site gave an address for it
};

/** How a task's format is to be chosen. */
struct FormatWish
{
    Profile_Desc profile;  ///< with extension and size filled in
    bool byProfile = true; ///< false: by the library's rule for kept sources
};

/** What the library would fetch. */
struct ChosenFormat
{
    int number = 0; ///< 0: the first stream, whatever it is
    QString extension;
    int width = 0;  ///< pixels
    int height = 0; ///< pixels
};

/** The two lists of a site's answer, read once. A plain value; empty until there is an answer. */
class VIDEODOWN_PUBLIC VideoOffer
{
public:
    VideoOffer() = default;
    /** Reads a record's `fmt_list` and `fmt_stream_map`. Entries that cannot be read are skipped.
     */
    VideoOffer(const QString &fmtList, const QString &fmtStreamMap);

    /** The list of formats as the site gave it. */
    const QString &fmtList() const { return m_fmtList; }
    /** The formats in the site's order. */
    const QList<OfferedFormat> &formats() const { return m_formats; }

    /**
     * What a wish comes to, given the offer. The library would take the smallest format for a wish
     * without a size, and a nameless one for a wish beyond the offer: so the size is set to the
     * largest format's of the wanted extension, or of all, where the wish is open or too large. A
     * kept source without a wish goes by the library's own rule, if that finds something.
     */
    FormatWish settled(const Profile_Desc &wish, bool keepSource) const;
    /** The format that the library will fetch for a settled wish. */
    ChosenFormat chosen(const FormatWish &wish) const;

private:
    bool sourceRuleFinds() const;

    QString m_fmtList;
    QString m_fmtStreamMap;
    QList<OfferedFormat> m_formats;
};

#endif
