#include "history/taskelement.h"

#include <QDomDocument>

#include <array>
#include <optional>

#define FIELD(Record, name)                                                                        \
    Field<Record>                                                                                  \
    {                                                                                              \
        QLatin1String(#name), &Record::name                                                        \
    }

namespace taskelement {

namespace {

const QString trueText = QStringLiteral("true");
const QString falseText = QStringLiteral("false");

const QString &BoolToString(const bool &value)
{
    return value ? trueText : falseText;
}

bool isCarryable(char16_t character)
{
    return character >= 0x20 ? character < 0xfffe
                             : character == u'\t' || character == u'\n' || character == u'\r';
}

// The length of the whole character at `at`: 0 when XML cannot carry it.
int carryableLength(const QString &text, qsizetype at)
{
    const QChar character = text.at(at);
    if (!character.isSurrogate())
        return isCarryable(character.unicode()) ? 1 : 0;
    const bool pair =
        character.isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate();
    return pair ? 2 : 0;
}

// Reads `least` to `most` digits from the front of `text`.
std::optional<int> takeNumber(QStringView &text, int least, int most)
{
    int value = 0;
    int digits = 0;
    while (digits < most && digits < text.size() && text[digits] >= u'0' && text[digits] <= u'9')
        value = value * 10 + (text[digits++].unicode() - u'0');
    if (digits < least)
        return std::nullopt;
    text = text.sliced(digits);
    return value;
}

bool take(QStringView &text, QChar separator)
{
    if (!text.startsWith(separator))
        return false;
    text = text.sliced(1);
    return true;
}

// Every local time makes the C library look whether the time zone file has changed. The dates of a
// task, and of its neighbours, are mostly the same few, so the last ones are kept at hand.
QDateTime localTime(QDate date, QTime time)
{
    struct Known
    {
        QDate date;
        QTime time;
        QDateTime value;
    };
    static thread_local std::array<Known, 4> known;
    static thread_local std::size_t oldest = 0;
    for (const Known &one : known) {
        if (one.time == time && one.date == date)
            return one.value;
    }
    QDateTime value(date, time);
    known[oldest++ % known.size()] = {date, time, value};
    return value;
}

template <typename Record>
std::vector<Tags> tagsOf(const std::vector<Field<Record>> &fields, std::size_t indentation)
{
    std::vector<Tags> tags;
    for (const auto &field : fields) {
        const std::string name(field.name.data(), std::size_t(field.name.size()));
        tags.push_back({std::string(indentation, ' ') + '<' + name + '>', "</" + name + ">\n"});
    }
    return tags;
}

} // namespace

// "yyyy-M-d h:m:s". Parsed here rather than by QDateTime, which calls a time invalid that the local
// clock skipped, and is several times slower.
QDateTime readDateTime(QStringView text)
{
    const auto year = takeNumber(text, 4, 4);
    const auto month = take(text, u'-') ? takeNumber(text, 1, 2) : std::nullopt;
    const auto day = take(text, u'-') ? takeNumber(text, 1, 2) : std::nullopt;
    const auto hour = take(text, u' ') ? takeNumber(text, 1, 2) : std::nullopt;
    const auto minute = take(text, u':') ? takeNumber(text, 1, 2) : std::nullopt;
    const auto second = take(text, u':') ? takeNumber(text, 1, 2) : std::nullopt;
    if (!year || !month || !day || !hour || !minute || !second || !text.isEmpty())
        return {};
    const QDate date(*year, *month, *day);
    const QTime time(*hour, *minute, *second);
    return date.isValid() && time.isValid() ? localTime(date, time) : QDateTime();
}

QString carryable(const QString &text)
{
    QString result = text;
    for (qsizetype at = 0; at < text.size();) {
        const int length = carryableLength(text, at);
        if (length == 0)
            result[at] = QChar::ReplacementCharacter;
        at += qMax(length, 1);
    }
    return result;
}

const std::vector<Field<CXMLInfo>> &infoFields()
{
    static const std::vector<Field<CXMLInfo>> fields = {
        FIELD(CXMLInfo, CategoryID),
        FIELD(CXMLInfo, MD5Code),
        FIELD(CXMLInfo, DownLoadDate),
        FIELD(CXMLInfo, Title),
        FIELD(CXMLInfo, OrgWebSite),
        FIELD(CXMLInfo, fmt_stream_map),
        FIELD(CXMLInfo, fmt_list),
        FIELD(CXMLInfo, DownLoadURL),
        FIELD(CXMLInfo, VideoWidth),
        FIELD(CXMLInfo, VideoHeight),
        FIELD(CXMLInfo, VideoExt),
        FIELD(CXMLInfo, UrlByAction),
        FIELD(CXMLInfo, TaskCreateTime),
        FIELD(CXMLInfo, DownLoadStartTime),
        FIELD(CXMLInfo, DownLoadFinishTime),
        FIELD(CXMLInfo, FileName),
        FIELD(CXMLInfo, BaseName),
        FIELD(CXMLInfo, SaveAsPath),
        FIELD(CXMLInfo, SaveAsFileName),
        FIELD(CXMLInfo, SaveAsExt),
        FIELD(CXMLInfo, FileSize),
        FIELD(CXMLInfo, ImageURL),
        FIELD(CXMLInfo, ImagePath),
        FIELD(CXMLInfo, State),
        FIELD(CXMLInfo, HasDownLoad),
        FIELD(CXMLInfo, Progress),
        FIELD(CXMLInfo, Speed),
        FIELD(CXMLInfo, ThreadNum),
        FIELD(CXMLInfo, Duration),
        FIELD(CXMLInfo, IsOrgVideo),
        FIELD(CXMLInfo, VideoTime),
        FIELD(CXMLInfo, ConvertionDesc),
        FIELD(CXMLInfo, UseyoutobeTitle),
        FIELD(CXMLInfo, VideoID),
        FIELD(CXMLInfo, ParseState),
        FIELD(CXMLInfo, DownState),
    };
    return fields;
}

const std::vector<Field<Profile_Desc>> &profileFields()
{
    static const std::vector<Field<Profile_Desc>> fields = {
        FIELD(Profile_Desc, kindID),       FIELD(Profile_Desc, fileTypeID),
        FIELD(Profile_Desc, fileTypeExt),  FIELD(Profile_Desc, outFormat),
        FIELD(Profile_Desc, includeVideo), FIELD(Profile_Desc, vCodecID),
        FIELD(Profile_Desc, vCodecFcc),    FIELD(Profile_Desc, vCodecLevel),
        FIELD(Profile_Desc, vQuality),     FIELD(Profile_Desc, aQuality),
        FIELD(Profile_Desc, vBitRate),     FIELD(Profile_Desc, userOrginalSize),
        FIELD(Profile_Desc, vSize_Width),  FIELD(Profile_Desc, vSize_Height),
        FIELD(Profile_Desc, vFps),         FIELD(Profile_Desc, vAspect),
        FIELD(Profile_Desc, interlaced),   FIELD(Profile_Desc, mplex),
        FIELD(Profile_Desc, includeAudio), FIELD(Profile_Desc, aCodecID),
        FIELD(Profile_Desc, aBitRate),     FIELD(Profile_Desc, aSampleRate),
        FIELD(Profile_Desc, aChannels),    FIELD(Profile_Desc, aVolume),
        FIELD(Profile_Desc, pspTitle),
    };
    return fields;
}

const std::vector<Tags> &infoTags()
{
    static const std::vector<Tags> tags = tagsOf(infoFields(), 15);
    return tags;
}

const std::vector<Tags> &profileTags()
{
    static const std::vector<Tags> tags = tagsOf(profileFields(), 18);
    return tags;
}

QString toText(const QString &value)
{
    return value;
}

QString toText(int value)
{
    return QString::number(value);
}

QString toText(qint64 value)
{
    return QString::number(value);
}

// Date and time are judged apart: a local time that the clock skipped is no valid QDateTime, but
// it is what the record holds. The form has no room for years of more or less than four digits.
DateTimeText::DateTimeText(const QDateTime &value)
{
    int year = 0;
    int month = 0;
    int day = 0;
    value.date().getDate(&year, &month, &day); // zeros, when it is invalid
    const QTime time = value.time();
    if (!time.isValid() || year < 1 || year > 9999)
        return;
    put(year, 4);
    put('-');
    put(month, 1);
    put('-');
    put(day, 1);
    put(' ');
    put(time.hour(), 1);
    put(':');
    put(time.minute(), 1);
    put(':');
    put(time.second(), 1);
}

// At least so many digits, at most four.
void DateTimeText::put(int number, int digits)
{
    for (int place = 1000, left = 4; place > 0; place /= 10, --left) {
        if (left <= digits || number >= place)
            put(char('0' + number / place % 10));
    }
}

QString toText(const QDateTime &value)
{
    const DateTimeText text(value);
    return QString::fromLatin1(text.view().data(), qsizetype(text.view().size()));
}

QString toText(bool value)
{
    return BoolToString(value);
}

QString toText(float value)
{
    return QString::number(static_cast<double>(value), 'g', 6);
}

void fromText(const QString &text, QString &value)
{
    value = text.isNull() ? QStringLiteral("") : text;
}

void fromText(const QString &text, int &value)
{
    value = text.toInt();
}

void fromText(const QString &text, qint64 &value)
{
    value = text.toLongLong();
}

void fromText(const QString &text, QDateTime &value)
{
    value = readDateTime(text);
}

void fromText(const QString &text, bool &value)
{
    value = text.compare(trueText, Qt::CaseInsensitive) == 0;
}

void fromText(const QString &text, float &value)
{
    bool ok = false;
    const float number = text.toFloat(&ok);
    value = ok ? number : 0;
}

namespace {

template <typename Record>
void fillFromChildren(Record &record, const std::vector<Field<Record>> &fields,
                      const QDomElement &parent)
{
    Filler<Record> filler(record, fields);
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const int index = filler.find(node.nodeName());
        if (index >= 0)
            filler.fill(index, node.toElement().text());
    }
}

QDomElement firstChildNamed(const QDomElement &parent, QLatin1String name)
{
    QDomNode node = parent.firstChild();
    while (!node.isNull() && node.nodeName() != name)
        node = node.nextSibling();
    return node.toElement();
}

} // namespace

} // namespace taskelement

