// A history of nearly the form in which it is written: the plain reader either hands it over, or
// finds the very records that the general reader finds, in a file that is well-formed.
#include "expect.h"

#include "driver/historycheck.h"
#include "history/historyfile.h"
#include "history/plainreader.h"

#include <QBuffer>

#include <algorithm>
#include <cstdint>

namespace {

// What a saved history does not show: which texts are null, and which dates are the same.
void compareInMemory(const CXMLHistory &plain, const CXMLHistory &general)
{
    for (int i = 0; i < plain.count(); ++i) {
        const CXMLInfo &one = *plain.item(i);
        const CXMLInfo &other = *general.item(i);
        expect(one.Title.isNull() == other.Title.isNull(), "texts are empty, not null");
        expect(one.DownLoadDate == other.DownLoadDate, "dates are the same");
        expect(one.TaskCreateTime.isValid() == other.TaskCreateTime.isValid(), "validity too");
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t most);

// Changes the text between two tags, so that the rest stays of the form; now and then anything.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size,
                                               std::size_t most, unsigned int seed)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype from = bytes.indexOf('>', qsizetype(seed / 16 % (size + 1))) + 1;
    const qsizetype to = bytes.indexOf("</", from);
    if (seed % 16 == 0 || from == 0 || to < 0)
        return LLVMFuzzerMutate(data, size, most);
    QByteArray text = bytes.mid(from, to - from);
    const std::size_t longest = std::min(most - size, std::size_t{64}) + std::size_t(to - from);
    text.resize(qsizetype(longest));
    text.resize(qsizetype(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t *>(text.data()),
                                           std::size_t(to - from), longest)));
    const QByteArray changed = bytes.left(from) + text + bytes.mid(to);
    std::copy(changed.begin(), changed.end(), reinterpret_cast<char *>(data));
    return std::size_t(changed.size());
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    CXMLHistory plain;
    // So that blocks end anywhere, in the midst of a tag or a character too.
    const auto blockSize = qsizetype(size % 977 + 40);
    const auto found = historyfile::plainTasks(buffer, &plain, blockSize);
    if (!found)
        return 0;
    plain.m_InfoList = *found;
    CXMLHistory general;
    general.m_InfoList = historyfile::tasks(historyfile::contentOf(bytes), &general);
    expect(plain.count() == general.count(), "as many tasks");
    buffer.seek(0);
    expect(isWellFormed(buffer), "the file is well-formed");
    expect(historyfile::serialize(plain) == historyfile::serialize(general), "the same records");
    compareInMemory(plain, general);
    return 0;
}
