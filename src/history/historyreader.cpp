#include "history/historyfile.h"
#include "history/taskelement.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include <algorithm>
#include <optional>

namespace {

using InfoFiller = taskelement::Filler<CXMLInfo>;
using ProfileFiller = taskelement::Filler<Profile_Desc>;

// The encoding that a byte order mark, else the declaration, else XML 1.0 itself (UTF-8) gives.
QStringDecoder decoderFor(const QByteArray &bytes)
{
    if (const auto marked = QStringConverter::encodingForData(bytes, u'<'))
        return QStringDecoder(*marked);
    static const QRegularExpression declaration(
        QStringLiteral("^\\s*<\\?xml\\s[^>]*encoding\\s*=\\s*[\"']([A-Za-z0-9._-]+)[\"']"));
    const QString head = QString::fromLatin1(bytes.left(256));
    QStringDecoder declared(declaration.match(head).captured(1).toLatin1().constData());
    return declared.isValid() ? std::move(declared) : QStringDecoder(QStringConverter::Utf8);
}

bool hasOnlyLineEndReferences(const QByteArray &bytes)
{
    for (qsizetype at = bytes.indexOf("&#"); at >= 0; at = bytes.indexOf("&#", at + 1)) {
        if (!QByteArrayView(bytes).sliced(at).startsWith("&#xd;"))
            return false;
    }
    return true;
}

// Whether nothing needs to be replaced. That is so for every file the library wrote, and spares it
// two conversions.
bool isSound(const QByteArray &bytes)
{
    const auto isBad = [](char byte) {
        return byte >= 0 && byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r';
    };
    return bytes.startsWith(R"(<?xml version="1.0" encoding="UTF-8"?>)") &&
           QByteArrayView(bytes).isValidUtf8() && std::none_of(bytes.begin(), bytes.end(), isBad) &&
           !bytes.contains("\xef\xbf\xbe") && !bytes.contains("\xef\xbf\xbf") &&
           hasOnlyLineEndReferences(bytes);
}

// The character that a reference's inner text ("38", "x26") names; "" when there is none.
QString referredCharacter(QStringView number)
{
    const bool hexadecimal = number.startsWith(u'x');
    bool ok = false;
    const uint code = number.sliced(hexadecimal ? 1 : 0).toUInt(&ok, hexadecimal ? 16 : 10);
    if (!ok || code > QChar::LastValidCodePoint)
        return {};
    const auto character = static_cast<char32_t>(code);
    return QString::fromUcs4(&character, 1);
}

// The length of what begins at `at` and holds no references: a CDATA section, a comment or a
// processing instruction; 0 for everything else.
qsizetype plainLength(const QString &text, qsizetype at)
{
    struct Plain
    {
        QLatin1String begin;
        QLatin1String end;
    };
    static constexpr Plain kinds[] = {{QLatin1String("<![CDATA["), QLatin1String("]]>")},
                                      {QLatin1String("<!--"), QLatin1String("-->")},
                                      {QLatin1String("<?"), QLatin1String("?>")}};
    for (const Plain &kind : kinds) {
        if (!QStringView(text).sliced(at).startsWith(kind.begin))
            continue;
        const qsizetype end = text.indexOf(kind.end, at + kind.begin.size());
        return (end < 0 ? text.size() : end + kind.end.size()) - at;
    }
    return 0;
}

// The length of the reference at `at` if it is to a character that XML cannot carry; else 0.
qsizetype badReferenceLength(const QString &text, qsizetype at)
{
    constexpr qsizetype longest = 16;
    const QStringView reference = QStringView(text).mid(at, longest);
    const qsizetype end = reference.indexOf(u';');
    if (!reference.startsWith(QLatin1String("&#")) || end < 3)
        return 0;
    const QString character = referredCharacter(reference.sliced(2, end - 2));
    const bool isBad = character.isEmpty() || taskelement::carryable(character) != character;
    return isBad ? end + 1 : 0;
}

// A reference to a character that XML cannot carry ends the parsing just as the character does.
QString withoutBadReferences(QString text)
{
    for (qsizetype at = 0; at < text.size();) {
        const QChar character = text.at(at);
        const qsizetype plain = character == u'<' ? plainLength(text, at) : 0;
        const qsizetype bad = character == u'&' ? badReferenceLength(text, at) : 0;
        std::fill_n(text.begin() + at, bad, QChar(QChar::ReplacementCharacter));
        at += std::max<qsizetype>({plain, bad, 1});
    }
    return text;
}

// Walks a history text. Only what stands four levels below the root counts as a task, and nothing
// is built that is deeper than that, so depth costs neither stack nor time.
class Reader
{
public:
    Reader(const historyfile::Content &content, CXMLHistory *history) : m_history(history)
    {
        limitGrowth(content.utf8.count('&') + content.text.count(u'&'));
        if (content.utf8.isEmpty())
            m_xml.addData(content.text);
        else
            m_xml.addData(content.utf8);
    }