void CXMLInfo::createSubTextNode(QDomDocument &doc, QDomElement &parent, const QString &name,
                                 const QString &value)
{
    QDomElement element = doc.createElement(name);
    element.appendChild(doc.createTextNode(taskelement::carryable(value)));
    parent.appendChild(element);
}

void CXMLInfo::toDomNode(QDomDocument &doc, QDomElement &parent)
{
    for (const auto &field : taskelement::infoFields())
        createSubTextNode(doc, parent, field.name, taskelement::fieldText(*this, field));
    QDomElement profile = doc.createElement(QStringLiteral("Profile"));
    parent.appendChild(profile);
    for (const auto &field : taskelement::profileFields())
        createSubTextNode(doc, profile, field.name,
                          taskelement::fieldText(*Profile->m_pDesc, field));
}

void CXMLInfo::fromDomNode(const QDomElement &element)
{
    taskelement::fillFromChildren(*this, taskelement::infoFields(), element);
    QDomElement profile = taskelement::firstChildNamed(element, QLatin1String("Profile"));
    CopyProFile(Profile->m_pDesc, profile);
}

void CXMLInfo::CopyProFile(Profile_Desc *profile, QDomElement &element)
{
    taskelement::fillFromChildren(*profile, taskelement::profileFields(), element);
}
