#include "video/videoinforesponse.h"

#include "strutil/narrowtext.h"

namespace videoinforesponse {

namespace {

using Store = void (*)(CXMLInfo &record, std::string_view value);

template <QString CXMLInfo::*Field>
void storeText(CXMLInfo &record, std::string_view value)
{
    record.*Field = narrowtext::fromNarrow(value);
}

template <int CXMLInfo::*Field>
void storeNumber(CXMLInfo &record, std::string_view value)
{
    record.*Field = QByteArray::fromRawData(value.data(), qsizetype(value.size())).toInt();
}

void storeTitle(CXMLInfo &record, std::string_view value)
{
    record.Title = QString::fromUtf8(value.data(), qsizetype(value.size()));
}

struct Key
{
    std::string_view name;
    Store store;
};

// The keys that sites send and nothing here needs (fexp=, status=, token=, ...) fall through like
// unknown ones: none of them is the beginning of another.
constexpr Key keys[] = {
    {"fmt_stream_map=", storeText<&CXMLInfo::fmt_stream_map>},
    {"fmt_list=", storeText<&CXMLInfo::fmt_list>},
    {"length_seconds=", storeNumber<&CXMLInfo::Duration>},
    {"timestamp=", storeNumber<&CXMLInfo::VideoTime>},
    {"video_id=", storeText<&CXMLInfo::VideoID>},
    {"thumbnail_url=", storeText<&CXMLInfo::ImageURL>},
    {"title=", storeTitle},
};

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \n\r\t";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Only a line's first bytes are compared, so a hostile response costs no more than its length.
void storeLine(std::string_view line, CXMLInfo &record)
{
    for (const Key &key : keys) {
        if (line.substr(0, key.name.size()) == key.name) {
            key.store(record, line.substr(key.name.size()));
            return;
        }
    }
}

// Cuts what stands before the next `end`, and that, off the front of `text`.
std::string_view takeUntil(std::string_view &text, char end)
{
    const std::string_view taken = text.substr(0, text.find(end));
    text.remove_prefix(std::min(text.size(), taken.size() + 1));
    return taken;
}

} // namespace

bool hasLines(std::string_view response)
{
    return response.find_first_not_of("\r\n") != std::string_view::npos;
}

void store(std::string_view response, CXMLInfo &record)
{
    record.VideoInfoText = narrowtext::fromNarrow(response).trimmed();
    // One end after the other: looking for single characters is what memory is fast at.
    while (!response.empty()) {
        std::string_view lines = takeUntil(response, '\n');
        while (!lines.empty())
            storeLine(trimmed(takeUntil(lines, '\r')), record);
    }
}

} // namespace videoinforesponse
