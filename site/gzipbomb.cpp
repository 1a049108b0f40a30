#include "site/videosite.h"

#include <zlib.h>

#include <algorithm>
#include <array>

SiteAnswer gzipBomb(std::size_t bytes)
{
    constexpr int gzipFormat = 16 + MAX_WBITS; // as zlib expects it
    constexpr int memory = 8;
    z_stream stream{};
    SiteAnswer answer{200, "video/x-flv", {{"Content-Encoding", "gzip"}}, {}};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, gzipFormat, memory,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        return answer;
    std::array<Bytef, 65536> zeros{};
    std::array<Bytef, 65536> packed{};
    for (int result = Z_OK; result == Z_OK;) {
        if (stream.avail_in == 0) {
            stream.next_in = zeros.data();
            stream.avail_in = static_cast<uInt>(std::min(bytes, zeros.size()));
            bytes -= stream.avail_in;
        }
        stream.next_out = packed.data();
        stream.avail_out = static_cast<uInt>(packed.size());
        result = deflate(&stream, bytes == 0 ? Z_FINISH : Z_NO_FLUSH);
        answer.body.append(reinterpret_cast<const char *>(packed.data()),
                           packed.size() - stream.avail_out);
    }
    deflateEnd(&stream);
    return answer;
}
