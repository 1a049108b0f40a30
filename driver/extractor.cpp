#include "driver/extractor.h"

#include "driver/texts.h"

#include <QCoreApplication>
#include <QStandardPaths>

namespace extractor {

namespace {

bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

QString ownProgram()
{
    const QString name = QStringLiteral("videodown-extract");
    const QString here = QCoreApplication::applicationDirPath();
    const QString beside =
        QStandardPaths::findExecutable(name, {here, here + QLatin1String("/../extract")});
    return beside.isEmpty() ? QStandardPaths::findExecutable(name) : beside;
}

} // namespace

QString findProgram()
{
    return isInstalled(QStringLiteral("yt-dlp")) ? ownProgram() : QString();
}

QString missingProgram()
{
    if (!isInstalled(QStringLiteral("yt-dlp")))
        return QStringLiteral("yt-dlp");
    return ownProgram().isEmpty() ? QStringLiteral("videodown-extract") : QString();
}

FailureReason withoutProgram(const QString &cause, const QString &program)
{
    const QString package =
        program == QLatin1String("videodown-extract") ? QStringLiteral("videodown") : program;
    return {Texts::tr("the site has no video info (%1), and %2, which might know the page, is not "
                      "installed")
                .arg(cause, program),
            Texts::tr("Check the address, or install the package %1.").arg(package)};
}

} // namespace extractor
