/** What the user has set; kept between starts. */
#ifndef VIDEODOWN_WINDOW_SETTINGS_H
#define VIDEODOWN_WINDOW_SETTINGS_H

#include "driver/downloadtask.h"

#include <QSettings>
#include <QString>

/** How requests reach the site. */
struct ProxySettings
{
    enum class Type { None = -1, Http = 0, Socks5 = 1, Socks5RemoteNames = 2 };
    Type type = Type::None;
    QString host;
    int port = 8080;
    QString user;
    QString password; ///< never in QSettings: see passwords.h

    /** Under which the keyring has the password. */
    QString account() const { return user + u'@' + host; }
};

/** A plain value. */
struct Settings
{
    static constexpr int maxConnections = 8;
    static constexpr int maxRateLimit = 1000000;

    QString outputFolder;    ///< absolute; never empty after `load`
    QString downloadFolder;  ///< absolute; empty: the output folder
    int videoLimit = 3;      ///< 1 to maxVideoLimit
    int connections = 3;     ///< most for one video, 1 to maxConnections
    int rateLimit = 0;       ///< KiB per second for all transfers together; 0: none
    QString extension;       ///< wanted container; empty: any
    int width = 0;           ///< wanted picture, pixels; 0: the largest
    int height = 0;          ///< pixels
    bool keepSource = false; ///< put the video into the output folder as the site offers it
    bool convert = false;    ///< convert what the site does not offer in the wanted format
    bool thumbnails = true;
    ProxySettings proxy;
    /** A command, or "site": only the site is asked; or empty or "auto": then the extractor too. */
    QString videoInfoCommand;
    bool trayIcon = false;
    bool notify = true; ///< when the last task ends and the window is not in front

    /** Reads what was saved; what is missing or out of range gets its default. */
    static Settings load(const QSettings &stored);
    /** Writes everything but the proxy's password. */
    void save(QSettings &stored) const;

    /** Whether the extractor is asked where a site has no answer. */
    bool asksExtractor() const;
    /** Whether a command is asked instead of the sites. */
    bool hasVideoInfoCommand() const;
    /** What the settings wish for a video. */
    Profile_Desc profile() const;
    /** A request for an address with these folders and wishes. */
    DownloadRequest request(const QString &address) const;
};

#endif
