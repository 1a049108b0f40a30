/** The task record: everything the library knows of one download task. */
#ifndef VIDEODOWN_HISTORY_CXMLINFO_H
#define VIDEODOWN_HISTORY_CXMLINFO_H

#include "engine/visibility.h"
#include "history/cxmlprofile.h"

#include <QDateTime>
#include <QString>

class CXMLHistory;
class QDomDocument;
class QDomElement;

/**
 * One download task. Records live on the heap, at one address for their whole life; a task handle
 * of `CDown` is a pointer to one. The task list owns the records in it; a record that was taken out
 * of the list belongs to whoever still holds a pointer to it.
 *
 * Fields bear the names of the history file's elements. "Caller's" marks those that the library
 * only stores and restores.
 *
 * Threads: a record has no lock of its own. Records of a controller's list are protected by the
 * controller lock (down/controllerlock.h).
 */
class VIDEODOWN_PUBLIC CXMLInfo
{
public:
    /** A record with the defaults below. @param history stored, not owned, never read; may be null
     */
    explicit CXMLInfo(CXMLHistory *history);
    /** The same with all four dates set to `date`: reading the clock takes longer than the rest. */
    CXMLInfo(CXMLHistory *history, const QDateTime &date);
    /** Deletes the profile holder; touches neither a list nor a file. */
    ~CXMLInfo();
    CXMLInfo(const CXMLInfo &) = delete;
    CXMLInfo &operator=(const CXMLInfo &) = delete;

    CXMLHistory *const History; ///< the list given to the constructor; not stored

    QDateTime DownLoadDate;       ///< the task's local date; the history file groups by it
    int CategoryID = 0;           ///< caller's category number
    QString MD5Code;              ///< the task key
    QString Title;                ///< title, from the video-info response
    QString OrgWebSite;           ///< page address the task was made from
    QString fmt_stream_map;       ///< response's list of formats and stream addresses
    QString fmt_list;             ///< response's list of formats and frame sizes
    QString DownLoadURL;          ///< stream address chosen for the download
    int VideoWidth = 0;           ///< frame width of the chosen format, pixels
    int VideoHeight = 0;          ///< frame height of the chosen format, pixels
    QString VideoExt;             ///< extension of the chosen format, without the dot
    QString VideoInfoText;        ///< whole response, trimmed; not stored
    int UrlByAction = 0;          ///< caller's
    QDateTime TaskCreateTime;     ///< when the record was made
    QDateTime DownLoadStartTime;  ///< set by the constructor and on loading only
    QDateTime DownLoadFinishTime; ///< set by the constructor and on loading only
    QString FileName;             ///< path of the downloaded video
    QString BaseName;             ///< its name without folder and extension
    QString SaveAsPath;           ///< output folder
    QString SaveAsFileName;       ///< path of the copy in the output folder
    QString SaveAsExt;            ///< output extension, without the dot
    qint64 FileSize = 0;          ///< bytes, as reported by the engine
    QString ImageURL;             ///< address of the thumbnail
    QString ImagePath;            ///< path of the thumbnail file
    int State = -1;               ///< caller's task state
    int HasDownLoad = 0;          ///< caller's
    int Progress = 0;             ///< caller's download progress
    int Speed = 0;                ///< caller's
    int ThreadNum = 1;            ///< caller's
    int Duration = 1;             ///< length in seconds
    int IsOrgVideo = 0;           ///< 1: the video is kept as downloaded, unconverted
    int VideoTime = 0;            ///< time stamp of the response
    int UseyoutobeTitle = 0;      ///< caller's
    QString VideoID;              ///< the site's identifier of the video
    int ParseState = -1;          ///< -1 not parsed, 1 waiting for a slot, 3 ended
    int DownState = -1;           ///< -1 not downloaded, 0 sent, 1 waiting, 3 ended
    QString ConvertionDesc;       ///< caller's conversion description
    CXMLProfile *const Profile;   ///< owned; never null

    /**
     * Appends the record's stored fields to `parent`, one child element per field in fixed order,
     * and last the element "Profile". Characters that XML 1.0 cannot carry are replaced.
     */
    void toDomNode(QDomDocument &doc, QDomElement &parent);

    /**
     * Sets every stored field from the children of `element`. A missing or unreadable child gives
     * "", 0, false or an invalid date; unknown children are ignored; of two equal ones the first
     * counts. Nothing fails.
     */
    void fromDomNode(const QDomElement &element);

    /** Appends `<name>value</name>` to `parent`; the text node exists even for an empty value. */
    void createSubTextNode(QDomDocument &doc, QDomElement &parent, const QString &name,
                           const QString &value);

    /** Sets the stored fields of `profile` from the children of a "Profile" element. */
    void CopyProFile(Profile_Desc *profile, QDomElement &element);
};

#endif
