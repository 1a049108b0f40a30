/** A finished task's way to a larger picture, and back if that comes to nothing. */
#ifndef VIDEODOWN_DRIVER_UPGRADE_H
#define VIDEODOWN_DRIVER_UPGRADE_H

#include "driver/downloadtask.h"
#include "driver/leftovers.h"

#include <optional>

/**
 * The library deletes the old video as soon as the site offers a larger one. This keeps the old
 * files aside until the new ones are complete. Files are moved without the controller lock; the
 * record is written only once it is known what became of them.
 */
class Upgrade
{
public:
    /** Notes what the record says now. The caller holds the controller lock. */
    explicit Upgrade(const CXMLInfo &record);

    const PictureSize &formerPicture() const { return m_picture; }
    int keepsSource() const { return m_keepsSource; }
    /** Whether a picture of this size is larger than the old one. */
    bool isLarger(const PictureSize &picture) const;

    /** The old files and where they are put. */
    const UpgradeFiles &files() const { return m_files; }
    bool isSetAside() const { return m_isSetAside; }

    /** Moves the old files aside. @return the place that cannot be used; then nothing has moved */
    std::optional<QString> setAside();
    /** The new video is complete: removes the old files. @return one that could not be removed */
    std::optional<QString> commit();
    /** Moves the old files back. @return the first one that could not; it stays aside */
    std::optional<QString> rollBack();

    /**
     * Makes the record say again what it said, but for a video that is still aside: that one's path
     * is the task's then. The caller holds the controller lock.
     */
    void restore(CXMLInfo &record) const;

private:
    Profile_Desc m_profile;
    int m_keepsSource = 0;
    PictureSize m_picture;
    QString m_extension, m_fileName, m_baseName, m_title, m_copyName, m_copyExtension, m_conversion;
    qint64 m_size = 0;
    UpgradeFiles m_files;
    bool m_isSetAside = false;
};

#endif
