// A history file of any bytes: read, written, read again.
#include "expect.h"

#include "history/cxmlhistory.h"

#include <QFile>

#include <sys/mman.h>
#include <unistd.h>

namespace {

// A file that exists only in memory, under a name that can be opened.
class MemoryFile
{
public:
    MemoryFile() : m_file(::memfd_create("history", 0)) { expect(m_file >= 0, "memory"); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { ::close(m_file); }

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_file); }

    void write(const QByteArray &bytes) const
    {
        QFile file(path());
        expect(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "memory");
    }

    QByteArray read() const
    {
        QFile file(path());
        expect(file.open(QIODevice::ReadOnly), "memory");
        return file.readAll();
    }

private:
    const int m_file;
};

int saved(const MemoryFile &from, const MemoryFile &to)
{
    CXMLHistory history;
    history.LoadFromFile(from.path());
    history.SaveToFile(to.path());
    return history.count();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const MemoryFile input;
    const MemoryFile first;
    const MemoryFile second;
    const MemoryFile third;
    input.write(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const int count = saved(input, first);
    expect(saved(first, second) == count, "what was written loads again, all of it");
    // The first save sorts the tasks by date; after that nothing moves and nothing changes.
    expect(saved(second, third) == count, "and again");
    expect(second.read() == third.read(), "a saved history stays as it is, byte for byte");
    return 0;
}
