// The text of a history file. It is what the DOM serializer would write for the same document, but
// in linear time: that one escapes a text in place, which takes minutes for a hostile one, and
// again at every save.
#include "history/historyfile.h"

#include "history/taskelement.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr int indentation = 3;

struct Day
{
    int id;
    std::vector<const CXMLInfo *> tasks;
};

struct Month
{
    int id;
    std::vector<Day> days;
};

struct Year
{
    int id;
    std::vector<Month> months;
};

// Groups stand in the order in which their date first occurs.
template <typename Group>
Group &groupOf(std::vector<Group> &groups, int id)
{
    for (Group &group : groups) {
        if (group.id == id)
            return group;
    }
    groups.push_back({id, {}});
    return groups.back();
}

std::vector<Year> groupByDate(const QList<CXMLInfo *> &tasks)
{
    std::vector<Year> years;
    for (const CXMLInfo *task : tasks) {
        // An invalid date gives 0, 0, 0.
        const QDate date = task->DownLoadDate.date();
        Year &year = groupOf(years, date.year());
        Month &month = groupOf(year.months, date.month());
        groupOf(month.days, date.day()).tasks.push_back(task);
    }
    return years;
}

// Makes bytes of a text; false for one that XML cannot have as it is. Without a way out of the
// loop, so that compilers take many units at once.
bool narrow(QStringView text, char *out)
{
    unsigned others = 0;
    for (const QChar character : text) {
        const unsigned unit = character.unicode();
        others |= unsigned(unit < 0x20) | unsigned(unit > 0x7f) | unsigned(unit == '<') |
                  unsigned(unit == '&') | unsigned(unit == '>');
        *out++ = char(unit);
    }
    return others == 0;
}

// Bytes that grow at their end.
class Output
{
public:
    void append(std::string_view bytes)
    {
        std::memcpy(room(bytes.size()), bytes.data(), bytes.size());
        m_size += qsizetype(bytes.size());
    }

    void append(qint64 number)
    {
        constexpr std::size_t most = 20;
        char *const begin = room(most);
        m_size += std::to_chars(begin, begin + most, number).ptr - begin;
    }

    void appendText(const QString &text)
    {
        if (narrow(text, room(std::size_t(text.size()))))
            m_size += text.size();
        else
            appendEscaped(taskelement::carryable(text).toUtf8());
    }

    QByteArray take()
    {
        m_bytes.resize(m_size);
        return std::exchange(m_bytes, {});
    }

private:
    char *room(std::size_t size)
    {
        const qsizetype wanted = m_size + qsizetype(size);
        if (wanted > m_bytes.size())
            m_bytes.resize(std::max(wanted, 2 * m_bytes.size()));
        return m_bytes.data() + m_size;
    }

    // A carriage return is written as a reference, or reading would turn it into a line feed.
    void appendEscaped(const QByteArray &utf8)
    {
        const std::string_view bytes(utf8.constData(), std::size_t(utf8.size()));
        std::size_t from = 0;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            const char *escape = escapeFor(bytes, at);
            if (escape == nullptr)
                continue;
            append(bytes.substr(from, at - from));
            append(escape);
            from = at + 1;
        }
        append(bytes.substr(from));
    }

    static const char *escapeFor(std::string_view text, std::size_t at)
    {
        switch (text[at]) {
        case '<':
            return "&lt;";
        case '&':
            return "&amp;";
        case '\r':
            return "&#xd;";
        case '>':
            return at >= 2 && text[at - 1] == ']' && text[at - 2] == ']' ? "&gt;" : nullptr;
        default:
            return nullptr;
        }
    }

    QByteArray m_bytes;
    qsizetype m_size = 0;
};

class Writer
{
public:
    QByteArray document(const QList<CXMLInfo *> &tasks)
    {
        m_out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
        const std::string root = "DownloadInfos_History version=\"1.0\" CacheUseSize=\"1000\" "
                                 "MaxID=\"100\"";
        if (tasks.isEmpty())
            m_out.append('<' + root + "/>\n");
        else
            element(root, groupByDate(tasks), &Writer::year);
        return m_out.take();
    }

private:
    void year(const Year &year) { group("year", year.id, year.months, &Writer::month); }
    void month(const Month &month) { group("month", month.id, month.days, &Writer::day); }
    void day(const Day &day) { group("day", day.id, day.tasks, &Writer::task); }

    template <typename Child, typename Write>
    void group(const std::string &name, int id, const std::vector<Child> &children, Write write)
    {
        element(name + ' ' + name + "id=\"" + std::to_string(id) + '"', children, write);
    }

    // The start tag's text up to its first blank is the element's name.
    template <typename Children, typename Write>
    void element(const std::string &startTag, const Children &children, Write write)
    {
        line('<' + startTag + '>');
        ++m_depth;
        for (const auto &child : children)
            (this->*write)(child);
        --m_depth;
        line("</" + startTag.substr(0, startTag.find(' ')) + '>');
    }

    void task(const CXMLInfo *const &task)
    {
        line("<Info>");
        ++m_depth;
        fields(*task, taskelement::infoFields(), taskelement::infoTags());
        line("<Profile>");
        fields(*task->Profile->m_pDesc, taskelement::profileFields(), taskelement::profileTags());
        line("</Profile>");
        --m_depth;
        line("</Info>");
    }

    template <typename Record>
    void fields(const Record &record, const std::vector<taskelement::Field<Record>> &fields,
                const std::vector<taskelement::Tags> &tags)
    {
        for (std::size_t at = 0; at < fields.size(); ++at) {
            m_out.append(tags[at].begin);
            std::visit([&](auto member) { value(record.*member); }, fields[at].member);
            m_out.append(tags[at].end);
        }
    }

    void value(const QString &text) { m_out.appendText(text); }
    void value(int number) { m_out.append(qint64{number}); }
    void value(qint64 number) { m_out.append(number); }
    void value(bool truth) { m_out.append(truth ? "true" : "false"); }
    void value(const QDateTime &time) { m_out.append(taskelement::DateTimeText(time).view()); }

    void value(float number)
    {
        if (number == 0) // nearly always, and texts of others take long
            m_out.append("0");
        else
            m_out.appendText(taskelement::toText(number));
    }

    void line(const std::string &tag)
    {
        m_out.append(std::string(std::size_t(m_depth * indentation), ' '));
        m_out.append(tag);
        m_out.append("\n");
    }

    Output m_out;
    int m_depth = 0;
};

} // namespace

QByteArray historyfile::serialize(const CXMLHistory &history)
{
    return Writer().document(history.m_InfoList);
}
