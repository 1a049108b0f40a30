/** The conversion profile: what the caller finally wants a task's video to become. */
#ifndef VIDEODOWN_HISTORY_CXMLPROFILE_H
#define VIDEODOWN_HISTORY_CXMLPROFILE_H

#include "engine/visibility.h"

#include <QString>

/**
 * A plain record, freely copyable. The library interprets `fileTypeExt`, `includeVideo`,
 * `vSize_Width` and `vSize_Height` only; everything else is stored, copied and restored for the
 * caller. All fields but `vCodecExtra` are kept in the history file.
 */
struct Profile_Desc
{
    int kindID = 0;                           ///< kind of profile, a number of the caller's choice
    int fileTypeID = 0;                       ///< output file type, a number of the caller's choice
    QString fileTypeExt = QStringLiteral(""); ///< output file extension, without the dot
    QString outFormat = QStringLiteral("");   ///< output format text
    bool includeVideo = false;                ///< the output keeps a video stream
    int vCodecID = 0;                         ///< video codec number
    int vCodecFcc = 0;                        ///< video codec four-character code, as an integer
    int vCodecExtra = 0;                      ///< carried by copies only, not stored
    int vCodecLevel = 0;                      ///< video codec level
    int vQuality = 0;                         ///< video quality
    int aQuality = 0;                         ///< audio quality
    int vBitRate = 0;                         ///< video bit rate
    bool userOrginalSize = false;             ///< keep the source frame size
    int vSize_Width = 0;                      ///< output frame width, pixels
    int vSize_Height = 0;                     ///< output frame height, pixels
    float vFps = 0;                           ///< output frame rate
    float vAspect = 0;                        ///< output aspect ratio
    bool interlaced = false;                  ///< interlaced output
    int mplex = 0;                            ///< multiplexing mode number
    bool includeAudio = false;                ///< the output keeps an audio stream
    int aCodecID = 0;                         ///< audio codec number
    int aBitRate = 0;                         ///< audio bit rate
    int aSampleRate = 0;                      ///< audio sample rate
    int aChannels = 0;                        ///< number of audio channels
    int aVolume = 0;                          ///< audio volume
    QString pspTitle = QStringLiteral("");    ///< title text for the output
};

/**
 * The holder through which a task record owns its profile. `m_pDesc` is never null and never
 * replaced while the holder lives; callers change the profile by copying values into it.
 */
class VIDEODOWN_PUBLIC CXMLProfile
{
public:
    CXMLProfile();
    ~CXMLProfile();
    CXMLProfile(const CXMLProfile &) = delete;
    CXMLProfile &operator=(const CXMLProfile &) = delete;

    Profile_Desc *const m_pDesc; ///< owned
};

#endif
