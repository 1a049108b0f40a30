#include "history/historyfile.h"

#include "history/plainreader.h"
#include "history/taskelement.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QThread>

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

// Writes what the DOM serializer would write for the same document, but in linear time: that one
// escapes a text in place, which takes minutes for a hostile one, and again at every save.
class Writer
{
public:
    QByteArray document(const QList<CXMLInfo *> &tasks)
    {
        m_out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        const QByteArray root = "DownloadInfos_History version=\"1.0\" CacheUseSize=\"1000\" "
                                "MaxID=\"100\"";
        if (tasks.isEmpty()) {
            m_out += '<' + root + "/>\n";
            return m_out;
        }
        element(root, groupByDate(tasks), &Writer::year);
        return m_out;
    }

private:
    void year(const Year &year) { group("year", year.id, year.months, &Writer::month); }
    void month(const Month &month) { group("month", month.id, month.days, &Writer::day); }
    void day(const Day &day) { group("day", day.id, day.tasks, &Writer::task); }

    template <typename Child, typename Write>
    void group(const QByteArray &name, int id, const std::vector<Child> &children, Write write)
    {
        element(name + ' ' + name + "id=\"" + QByteArray::number(id) + '"', children, write);
    }

    // The start tag's text up to its first blank is the element's name.
    template <typename Children, typename Write>
    void element(const QByteArray &startTag, const Children &children, Write write)
    {
        line('<' + startTag + '>');
        ++m_depth;
        for (const auto &child : children)
            (this->*write)(child);
        --m_depth;
        line("</" + startTag.left(startTag.indexOf(' ')) + '>');
    }

    void task(const CXMLInfo *const &task)
    {
        line("<Info>");
        ++m_depth;
        fields(*task, taskelement::infoFields());
        line("<Profile>");
        ++m_depth;
        fields(*task->Profile->m_pDesc, taskelement::profileFields());
        --m_depth;
        line("</Profile>");
        --m_depth;
        line("</Info>");
    }

    template <typename Record>
    void fields(const Record &record, const std::vector<taskelement::Field<Record>> &fields)
    {
        for (const auto &field : fields) {
            indent();
            m_out.append('<').append(field.name.data(), field.name.size()).append('>');
            text(taskelement::carryable(taskelement::fieldText(record, field)).toUtf8());
            m_out.append("</").append(field.name.data(), field.name.size()).append(">\n");
        }
    }

    void line(const QByteArray &tag)
    {
        indent();
        m_out.append(tag).append('\n');
    }

    void indent() { m_out.append(qsizetype(m_depth) * indentation, ' '); }

    // A carriage return is written as a reference, or reading would turn it into a line feed.
    void text(const QByteArray &utf8)
    {
        qsizetype from = 0;
        for (qsizetype at = 0; at < utf8.size(); ++at) {
            const char *escape = escapeFor(utf8, at);
            if (escape == nullptr)
                continue;
            m_out.append(utf8.constData() + from, at - from).append(escape);
            from = at + 1;
        }
        m_out.append(utf8.constData() + from, utf8.size() - from);
    }

    static const char *escapeFor(const QByteArray &utf8, qsizetype at)
    {
        switch (utf8.at(at)) {
        case '<':
            return "&lt;";
        case '&':
            return "&amp;";
        case '\r':
            return "&#xd;";
        case '>':
            return at >= 2 && utf8.at(at - 1) == ']' && utf8.at(at - 2) == ']' ? "&gt;" : nullptr;
        default:
            return nullptr;
        }
    }

    QByteArray m_out;
    int m_depth = 0;
};

} // namespace

bool historyfile::exists(const QString &path)
{
    return !path.isEmpty() && QFileInfo::exists(path);
}

void historyfile::announceMissing()
{
    // Without a QApplication a box ends the program, and off its thread it hangs.
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (application == nullptr || application->thread() != QThread::currentThread())
        return;
    QMessageBox::information(nullptr, QStringLiteral("information"),
                             QStringLiteral("XML File does not exist!"), QMessageBox::Ok);
}

QByteArray historyfile::serialize(const CXMLHistory &history)
{
    return Writer().document(history.m_InfoList);
}

historyfile::Loaded historyfile::load(const QString &path, CXMLHistory *history)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {{}, false};
    if (const auto plain = plainTasks(file, history))
        return {*plain, true};
    if (!file.isSequential())
        file.seek(0);
    return {tasks(contentOf(file.readAll()), history), false};
}

void historyfile::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::WriteOnly))
        file.write(content);
}

void CXMLHistory::LoadFromFile(const QString &path)
{
    if (historyfile::exists(path))
        m_InfoList.append(historyfile::load(path, this).tasks);
    else
        historyfile::announceMissing();
}

void CXMLHistory::SaveToFile(const QString &path)
{
    historyfile::write(path, historyfile::serialize(*this));
}

QDomElement CXMLHistory::CreateAttributeNode(QDomDocument &doc, QDomElement parent,
                                             const QString &tagName, const QString &attributeName,
                                             const QString &attributeValue)
{
    QDomElement element = doc.createElement(tagName);
    element.setAttribute(attributeName, attributeValue);
    parent.appendChild(element);
    return element;
}
