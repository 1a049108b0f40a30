#include "down/cdown.h"
#include "down/paths.h"
#include "md5/cmd5.h"

#include <algorithm>
#include <iterator>

namespace {

char upperCase(char hexDigit)
{
    return hexDigit >= 'a' ? static_cast<char>(hexDigit - 'a' + 'A') : hexDigit;
}

} // namespace

QString CDown::GetURLToMD5(const QString &url)
{
    if (url.isEmpty())
        return QStringLiteral("");
    char digest[33] = {};
    CMD5().MD5(localForm(url).constData(), digest);
    std::transform(std::begin(digest), std::end(digest), std::begin(digest), upperCase);
    return QString::fromLatin1(digest);
}
