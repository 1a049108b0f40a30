#include "driver/videoanswer.h"

#include "driver/plaintext.h"
#include "driver/texts.h"

#include <algorithm>

namespace {

// A field that the library does not keep; empty when the response has none.
QString fieldOf(const QString &videoInfoText, QLatin1String key)
{
    for (const QString &line : videoInfoText.split(u'\n')) {
        if (line.startsWith(key))
            return plaintext::withoutControls(line.mid(key.size())).trimmed();
    }
    return {};
}

// What a mistake's word in "command_fault" stands for; %1 is the piece that it is about.
QString mistakeText(const QString &kind)
{
    if (kind == QLatin1String("encoding"))
        return Texts::tr("it is not UTF-8");
    if (kind == QLatin1String("blanks"))
        return Texts::tr("there are blanks before the key or around the equals sign: \"%1\"");
    if (kind == QLatin1String("size"))
        return Texts::tr("\"%1\" is not of the form N/WIDTHxHEIGHT");
    if (kind == QLatin1String("container"))
        return Texts::tr("the number of \"%1\" stands for no container: 18, 22, 37 and 38 are MP4, "
                         "5, 34 and 35 are FLV");
    if (kind == QLatin1String("comma"))
        return Texts::tr("\"%1\" does not begin with a number and a bar: a comma inside an address "
                         "is written %2");
    if (kind == QLatin1String("bar"))
        return Texts::tr("\"%1\" has a second bar: a bar inside an address is written %2");
    if (kind == QLatin1String("address"))
        return Texts::tr("\"%1\" has no address of HTTP or HTTPS with at most 1023 bytes");
    if (kind == QLatin1String("single"))
        return Texts::tr("the format %1 is only in one of fmt_list and fmt_stream_map");
    return Texts::tr("there is no line \"%1=...\"");
}

// From "LINE KIND DETAIL".
QString mistakeIn(const QString &fault)
{
    const int line = fault.section(u' ', 0, 0).toInt();
    const QString kind = fault.section(u' ', 1, 1);
    const QString code =
        kind == QLatin1String("bar") ? QStringLiteral("%7C") : QStringLiteral("%2C");
    QString text = mistakeText(kind);
    if (text.contains(QLatin1String("%2")))
        text = text.arg(fault.section(u' ', 2), code);
    else if (text.contains(QLatin1String("%1")))
        text = text.arg(fault.section(u' ', 2));
    return line > 0 ? Texts::tr("line %1: %2").arg(QString::number(line), text) : text;
}

} // namespace

AnswerSource answerSourceOf(const CXMLInfo &record)
{
    return answerSourceOf(record.fmt_list);
}

AnswerSource answerSourceOf(const QString &fmtList)
{
    const QString first = fmtList.section(u',', 0, 0);
    if (first.isEmpty())
        return AnswerSource::Unknown;
    if (first.endsWith(QLatin1String("/by=command")))
        return AnswerSource::Command;
    return first.endsWith(QLatin1String("/by=fallback")) ? AnswerSource::Extractor
                                                         : AnswerSource::Site;
}

QString answerSourceName(AnswerSource source)
{
    switch (source) {
    case AnswerSource::Site:
        return QStringLiteral("site");
    case AnswerSource::Command:
        return QStringLiteral("command");
    case AnswerSource::Extractor:
        return QStringLiteral("extractor");
    case AnswerSource::Unknown:
        break;
    }
    return {};
}

FailureReason nothingOffered(const QString &videoInfoText, const QString &advice)
{
    const QString fault = fieldOf(videoInfoText, QLatin1String("command_fault="));
    if (!fault.isEmpty())
        return {
            Texts::tr("a mistake in what the video-info command prints: %1").arg(mistakeIn(fault)),
            Texts::tr("Run the command by hand with this address to see what it says.")};
    const QString reason = fieldOf(videoInfoText, QLatin1String("reason="));
    const QString source = fieldOf(videoInfoText, QLatin1String("answered_by="));
    if (!reason.isEmpty() && source == QLatin1String("fallback"))
        return {Texts::tr("the site has no video info, and the extractor says: %1").arg(reason),
                advice};
    return {reason.isEmpty() ? Texts::tr("the site offers no formats of this video")
                             : Texts::tr("the site refuses this video: %1").arg(reason),
            advice};
}
