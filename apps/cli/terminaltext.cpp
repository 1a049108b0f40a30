#include "terminaltext.h"

#include <QLocale>

#include <algorithm>
#include <cwchar>

namespace terminaltext {

namespace {

constexpr int leastLabel = 12;
constexpr int leastBar = 10;
constexpr qint64 longestWait = qint64{100} * 3600;

int columnsOf(char32_t character)
{
    const int width = wcwidth(static_cast<wchar_t>(character));
    return width < 0 ? 1 : width;
}

QString bar(const DownloadProgress &progress, int width)
{
    const double part = double(progress.received) / double(progress.total);
    const int full = std::clamp(int(part * width), 0, width);
    return u'[' + QString(full, u'#') + QString(width - full, u'-') + u']';
}

QString timeLeft(const DownloadProgress &progress)
{
    if (progress.bytesPerSecond <= 0 || progress.total < progress.received)
        return {};
    return duration((progress.total - progress.received) / progress.bytesPerSecond);
}

QString percent(const DownloadProgress &progress)
{
    const double part = double(progress.received) / double(progress.total);
    return QStringLiteral("%1%").arg(std::min(int(part * 100), 100), 3);
}

// The most important first: what does not fit is left out from the end. Of fixed widths, so that
// the bars stand in line.
QStringList facts(const DownloadProgress &progress)
{
    if (progress.total <= 0)
        return progress.received > 0 ? QStringList{size(progress.received)} : QStringList();
    const QString sizes = size(progress.received) + u'/' + size(progress.total);
    const QString speed = progress.bytesPerSecond > 0
                              ? size(progress.bytesPerSecond) + QLatin1String("/s")
                              : QString();
    return {percent(progress), sizes.rightJustified(21), speed.rightJustified(12),
            timeLeft(progress).rightJustified(5)};
}

} // namespace

int columns(const QString &text)
{
    int result = 0;
    for (const char32_t character : text.toUcs4())
        result += columnsOf(character);
    return result;
}

QString cut(const QString &text, int width)
{
    if (columns(text) <= width)
        return text;
    QString result;
    int used = 1; // the ellipsis
    for (const char32_t character : text.toUcs4()) {
        used += columnsOf(character);
        if (used > width)
            break;
        result += QString::fromUcs4(&character, 1);
    }
    return width < 1 ? QString() : result + QChar(0x2026);
}

QString fitted(const QString &text, int width)
{
    const QString part = cut(text, width);
    return part + QString(std::max(width - columns(part), 0), u' ');
}

QString size(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1);
}

QString duration(qint64 seconds)
{
    if (seconds < 0 || seconds >= longestWait)
        return {};
    QString minutesAndSeconds =
        QStringLiteral("%1:%2").arg(seconds / 60 % 60).arg(seconds % 60, 2, 10, QChar(u'0'));
    if (seconds < 3600)
        return minutesAndSeconds;
    return QStringLiteral("%1:%2")
        .arg(seconds / 3600)
        .arg(minutesAndSeconds.rightJustified(5, u'0'));
}

QString progressLine(const QString &label, const DownloadProgress &progress, int width)
{
    QStringList parts = facts(progress);
    const auto room = [&] { return width - columns(parts.join(QLatin1String("  "))) - 2; };
    while (!parts.isEmpty() && room() < leastLabel)
        parts.removeLast();
    const int forBar = std::min(room() / 2 - 4, 30);
    if (progress.total > 0 && forBar >= leastBar)
        parts.prepend(bar(progress, forBar));
    if (parts.isEmpty())
        return cut(label, width);
    return fitted(label, room()) + QLatin1String("  ") + parts.join(QLatin1String("  "));
}

} // namespace terminaltext
