#include "settings.h"

#include <QDir>
#include <QStandardPaths>

#include <algorithm>

namespace {

constexpr int largestSide = 16384;

QString defaultFolder()
{
    for (const auto place : {QStandardPaths::MoviesLocation, QStandardPaths::DownloadLocation,
                             QStandardPaths::HomeLocation}) {
        QString folder = QStandardPaths::writableLocation(place);
        if (!folder.isEmpty())
            return folder;
    }
    return QDir::rootPath();
}

QString text(const QSettings &stored, const char *key)
{
    return stored.value(QLatin1String(key)).toString();
}

bool flag(const QSettings &stored, const char *key, bool otherwise)
{
    return stored.value(QLatin1String(key), otherwise).toBool();
}

// Files may have been edited by hand.
int number(const QSettings &stored, const char *key, int least, int most, int otherwise)
{
    bool isNumber = false;
    const int value = stored.value(QLatin1String(key)).toInt(&isNumber);
    return isNumber && value >= least && value <= most ? value : otherwise;
}

QString folder(const QSettings &stored, const char *key, const QString &otherwise)
{
    const QString path = text(stored, key);
    return QDir::isAbsolutePath(path) ? path : otherwise;
}

} // namespace

Settings Settings::load(const QSettings &stored)
{
    Settings settings;
    settings.outputFolder = folder(stored, "folders/output", defaultFolder());
    settings.downloadFolder = folder(stored, "folders/downloads", {});
    settings.videoLimit = number(stored, "downloads/limit", 1, maxVideoLimit, 3);
    settings.connections = number(stored, "downloads/connections", 1, maxConnections, 3);
    settings.rateLimit = number(stored, "downloads/rateLimit", 1, maxRateLimit, 0);
    settings.thumbnails = flag(stored, "downloads/thumbnails", true);
    settings.extension = text(stored, "format/extension");
    settings.width = number(stored, "format/width", 1, largestSide, 0);
    settings.height = number(stored, "format/height", 1, largestSide, 0);
    if (settings.width == 0 || settings.height == 0)
        settings.width = settings.height = 0;
    settings.keepSource = flag(stored, "format/keepSource", false);
    settings.convert = flag(stored, "format/convert", false) && !settings.keepSource;
    using Type = ProxySettings::Type;
    settings.proxy.type = Type(number(stored, "proxy/type", int(Type::None),
                                      int(Type::Socks5RemoteNames), int(Type::None)));
    settings.proxy.host = text(stored, "proxy/host");
    settings.proxy.port = number(stored, "proxy/port", 1, 65535, 8080);
    settings.proxy.user = text(stored, "proxy/user");
    if (settings.proxy.host.isEmpty())
        settings.proxy.type = Type::None;
    settings.videoInfoCommand = text(stored, "site/videoInfoCommand");
    settings.trayIcon = flag(stored, "look/trayIcon", false);
    settings.notify = flag(stored, "look/notify", true);
    return settings;
}

void Settings::save(QSettings &stored) const
{
    const std::initializer_list<std::pair<const char *, QVariant>> values{
        {"folders/output", outputFolder},   {"folders/downloads", downloadFolder},
        {"downloads/limit", videoLimit},    {"downloads/connections", connections},
        {"downloads/rateLimit", rateLimit}, {"downloads/thumbnails", thumbnails},
        {"format/extension", extension},    {"format/width", width},
        {"format/height", height},          {"format/keepSource", keepSource},
        {"format/convert", convert},        {"proxy/type", int(proxy.type)},
        {"proxy/host", proxy.host},         {"proxy/port", proxy.port},
        {"proxy/user", proxy.user},         {"site/videoInfoCommand", videoInfoCommand},
        {"look/trayIcon", trayIcon},        {"look/notify", notify}};
    for (const auto &[key, value] : values)
        stored.setValue(QLatin1String(key), value);
}

bool Settings::asksExtractor() const
{
    const QString source = videoInfoCommand.trimmed();
    return source.isEmpty() || source == QLatin1String("auto");
}

bool Settings::hasVideoInfoCommand() const
{
    return !asksExtractor() && videoInfoCommand.trimmed() != QLatin1String("site");
}

Profile_Desc Settings::profile() const
{
    Profile_Desc profile;
    profile.includeVideo = true;
    profile.fileTypeExt = extension;
    profile.vSize_Width = width;
    profile.vSize_Height = height;
    return profile;
}

DownloadRequest Settings::request(const QString &address) const
{
    DownloadRequest request;
    request.address = address;
    request.outputFolder = outputFolder;
    request.downloadFolder = downloadFolder.isEmpty() ? outputFolder : downloadFolder;
    request.profile = profile();
    request.keepSource = keepSource;
    return request;
}
