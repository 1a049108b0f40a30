#include "strutil/narrowtext.h"

#include <atomic>

namespace narrowtext {

namespace {

std::atomic<Codec> currentCodec{Codec::Latin1};

// QString::toLatin1 leaves open what becomes of other characters; file names rely on "?".
std::string toLatin1(const QString &text)
{
    std::string result;
    result.reserve(size_t(text.size()));
    for (const QChar character : text)
        result.push_back(character.unicode() <= 0xff ? char(character.unicode()) : '?');
    return result;
}

} // namespace

void setCodec(Codec codec)
{
    currentCodec = codec;
}

Codec codec()
{
    return currentCodec;
}

QString fromNarrow(std::string_view text)
{
    const QByteArrayView bytes(text.data(), qsizetype(text.size()));
    return codec() == Codec::Utf8 ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

std::string toNarrow(const QString &text)
{
    return codec() == Codec::Utf8 ? text.toStdString() : toLatin1(text);
}

} // namespace narrowtext
