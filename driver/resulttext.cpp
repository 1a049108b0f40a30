#include "driver/resulttext.h"

namespace resulttext {

namespace {

constexpr qsizetype longestName = 200;

QString sizeText(const PictureSize &picture)
{
    return QStringLiteral("%1x%2").arg(picture.width).arg(picture.height);
}

QString failureOf(const DownloadResult &result)
{
    QString line = QStringLiteral("failed: %1: %2").arg(nameOf(result), result.failure.cause);
    if (!result.failure.advice.isEmpty())
        line += QLatin1String(line.endsWith(u'.') ? " " : ". ") + result.failure.advice;
    return line;
}

QString conflictOf(const DownloadResult &result)
{
    const QString name = nameOf(result);
    return result.overwrote
               ? QStringLiteral("downloaded: %1, overwriting \"%2\"").arg(name, result.path)
               : QStringLiteral("downloaded: %1, as \"%2\": %3")
                     .arg(name, result.path, result.notOverwritten);
}

QString findingOf(const DownloadResult &result)
{
    const QString name = nameOf(result);
    const QString former = sizeText(result.former);
    switch (result.finding) {
    case Finding::AlreadyThere:
        return QStringLiteral("already there: ") + name;
    case Finding::AlreadyAsLarge:
        return QStringLiteral("already as large: %1, %2").arg(name, former);
    case Finding::NoneLarger:
        return QStringLiteral("the site has no larger one: %1, %2").arg(name, former);
    case Finding::Downloaded:
        break;
    }
    return result.former.width > 0 ? QStringLiteral("downloaded: %1, from %2 to %3")
                                         .arg(name, former, sizeText(result.picture))
                                   : QString();
}

} // namespace

QString nameOf(const DownloadResult &result)
{
    QString address = result.address;
    if (address.size() > longestName)
        address = address.left(longestName) + QChar(0x2026);
    return result.title.isEmpty() ? address : QStringLiteral("%1 (%2)").arg(result.title, address);
}

QString summaryOf(const DownloadResult &result)
{
    switch (result.outcome) {
    case DownloadOutcome::Failed:
        return failureOf(result);
    case DownloadOutcome::Stopped:
        return QStringLiteral("stopped: ") + nameOf(result);
    case DownloadOutcome::Skipped:
        return QStringLiteral("skipped: %1: \"%2\" is there").arg(nameOf(result), result.path);
    case DownloadOutcome::Finished:
        break;
    }
    if (result.overwrote || !result.notOverwritten.isEmpty())
        return conflictOf(result);
    return findingOf(result);
}

} // namespace resulttext
