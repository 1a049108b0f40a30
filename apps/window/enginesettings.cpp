#include "enginesettings.h"

#include "driver/extractor.h"
#include "enginetexts.h"
#include "taskengine/failure.h"
#include "taskengine/options.h"
#include "taskengine/unfinishedfiles.h"

#include <QFile>
#include <QProcess>

std::optional<tagProxyParam> proxyParam(const ProxySettings &proxy)
{
    if (proxy.type == ProxySettings::Type::None)
        return std::nullopt;
    tagProxyParam param{};
    qstrncpy(param.szProxyText1, proxy.host.toUtf8().constData(), sizeof param.szProxyText1);
    param.nProxyValue1 = proxy.port;
    param.nProxyValue2 = int(proxy.type);
    qstrncpy(param.szProxyText2, proxy.user.toUtf8().constData(), sizeof param.szProxyText2);
    qstrncpy(param.szProxyText3, proxy.password.toUtf8().constData(), sizeof param.szProxyText3);
    return param;
}

QStringList unfinishedFiles(const QString &path)
{
    const auto files = taskengine::unfinishedFiles(QFile::encodeName(path).toStdString());
    return {QFile::decodeName(files.part.c_str()), QFile::decodeName(files.facts.c_str())};
}

void configureEngine(const Settings &settings)
{
    taskengine::Options options = taskengine::options();
    options.connections = settings.connections;
    options.rateLimit = std::size_t(settings.rateLimit) * 1024;
    options.videoInfoCommand.clear();
    options.fallbackCommand.clear();
    const QString extractor = settings.asksExtractor() ? extractor::findProgram() : QString();
    if (!extractor.isEmpty())
        options.fallbackCommand = {QFile::encodeName(extractor).toStdString()};
    if (settings.hasVideoInfoCommand()) {
        for (const QString &word : QProcess::splitCommand(settings.videoInfoCommand))
            options.videoInfoCommand.push_back(word.toLocal8Bit().toStdString());
    }
    taskengine::setOptions(options);
}

DownloadDriver::Settings driverSettings(const Settings &settings)
{
    DownloadDriver::Settings driver;
    driver.downloadFolder =
        settings.downloadFolder.isEmpty() ? settings.outputFolder : settings.downloadFolder;
    driver.videoLimit = settings.videoLimit;
    driver.thumbnails = settings.thumbnails;
    driver.proxy = proxyParam(settings.proxy);
    driver.unfinishedFiles = unfinishedFiles;
    driver.failureText = [](double code) {
        return enginetexts::translated(taskengine::failureText(code));
    };
    driver.failureAdvice = [](double code) {
        return enginetexts::translated(taskengine::failureAdvice(code));
    };
    driver.hasNoVideoInfo = taskengine::meansNoVideoInfo;
    driver.hasExpired = [](double code) { return code == 403 || code == 410; };
    return driver;
}
