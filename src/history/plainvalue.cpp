#include "history/plainvalue.h"

#include "history/taskelement.h"

#include <algorithm>
#include <array>
#include <limits>

namespace plainvalue {

namespace {

enum class Kind : unsigned char { Plain, Other, Tag, Reference, Bracket, Wide };

constexpr std::array<Kind, 256> makeKinds()
{
    std::array<Kind, 256> kinds{};
    for (std::size_t byte = 0; byte < kinds.size(); ++byte)
        kinds[byte] = byte < 0x20 ? Kind::Other : byte < 0x80 ? Kind::Plain : Kind::Wide;
    kinds['\t'] = Kind::Plain;
    kinds['\n'] = Kind::Plain;
    kinds['<'] = Kind::Tag;
    kinds['&'] = Kind::Reference;
    kinds['>'] = Kind::Bracket;
    return kinds;
}

constexpr std::array<Kind, 256> kinds = makeKinds();

Kind kindOf(char byte)
{
    return kinds[static_cast<unsigned char>(byte)];
}

struct Reference
{
    std::string_view text;
    char character;
};

constexpr std::array<Reference, 4> references = {
    {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&#xd;", '\r'}}};

const Reference *referenceAt(const char *at, const char *limit)
{
    const std::string_view rest(at, std::size_t(limit - at));
    for (const Reference &reference : references) {
        if (rest.substr(0, reference.text.size()) == reference.text)
            return &reference;
    }
    return nullptr;
}

// 0 for none that is written; what the limit cuts reaches to the limit.
qsizetype referenceLength(const char *at, const char *limit)
{
    if (const Reference *reference = referenceAt(at, limit))
        return qsizetype(reference->text.size());
    constexpr qsizetype longest = 5;
    return limit - at < longest ? limit - at : 0;
}

// Such a bracket ends a section that was never begun.
bool endsSection(const char *begin, const char *at)
{
    return at - begin >= 2 && at[-1] == ']' && at[-2] == ']';
}

std::string_view unescaped(const Text &text, std::string &scratch)
{
    if (!text.hasReferences)
        return {text.begin, std::size_t(text.end - text.begin)};
    scratch.clear();
    for (const char *at = text.begin; at < text.end;) {
        const Reference *reference = *at == '&' ? referenceAt(at, text.end) : nullptr;
        scratch += reference != nullptr ? reference->character : *at;
        at += reference != nullptr ? reference->text.size() : 1;
    }
    return scratch;
}

// A byte order mark is a character here, which Qt's decoder takes away; and XML cannot carry U+FFFE
// and U+FFFF.
bool isSoundUtf8(std::string_view bytes)
{
    constexpr auto none = std::string_view::npos;
    return QByteArrayView(bytes.data(), qsizetype(bytes.size())).isValidUtf8() &&
           bytes.substr(0, 3) != "\xef\xbb\xbf" && bytes.find("\xef\xbf\xbe") == none &&
           bytes.find("\xef\xbf\xbf") == none;
}

// As for every reader of the history, white space alone is no text.
bool isBlank(const QString &text)
{
    return text.front().isSpace() && QStringView(text).trimmed().isEmpty();
}

bool decode(const Text &text, QString &value, std::string &scratch)
{
    const std::string_view bytes = unescaped(text, scratch);
    if (!text.isAscii && !isSoundUtf8(bytes))
        return false;
    value = text.isAscii ? QString::fromLatin1(bytes.data(), qsizetype(bytes.size()))
                         : QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
    if (value.isEmpty() || isBlank(value))
        value = QStringLiteral("");
    return true;
}

template <typename Value>
bool readDecoded(const Text &text, Value &value, std::string &scratch)
{
    QString decoded;
    if (!decode(text, decoded, scratch))
        return false;
    taskelement::fromText(decoded, value);
    return true;
}

// Numbers of few digits, which nearly all are, need no text.
template <typename Number>
bool readNumber(const Text &text, Number &value, std::string &scratch)
{
    constexpr qsizetype most = std::numeric_limits<Number>::digits10;
    const bool isNegative = *text.begin == '-';
    const char *digits = text.begin + (isNegative ? 1 : 0);
    const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
    if (digits >= text.end || text.end - digits > most || !std::all_of(digits, text.end, isDigit))
        return readDecoded(text, value, scratch);
    Number number = 0;
    for (const char *at = digits; at < text.end; ++at)
        number = number * 10 + (*at - '0');
    value = isNegative ? -number : number;
    return true;
}

std::string_view bytesOf(const Text &text)
{
    return {text.begin, std::size_t(text.end - text.begin)};
}

} // namespace

std::optional<Text> textAt(const char *begin, const char *limit)
{
    Text text{begin, begin, false, true};
    while (text.end < limit && kindOf(*text.end) != Kind::Tag) {
        const Kind kind = kindOf(*text.end);
        if (kind == Kind::Other || (kind == Kind::Bracket && endsSection(begin, text.end)))
            return std::nullopt;
        qsizetype length = 1;
        if (kind == Kind::Reference) {
            length = referenceLength(text.end, limit);
            text.hasReferences = true;
        }
        if (length == 0)
            return std::nullopt;
        text.isAscii = text.isAscii && kind != Kind::Wide;
        text.end += length;
    }
    return text;
}

bool read(const Text &text, QString &value, const QString *like, std::string &scratch)
{
    const std::string_view bytes = bytesOf(text);
    if (like != nullptr && text.isAscii && !text.hasReferences &&
        *like == QLatin1String(bytes.data(), qsizetype(bytes.size()))) {
        value = *like;
        return true;
    }
    return decode(text, value, scratch);
}

bool read(const Text &text, int &value, const int * /*like*/, std::string &scratch)
{
    return readNumber(text, value, scratch);
}

bool read(const Text &text, qint64 &value, const qint64 * /*like*/, std::string &scratch)
{
    return readNumber(text, value, scratch);
}

bool read(const Text &text, QDateTime &value, const QDateTime * /*like*/, std::string &scratch)
{
    std::array<char16_t, 32> wide{};
    if (!text.isAscii || text.hasReferences || text.end - text.begin > qsizetype(wide.size()))
        return readDecoded(text, value, scratch);
    std::copy(text.begin, text.end, wide.begin());
    value = taskelement::readDateTime(QStringView(wide.data(), text.end - text.begin));
    return true;
}

bool read(const Text &text, bool &value, const bool * /*like*/, std::string &scratch)
{
    if (bytesOf(text) != "true" && bytesOf(text) != "false")
        return readDecoded(text, value, scratch);
    value = bytesOf(text) == "true";
    return true;
}

bool read(const Text &text, float &value, const float * /*like*/, std::string &scratch)
{
    if (bytesOf(text) != "0")
        return readDecoded(text, value, scratch);
    value = 0;
    return true;
}

} // namespace plainvalue
