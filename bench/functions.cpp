// Functions beside what a program would use in their place. Names: WHAT/ours and WHAT/peer.
#include "down/cdown.h"
#include "history/cxmlinfo.h"
#include "md5/cmd5.h"
#include "video/videoinforesponse.h"

#include <QCryptographicHash>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <string>

namespace {

using benchmark::State;

std::string bytesOf(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 131 >> 3U);
    return bytes;
}

void countBytes(State &state, std::size_t bytes)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

constexpr std::size_t digested = std::size_t{1} << 20U;

void digestOurs(State &state)
{
    std::string bytes = bytesOf(digested);
    unsigned char digest[16];
    while (state.KeepRunning()) {
        CMD5 md5;
        CMD5::_MD5_CTX context;
        md5.MD5Init(&context);
        md5.MD5Update(&context, reinterpret_cast<unsigned char *>(bytes.data()), digested);
        md5.MD5Final(digest, &context);
        benchmark::DoNotOptimize(digest);
    }
    countBytes(state, digested);
}

void digestPeer(State &state)
{
    const std::string bytes = bytesOf(digested);
    unsigned char digest[16];
    while (state.KeepRunning()) {
        EVP_Digest(bytes.data(), bytes.size(), digest, nullptr, EVP_md5(), nullptr);
        benchmark::DoNotOptimize(digest);
    }
    countBytes(state, digested);
}

const QString &pageAddress()
{
    static const QString address = QStringLiteral("http://www.video.invalid/watch?v=aBcDeF-_123");
    return address;
}

void keyOurs(State &state)
{
    while (state.KeepRunning())
        benchmark::DoNotOptimize(CDown::GetURLToMD5(pageAddress()));
}

void keyPeer(State &state)
{
    while (state.KeepRunning()) {
        const QByteArray digest =
            QCryptographicHash::hash(pageAddress().toUtf8(), QCryptographicHash::Md5);
        benchmark::DoNotOptimize(QString::fromLatin1(digest.toHex()).toUpper());
    }
}

// What the site says of a video, and as much again that nobody asked for: 40 lines, 1 MB.
std::string response()
{
    std::string text = "title=A title\r\nauthor=Somebody\r\nlength_seconds=12\r\n"
                       "fmt_list=34/640x360/9/0/115\r\nfmt_stream_map=34|http://host/x\r\n";
    constexpr int lines = 40;
    constexpr std::size_t size = 1000000;
    for (int line = 5; line < lines; ++line)
        text += "field" + std::to_string(line) + '=' + std::string(size / lines, 'x') + "\r\n";
    return text;
}

void responseOurs(State &state)
{
    const std::string text = response();
    CXMLInfo record(nullptr);
    while (state.KeepRunning())
        videoinforesponse::store(text, record);
    countBytes(state, text.size());
}

// Every byte is looked at once (std::string calls memchr).
void readOnce(State &state, const std::string &text)
{
    while (state.KeepRunning())
        benchmark::DoNotOptimize(text.find('\x01'));
    countBytes(state, text.size());
}

void responsePeer(State &state)
{
    readOnce(state, response());
}

QString formats()
{
    QStringList entries;
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i)
        entries.append(QStringLiteral("%1/%2x%3/9/0/115").arg(i % 50).arg(200 + i).arg(100 + i));
    return entries.join(u',');
}

void selectionOurs(State &state)
{
    const QString list = formats();
    auto want = tagVideoInfo();
    want.strExt = QStringLiteral("mp4");
    want.nWidth = 700;
    want.nHeight = 600;
    want.nArea = 420000;
    auto chosen = tagVideoInfo();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(CDown::getBestVideoFmt(list, &want, &chosen));
}

void selectionPeer(State &state)
{
    const QString list = formats();
    readOnce(state, std::string(reinterpret_cast<const char *>(list.utf16()),
                                static_cast<std::size_t>(list.size()) * sizeof(char16_t)));
}

BENCHMARK(digestOurs)->Name("digest/ours");
BENCHMARK(digestPeer)->Name("digest/peer");
BENCHMARK(keyOurs)->Name("key/ours");
BENCHMARK(keyPeer)->Name("key/peer");
BENCHMARK(responseOurs)->Name("response/ours");
BENCHMARK(responsePeer)->Name("response/peer");
BENCHMARK(selectionOurs)->Name("selection/ours");
BENCHMARK(selectionPeer)->Name("selection/peer");

} // namespace
