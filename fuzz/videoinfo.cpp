// A video-info response, as any engine may hand it over: stored in a record, in both codecs.
#include "expect.h"

#include "strutil/narrowtext.h"
#include "video/videoinforesponse.h"

#include <QByteArray>

namespace {

bool isOneLine(const QString &text)
{
    return !text.contains(u'\r') && !text.contains(u'\n');
}

// The plain reading of a response, beside which the library's is put.
QString lastTitle(QByteArray response, const QString &before)
{
    QString title = before;
    for (QByteArray line : response.replace('\r', '\n').split('\n')) {
        while (line.startsWith(' ') || line.startsWith('\t'))
            line.remove(0, 1);
        while (line.endsWith(' ') || line.endsWith('\t'))
            line.chop(1);
        if (line.startsWith("title="))
            title = QString::fromUtf8(line.mid(6));
    }
    return title;
}

void storeIn(CXMLInfo &record, std::string_view response)
{
    const QString title =
        lastTitle(QByteArray(response.data(), qsizetype(response.size())), record.Title);
    videoinforesponse::store(response, record);
    expect(record.Title == title, "the last title counts");
    for (const QString &field :
         {record.Title, record.fmt_list, record.fmt_stream_map, record.ImageURL, record.VideoID})
        expect(isOneLine(field), "a field is one line");
    expect(videoinforesponse::hasLines(response) || record.VideoInfoText.isEmpty(),
           "a response without a line has no text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view response(reinterpret_cast<const char *>(data), size);
    CXMLInfo record(nullptr);
    for (const auto codec : {narrowtext::Codec::Latin1, narrowtext::Codec::Utf8}) {
        narrowtext::setCodec(codec);
        storeIn(record, response.substr(0, response.size() / 2));
        storeIn(record, response); // a task that is parsed again
    }
    return 0;
}
