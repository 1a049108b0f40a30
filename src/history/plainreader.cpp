#include "history/plainreader.h"

#include "history/plainvalue.h"
#include "history/taskelement.h"

#include <array>
#include <memory>
#include <string>

namespace {

using taskelement::infoTags;
using taskelement::profileTags;
using taskelement::Tags;

// The lines around the children of root, year, month and day. A group's number follows its begin.
struct Level
{
    std::string_view childBegin;
    std::string_view end;
};

constexpr std::array<Level, 5> levels = {{
    {},
    {"   <year yearid=\"", "</DownloadInfos_History>\n"},
    {"      <month monthid=\"", "   </year>\n"},
    {"         <day dayid=\"", "      </month>\n"},
    {"            <Info>\n", "         </day>\n"},
}};
constexpr std::size_t dayLevel = 4;

constexpr std::string_view head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<DownloadInfos_History version=\"1.0\" CacheUseSize=\"1000\" MaxID=\"100\"";

// Goes on in units, a line or a task. One that reaches beyond the block is read again, from its
// begin, when the block has been filled.
class PlainReader
{
public:
    PlainReader(QIODevice &file, CXMLHistory *history, qsizetype blockSize)
        : m_file(file), m_history(history), m_blockSize(blockSize)
    {
    }

    std::optional<QList<CXMLInfo *>> tasks()
    {
        if (m_file.isSequential() || !readWhole()) {
            qDeleteAll(m_tasks);
            return std::nullopt;
        }
        return m_tasks;
    }

private:
    bool readWhole()
    {
        if (!whole(&PlainReader::root))
            return false;
        while (m_level > 0) {
            if (!whole(&PlainReader::unit))
                return false;
        }
        return m_at == m_end && !fill();
    }

    bool whole(bool (PlainReader::*read)())
    {
        for (;;) {
            const char *begin = m_at;
            m_short = false;
            if ((this->*read)())
                return true;
            m_at = begin;
            if (!m_short || !fill())
                return false;
        }
    }

    // What is left of the block moves to its front; a task that is larger than the block needs a
    // larger one.
    bool fill()
    {
        const qsizetype left = m_end - m_at;
        m_block.remove(0, m_block.size() - left);
        m_block.resize(left + qMax(left, m_blockSize));
        const auto size = qsizetype(m_file.read(m_block.data() + left, m_block.size() - left));
        m_block.resize(left + qMax<qsizetype>(size, 0));
        m_at = m_block.constData();
        m_end = m_at + m_block.size();
        return size > 0;
    }

    bool root()
    {
        if (!take(head))
            return false;
        if (take(">\n"))
            m_level = 1;
        return m_level == 1 || take("/>\n");
    }

    bool unit()
    {
        const Level &level = levels.at(m_level);
        if (take(level.end)) {
            --m_level;
            return true;
        }
        if (!take(level.childBegin))
            return false;
        if (m_level == dayLevel)
            return task();
        ++m_level;
        if (takeNumber() && take("\">\n"))
            return true;
        --m_level;
        return false;
    }

    bool task()
    {
        auto record = std::make_unique<CXMLInfo>(m_history, QDateTime());
        const CXMLInfo *last = m_tasks.isEmpty() ? nullptr : m_tasks.last();
        const Profile_Desc *lastProfile = last != nullptr ? last->Profile->m_pDesc : nullptr;
        if (!fields(*record, last, taskelement::infoFields(), infoTags()) ||
            !take("               <Profile>\n") ||
            !fields(*record->Profile->m_pDesc, lastProfile, taskelement::profileFields(),
                    profileTags()) ||
            !take("               </Profile>\n            </Info>\n"))
            return false;
        m_tasks.append(record.release());
        return true;
    }

    // Neighbours have many texts in common, folders above all.
    template <typename Record>
    bool fields(Record &record, const Record *last,
                const std::vector<taskelement::Field<Record>> &fields,
                const std::vector<Tags> &tags)
    {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (!take(tags[i].begin))
                return false;
            const auto text = plainvalue::textAt(m_at, m_end);
            m_short = text && text->end == m_end;
            const auto set = [&](auto member) {
                return plainvalue::read(*text, record.*member,
                                        last != nullptr ? &(last->*member) : nullptr, m_unescaped);
            };
            if (!text || m_short || !std::visit(set, fields[i].member))
                return false;
            m_at = text->end;
            if (!take(tags[i].end))
                return false;
        }
        return true;
    }

    bool take(std::string_view expected)
    {
        if (m_end - m_at < qsizetype(expected.size())) {
            m_short = true;
            return false;
        }
        if (std::char_traits<char>::compare(m_at, expected.data(), expected.size()) != 0)
            return false;
        m_at += expected.size();
        return true;
    }

    bool takeNumber()
    {
        const char *begin = m_at;
        while (m_at < m_end && *m_at >= '0' && *m_at <= '9')
            ++m_at;
        m_short = m_at == m_end;
        return m_at > begin;
    }

    QIODevice &m_file;
    CXMLHistory *m_history;
    const qsizetype m_blockSize;
    QList<CXMLInfo *> m_tasks;
    QByteArray m_block;
    const char *m_at = nullptr;
    const char *m_end = nullptr;
    std::size_t m_level = 0; // of the element whose children come; 0: outside of the root
    bool m_short = false;    // the block ended too early
    std::string m_unescaped;
};

} // namespace

std::optional<QList<CXMLInfo *>> historyfile::plainTasks(QIODevice &file, CXMLHistory *history,
                                                         qsizetype blockSize)
{
    return PlainReader(file, history, blockSize).tasks();
}
