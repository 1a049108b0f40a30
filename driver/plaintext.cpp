#include "driver/plaintext.h"

#include "strutil/narrowtext.h"
#include "sysutility/sysutility.h"

#include <QRegularExpression>

#include <algorithm>

namespace plaintext {

namespace {

bool isControl(QChar character)
{
    const char16_t code = character.unicode();
    if (code >= 0x20 && code < 0x7f) // nearly all are
        return false;
    const bool separator = code == 0x2028 || code == 0x2029;
    const bool direction = (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
    return character.category() == QChar::Other_Control || separator || direction;
}

bool isOrdinary(QChar character)
{
    return !character.isSurrogate() && !isControl(character);
}

bool isPair(const QString &text, qsizetype at)
{
    return text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
}

QString cleanedAsName(const QString &text)
{
    return narrowtext::fromNarrow(sysutility::MakeFileName(narrowtext::toNarrow(text)));
}

} // namespace

QString withoutControls(const QString &text, QChar replacement)
{
    if (std::all_of(text.cbegin(), text.cend(), isOrdinary))
        return text;
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isPair(text, i)) {
            result += text[i];
            result += text[++i];
        } else if (!isControl(text[i]) && !text[i].isSurrogate()) {
            result += text[i];
        } else if (!replacement.isNull()) {
            result += replacement;
        }
    }
    return result;
}

QString fileTitle(const QString &title, const QString &fallback)
{
    // The library fills "%1/%2%3" with the name in it: a digit behind a percent sign would be taken
    // for a place to fill.
    static const QRegularExpression placeMarker(QStringLiteral("%(?=L?[0-9])"));
    QString name = withoutControls(title).replace(placeMarker, QStringLiteral("% "));
    // What stays of a name can start with blanks again; the library would clean it once more.
    for (QString before; name != before;) {
        before = name;
        name = cleanedAsName(before);
    }
    return name.isEmpty() ? fallback : name;
}

} // namespace plaintext
