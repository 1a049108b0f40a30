#include "driver/historycheck.h"

#include <QFile>

#include <expat.h>

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

// Every save is read back, so this has to be quick: Expat takes a seventh of QXmlStreamReader's
// time.
class TaskCounter
{
public:
    TaskCounter() : m_parser(XML_ParserCreate(nullptr))
    {
        if (m_parser == nullptr)
            qBadAlloc();
        XML_SetUserData(m_parser.get(), this);
        XML_SetElementHandler(m_parser.get(), begin, end);
    }

    // Takes all of the file; returns whether it is well-formed.
    bool read(QFile &file)
    {
        constexpr int blockSize = 256 * 1024;
        for (;;) {
            void *block = XML_GetBuffer(m_parser.get(), blockSize);
            if (block == nullptr)
                return false;
            const qint64 size = file.read(static_cast<char *>(block), blockSize);
            if (size < 0 || XML_ParseBuffer(m_parser.get(), int(size), size == 0) != XML_STATUS_OK)
                return false;
            if (size == 0)
                return true;
        }
    }

    int tasks() const { return m_tasks; }

private:
    static void begin(void *counter, const XML_Char *name, const XML_Char **)
    {
        auto &self = *static_cast<TaskCounter *>(counter);
        if (++self.m_depth == 5 && std::strcmp(name, "Info") == 0)
            ++self.m_tasks;
    }

    static void end(void *counter, const XML_Char *)
    {
        --static_cast<TaskCounter *>(counter)->m_depth;
    }

    struct Free
    {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };
    std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> m_parser;
    int m_depth = 0;
    int m_tasks = 0;
};

} // namespace

std::optional<int> countTasks(const QString &path)
{
    QFile file(path);
    TaskCounter counter;
    if (!file.open(QIODevice::ReadOnly) || !counter.read(file))
        return std::nullopt;
    return counter.tasks();
}
