#include "arguments.h"

#include "taskengine/options.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>

namespace arguments {

namespace {

// Frame areas are formed in 32 bits.
constexpr int longestSide = 30000;

bool isSide(int pixels)
{
    return pixels >= 1 && pixels <= longestSide;
}

template <std::size_t Size>
bool fill(char (&field)[Size], const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    if (bytes.size() >= qsizetype(Size))
        return false;
    std::memcpy(field, bytes.constData(), std::size_t(bytes.size()));
    return true;
}

bool open(QFile &file, const QString &name)
{
    if (name == QLatin1String("-"))
        return file.open(stdin, QIODevice::ReadOnly);
    file.setFileName(name);
    return !QFileInfo(name).isDir() && file.open(QIODevice::ReadOnly);
}

Wrong unreadable(const QFile &file, const QString &name)
{
    const QString why =
        QFileInfo(name).isDir() ? QStringLiteral("it is a folder") : file.errorString();
    return {QStringLiteral("the list \"%1\" cannot be read (%2)").arg(name, why)};
}

} // namespace

Read<Profile_Desc> profile(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^([A-Za-z0-9]{1,16})(?::([0-9]{1,9})[xX]([0-9]{1,9}))?$"));
    const auto match = form.match(text);
    Profile_Desc result;
    result.fileTypeExt = match.captured(1).toLower();
    result.includeVideo = true;
    result.includeAudio = true;
    if (match.hasCaptured(2)) {
        result.vSize_Width = match.captured(2).toInt();
        result.vSize_Height = match.captured(3).toInt();
        if (!isSide(result.vSize_Width) || !isSide(result.vSize_Height))
            return Wrong{QStringLiteral("width and height go from 1 to %1").arg(longestSide)};
    }
    if (!match.hasMatch())
        return Wrong{QStringLiteral("\"%1\" is not of the form EXT or EXT:WIDTHxHEIGHT").arg(text)};
    return result;
}

Read<int> count(const QString &text, int most, int least)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber || number < least || number > most)
        return Wrong{
            QStringLiteral("\"%1\" is not a number from %2 to %3").arg(text).arg(least).arg(most)};
    return number;
}

Read<qint64> rate(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^([0-9]{1,12}(?:\\.[0-9]{1,9})?)([KkMmGg]?)$"));
    const auto match = form.match(text);
    const auto power = QStringLiteral(" kmg").indexOf(match.captured(2).toLower());
    const double bytes = match.captured(1).toDouble() *
                         double(qint64{1} << (match.captured(2).isEmpty() ? 0 : 10 * power));
    if (!match.hasMatch() || bytes < 1024 || bytes > 1e12)
        return Wrong{
            QStringLiteral("\"%1\" is not a rate of at least 1K, as 500K or 2M").arg(text)};
    return qint64(bytes);
}

Read<QString> fieldValue(const QString &text)
{
    const bool isPlain = std::all_of(text.begin(), text.end(),
                                     [](QChar c) { return c >= u' ' && c != QChar(0x7f); });
    if (text.trimmed().isEmpty() || !isPlain)
        return Wrong{QStringLiteral("it is empty, or has characters that a header cannot carry")};
    return text.trimmed();
}

Read<QString> firstLine(const QString &name)
{
    QFile file(name);
    if (!open(file, name))
        return Wrong{QStringLiteral("\"%1\" cannot be read").arg(name)};
    return QString::fromUtf8(file.readLine(4096)).remove(u'\n').remove(u'\r');
}

Read<tagProxyParam> withPassword(tagProxyParam proxy, const QString &password)
{
    if (proxy.szProxyText3[0] == '\0' && !fill(proxy.szProxyText3, password))
        return Wrong{QStringLiteral("the password takes at most 127 bytes")};
    return proxy;
}

Read<tagProxyParam> proxy(const QString &text)
{
    using taskengine::ProxyType;
    static const std::map<QString, ProxyType> types{
        {QStringLiteral("http"), ProxyType::Http},
        {QStringLiteral("socks5"), ProxyType::Socks5},
        {QStringLiteral("socks5h"), ProxyType::Socks5RemoteNames}};
    const QUrl url(text.contains(QLatin1String("://")) ? text : QLatin1String("http://") + text);
    const auto type = types.find(url.scheme());
    const bool nothingElse =
        (url.path().isEmpty() || url.path() == u'/') && !url.hasQuery() && !url.hasFragment();
    // The text may hold a password: it is not repeated.
    if (!url.isValid() || type == types.end() || url.host().isEmpty() || url.port() < 1 ||
        !nothingElse)
        return Wrong{QStringLiteral(
            "the proxy is not of the form [http|socks5|socks5h://][user[:password]@]host:port")};
    tagProxyParam result = {};
    result.nProxyValue1 = url.port();
    result.nProxyValue2 = static_cast<int>(type->second);
    if (!fill(result.szProxyText1, url.host()) ||
        !fill(result.szProxyText2, url.userName(QUrl::FullyDecoded)) ||
        !fill(result.szProxyText3, url.password(QUrl::FullyDecoded)))
        return Wrong{QStringLiteral("host, user and password take at most 127 bytes each")};
    return result;
}

Read<QStringList> listFile(const QString &name)
{
    QFile file;
    if (!open(file, name))
        return unreadable(file, name);
    const QString text = QString::fromUtf8(file.readAll()); // passes over a byte order mark
    if (file.error() != QFileDevice::NoError)
        return unreadable(file, name);
    QStringList addresses;
    for (const QString &line : text.split(u'\n')) {
        const QString address = line.trimmed();
        if (!address.isEmpty() && !address.startsWith(u'#'))
            addresses << address;
    }
    return addresses;
}

Read<QStringList> command(const QString &text)
{
    const QStringList words = QProcess::splitCommand(text);
    if (words.isEmpty())
        return Wrong{QStringLiteral("the command is empty")};
    return words;
}

} // namespace arguments
