/** The window's settings, as engine and driver take them. */
#ifndef VIDEODOWN_WINDOW_ENGINESETTINGS_H
#define VIDEODOWN_WINDOW_ENGINESETTINGS_H

#include "driver/downloaddriver.h"
#include "settings.h"

/** Hands the settings to the default engine; they hold for requests from now on. */
void configureEngine(const Settings &settings);

/** The files that an unfinished download to this path has. */
QStringList unfinishedFiles(const QString &path);

/** Nothing when no proxy is to be used. */
std::optional<tagProxyParam> proxyParam(const ProxySettings &proxy);

DownloadDriver::Settings driverSettings(const Settings &settings);

#endif
