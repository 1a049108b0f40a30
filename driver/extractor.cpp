#include "driver/extractor.h"

#include <QCoreApplication>
#include <QStandardPaths>

namespace extractor {

QString findProgram()
{
    if (QStandardPaths::findExecutable(QStringLiteral("yt-dlp")).isEmpty())
        return {};
    const QString name = QStringLiteral("videodown-extract");
    const QString here = QCoreApplication::applicationDirPath();
    const QString beside =
        QStandardPaths::findExecutable(name, {here, here + QLatin1String("/../extract")});
    return beside.isEmpty() ? QStandardPaths::findExecutable(name) : beside;
}

} // namespace extractor