    QList<CXMLInfo *> tasks()
    {
        while (!m_xml.atEnd())
            step(m_xml.readNext());
        endField(); // what was read before an error counts
        return m_tasks;
    }

private:
    // Entities can make much of little: together they add no more characters than this (200 MB).
    static constexpr qsizetype mostGrowth = 100000000;
    static constexpr int taskDepth = 5;
    static constexpr int fieldDepth = 6;
    static constexpr int profileFieldDepth = 7;

    // The parser's own bound is for one reference. All the text between two tags is one token, so
    // to count what has come would be too late.
    void limitGrowth(qsizetype references)
    {
        const qsizetype share = mostGrowth / std::max<qsizetype>(references, 1);
        const int parsersOwn = m_xml.entityExpansionLimit();
        m_xml.setEntityExpansionLimit(int(std::clamp<qsizetype>(share, 1, parsersOwn)));
    }

    void step(QXmlStreamReader::TokenType token)
    {
        if (token == QXmlStreamReader::StartElement)
            startElement(m_xml.qualifiedName());
        else if (token == QXmlStreamReader::EndElement)
            endElement();
        else if (token == QXmlStreamReader::ProcessingInstruction)
            textless(m_xml.processingInstructionTarget());
        else if (token == QXmlStreamReader::EntityReference)
            textless(m_xml.name());
        else if (token == QXmlStreamReader::Characters)
            characters(m_xml.text());
    }

    // As the DOM parser, which makes no nodes of white space, but keeps sections of it.
    void characters(QStringView text)
    {
        if (m_field >= 0 && (m_xml.isCDATA() || !text.trimmed().isEmpty()))
            m_text += text;
    }

    // Fields are looked up by the names of nodes, and an instruction, or a reference to an entity
    // that is declared elsewhere, has one too: it counts as the field, without text.
    void textless(QStringView name)
    {
        if (m_depth == taskDepth && m_info) {
            m_profileSeen = m_profileSeen || name == QLatin1String("Profile");
            fillEmpty(*m_info, name);
        } else if (m_depth == fieldDepth && m_inProfile) {
            fillEmpty(*m_profile, name);
        }
    }

    template <typename Filler>
    static void fillEmpty(Filler &filler, QStringView name)
    {
        const int index = filler.find(name);
        if (index >= 0)
            filler.fill(index, QStringLiteral(""));
    }

    void startElement(QStringView name)
    {
        ++m_depth;
        if (m_depth == taskDepth && name == QLatin1String("Info")) {
            auto *record = new CXMLInfo(m_history, QDateTime());
            m_tasks.append(record);
            m_info.emplace(*record, taskelement::infoFields());
            m_profile.emplace(*record->Profile->m_pDesc, taskelement::profileFields());
            m_profileSeen = false;
        } else if (m_depth == fieldDepth && m_info) {
            m_inProfile = !m_profileSeen && name == QLatin1String("Profile");
            m_profileSeen = m_profileSeen || m_inProfile;
            beginField(m_info->find(name));
        } else if (m_depth == profileFieldDepth && m_inProfile) {
            beginField(m_profile->find(name));
        }
    }

    void beginField(int index)
    {
        m_field = index;
        m_fieldDepth = m_depth;
        m_text.resize(0);
    }

    void endElement()
    {
        if (m_depth == m_fieldDepth)
            endField();
        if (m_depth == fieldDepth)
            m_inProfile = false;
        if (m_depth == taskDepth)
            m_info.reset();
        --m_depth;
    }

    void endField()
    {
        if (m_field >= 0 && m_fieldDepth == fieldDepth)
            m_info->fill(m_field, m_text);
        else if (m_field >= 0)
            m_profile->fill(m_field, m_text);
        m_field = -1;
    }

    QXmlStreamReader m_xml;
    CXMLHistory *m_history;
    QList<CXMLInfo *> m_tasks;
    std::optional<InfoFiller> m_info;
    std::optional<ProfileFiller> m_profile;
    bool m_profileSeen = false;
    bool m_inProfile = false;
    int m_depth = 0;
    int m_field = -1; // of the open element at m_fieldDepth; -1: none that is stored
    int m_fieldDepth = 0;
    QString m_text;
};

} // namespace

historyfile::Content historyfile::contentOf(const QByteArray &bytes)
{
    if (isSound(bytes))
        return {bytes, {}};
    QString text = decoderFor(bytes)(bytes);
    if (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    return {{}, withoutBadReferences(taskelement::carryable(text))};
}

QList<CXMLInfo *> historyfile::tasks(const Content &content, CXMLHistory *history)
{
    return Reader(content, history).tasks();
}
