/** The stored fields of task records and profiles, and their forms as text. Internal to history. */
#ifndef VIDEODOWN_HISTORY_TASKELEMENT_H
#define VIDEODOWN_HISTORY_TASKELEMENT_H

#include "history/cxmlinfo.h"

#include <array>
#include <bitset>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace taskelement {

/** One stored field: its element's name, and where in the record it lives. */
template <typename Record>
struct Field
{
    using Member = std::variant<QString Record::*, int Record::*, qint64 Record::*,
                                QDateTime Record::*, bool Record::*, float Record::*>;
    QLatin1String name;
    Member member;
};

/** The fields of an "Info" element in writing order, without "Profile", which comes last. */
const std::vector<Field<CXMLInfo>> &infoFields();
/** The fields of a "Profile" element in writing order. */
const std::vector<Field<Profile_Desc>> &profileFields();

/** What stands before and behind the text of a field in a history, with indentation and line end.
 */
struct Tags
{
    std::string begin;
    std::string end;
};

/** Those of `infoFields`, in the same order. */
const std::vector<Tags> &infoTags();
/** Those of `profileFields`, in the same order. */
const std::vector<Tags> &profileTags();

/** The text with U+FFFD in place of what XML 1.0 (section 2.2) cannot carry. Shares good texts. */
QString carryable(const QString &text);

/** A date and time in its stored form, "yyyy-M-d h:m:s"; empty when it has none. */
class DateTimeText
{
public:
    explicit DateTimeText(const QDateTime &value);
    std::string_view view() const { return {m_characters.data(), m_size}; }

private:
    void put(int number, int digits);
    void put(char separator) { m_characters[m_size++] = separator; }

    std::array<char, 24> m_characters;
    std::size_t m_size = 0;
};

QString toText(const QString &value);
QString toText(int value);
QString toText(qint64 value);
QString toText(const QDateTime &value);
QString toText(bool value);
QString toText(float value);

/** A date and time of the form "yyyy-M-d h:m:s"; invalid for any other text. */
QDateTime readDateTime(QStringView text);

void fromText(const QString &text, QString &value);
void fromText(const QString &text, int &value);
void fromText(const QString &text, qint64 &value);
void fromText(const QString &text, QDateTime &value);
void fromText(const QString &text, bool &value);
void fromText(const QString &text, float &value);

template <typename Record>
QString fieldText(const Record &record, const Field<Record> &field)
{
    return std::visit([&](auto member) { return toText(record.*member); }, field.member);
}

/**
 * Fills a record from named texts. Fields that no text comes for get the value of a missing
 * element; of several texts for one field the first counts; unknown names are ignored.
 */
template <typename Record>
class Filler
{
public:
    Filler(Record &record, const std::vector<Field<Record>> &fields)
        : m_record(record), m_fields(fields)
    {
        for (const Field<Record> &field : m_fields)
            set(field, QStringLiteral(""));
    }

    /** The field of this name that has no text yet; -1 when there is none. */
    int find(QStringView name)
    {
        // Files list the fields in order, so the search nearly always ends where it begins.
        const std::size_t count = m_fields.size();
        for (std::size_t step = 0; step < count; ++step) {
            const std::size_t at = (m_next + step) % count;
            if (m_fields[at].name == name)
                return m_filled[at] ? -1 : int(at);
        }
        return -1;
    }

    void fill(int index, const QString &text)
    {
        const auto at = std::size_t(index);
        m_filled[at] = true;
        m_next = (at + 1) % m_fields.size();
        set(m_fields[at], text);
    }

private:
    void set(const Field<Record> &field, const QString &text)
    {
        std::visit([&](auto member) { fromText(text, m_record.*member); }, field.member);
    }

    Record &m_record;
    const std::vector<Field<Record>> &m_fields;
    std::bitset<64> m_filled;
    std::size_t m_next = 0;
};

} // namespace taskelement

#endif
