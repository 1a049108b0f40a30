#include "extract/httpheaders.h"

#include <QJsonObject>
#include <QString>

#include <algorithm>

namespace {

bool isOneOf(const QByteArray &name, std::initializer_list<const char *> names)
{
    return std::any_of(names.begin(), names.end(), [&name](const char *other) {
        return name.compare(other, Qt::CaseInsensitive) == 0;
    });
}

// RFC 9110, section 5.6.2: a token.
bool isName(const QByteArray &name)
{
    return !name.isEmpty() && std::all_of(name.cbegin(), name.cend(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               QByteArray("!#$%&'*+-.^_`|~").contains(c);
    });
}

bool isValue(const QByteArray &value)
{
    return std::all_of(value.cbegin(), value.cend(), [](char c) {
        return c == '\t' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7f);
    });
}

bool isDownloaders(const QByteArray &name)
{
    return isOneOf(name, {"Host", "Content-Length", "Range", "If-Range", "Transfer-Encoding",
                          "Connection", "Accept-Encoding", "TE", "Upgrade"});
}

bool isAttribute(const QByteArray &name)
{
    return isOneOf(name, {"Domain", "Path", "Secure", "Expires", "Max-Age", "Version", "HttpOnly",
                          "SameSite", "Comment", "Port", "Discard"});
}

// Up to the next semicolon outside quotes, and gone from `rest` with it.
QByteArray takePart(QByteArray &rest)
{
    qsizetype end = 0;
    for (bool quoted = false; end < rest.size() && (quoted || rest[end] != ';'); ++end) {
        if (rest[end] == '\\' && quoted)
            ++end;
        else if (rest[end] == '"')
            quoted = !quoted;
    }
    QByteArray part = rest.left(end).trimmed();
    rest.remove(0, end + 1);
    return part;
}

// As in a Cookie field: what Set-Cookie would have beside the names and values is left out.
QByteArray cookieField(QByteArray cookies)
{
    QByteArray field;
    while (!cookies.isEmpty()) {
        const QByteArray part = takePart(cookies);
        const qsizetype sign = part.indexOf('=');
        if (sign > 0 && !isAttribute(part.left(sign).trimmed()))
            field += (field.isEmpty() ? "" : "; ") + part;
    }
    return field;
}

void add(HttpHeaders &headers, const QByteArray &name, const QByteArray &value)
{
    if (isName(name) && isValue(value) && !value.trimmed().isEmpty() && !isDownloaders(name))
        headers.append({name, value.trimmed()});
}

} // namespace

namespace httpheaders {

HttpHeaders of(const QJsonObject &format, const QJsonObject &page)
{
    const auto field = [&](const QString &name) {
        const QJsonValue own = format.value(name);
        return own.isUndefined() || own.isNull() ? page.value(name) : own;
    };
    HttpHeaders headers;
    const QJsonObject fields = field(QStringLiteral("http_headers")).toObject();
    for (auto each = fields.begin(); each != fields.end(); ++each)
        add(headers, each.key().toUtf8(), each.value().toString().toUtf8());
    const bool hasCookie = std::any_of(headers.cbegin(), headers.cend(), [](const auto &header) {
        return isOneOf(header.first, {"Cookie"});
    });
    if (!hasCookie)
        add(headers, "Cookie", cookieField(field(QStringLiteral("cookies")).toString().toUtf8()));
    return headers;
}

bool areSecret(const HttpHeaders &headers)
{
    return std::any_of(headers.cbegin(), headers.cend(), [](const auto &header) {
        return isOneOf(header.first, {"Cookie", "Authorization"});
    });
}

} // namespace httpheaders
