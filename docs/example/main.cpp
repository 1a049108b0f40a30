// Downloads videos: example FOLDER ADDRESS...
#include <driver/downloaddriver.h>
#include <strutil/narrowtext.h>

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = application.arguments();
    narrowtext::setCodec(narrowtext::Codec::Utf8); // titles in any script keep their names
    DownloadDriver::Settings settings;
    settings.downloadFolder = QDir(words.value(1)).absolutePath();
    DownloadDriver driver(settings);
    QObject::connect(&driver, &DownloadDriver::ended, [](const DownloadResult &result) {
        QTextStream(stdout) << result.address << ": " << result.path << result.failure.cause
                            << '\n';
    });
    QObject::connect(&driver, &DownloadDriver::idle, &application, &QCoreApplication::quit);
    for (const QString &address : words.mid(2)) {
        DownloadRequest request;
        request.address = address;
        driver.add(request);
    }
    return words.size() > 2 ? QCoreApplication::exec() : 2;
}
