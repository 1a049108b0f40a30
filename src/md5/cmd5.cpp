#include "md5/cmd5.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned char padding[64] = {0x80};

// RFC 1321, section 3.4: the four round functions, in forms with one operation less each, and the
// step a = b + ((a + f(b, c, d) + x + constant) <<< rotation).
inline std::uint32_t f(std::uint32_t x, std::uint32_t y, std::uint32_t z)
{
    return z ^ (x & (y ^ z));
}

// Both halves of G are disjoint, so they may be added; the additions then overlap in the pipeline.
inline std::uint32_t g(std::uint32_t x, std::uint32_t y, std::uint32_t z)
{
    return (x & z) + (y & ~z);
}

inline std::uint32_t h(std::uint32_t x, std::uint32_t y, std::uint32_t z)
{
    return x ^ y ^ z;
}

inline std::uint32_t i(std::uint32_t x, std::uint32_t y, std::uint32_t z)
{
    return y ^ (x | ~z);
}

// Little-endian, which compilers turn into one load.
inline std::uint32_t word(const unsigned char *bytes)
{
    return std::uint32_t(bytes[0]) | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 |
           std::uint32_t(bytes[3]) << 24;
}

template <std::uint32_t (*Function)(std::uint32_t, std::uint32_t, std::uint32_t), unsigned Rotation>
inline void step(std::uint32_t &a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                 std::uint32_t input, std::uint32_t constant)
{
    a += input + constant + Function(b, c, d);
    a = b + ((a << Rotation) | (a >> (32 - Rotation)));
}

} // namespace

void CMD5::MD5Init(_MD5_CTX *context)
{
    *context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, {0, 0}, {}};
}

void CMD5::MD5Update(_MD5_CTX *context, unsigned char *input, std::uint32_t length)
{
    std::uint32_t index = (context->count[0] >> 3) & 63;
    const std::uint32_t bits = length << 3;
    context->count[0] += bits;
    if (context->count[0] < bits)
        ++context->count[1];
    context->count[1] += length >> 29;

    if (index != 0) {
        const std::uint32_t taken = std::min(length, 64 - index);
        std::memcpy(context->buffer + index, input, taken);
        input += taken;
        length -= taken;
        if (index + taken < 64)
            return;
        MD5Transform(context->state, context->buffer);
    }
    for (; length >= 64; input += 64, length -= 64)
        MD5Transform(context->state, input);
    if (length > 0)
        std::memcpy(context->buffer, input, length);
}

void CMD5::MD5Final(unsigned char *digest, _MD5_CTX *context)
{
    unsigned char bits[8];
    Encode(bits, context->count, 8);
    const std::uint32_t index = (context->count[0] >> 3) & 63;
    MD5Update(context, const_cast<unsigned char *>(padding), index < 56 ? 56 - index : 120 - index);
    MD5Update(context, bits, 8);
    Encode(digest, context->state, 16);
    MD5_memset(reinterpret_cast<unsigned char *>(context), 0, sizeof *context);
}

void CMD5::MD5Transform(std::uint32_t *state, unsigned char *block)
{
    std::uint32_t x[16];
    for (std::size_t k = 0; k < 16; ++k)
        x[k] = word(block + 4 * k);
    std::uint32_t a = state[0];
    std::uint32_t b = state[1];
    std::uint32_t c = state[2];
    std::uint32_t d = state[3];

    // round 1
    step<f, 7>(a, b, c, d, x[0], 0xd76aa478);
    step<f, 12>(d, a, b, c, x[1], 0xe8c7b756);
    step<f, 17>(c, d, a, b, x[2], 0x242070db);
    step<f, 22>(b, c, d, a, x[3], 0xc1bdceee);
    step<f, 7>(a, b, c, d, x[4], 0xf57c0faf);
    step<f, 12>(d, a, b, c, x[5], 0x4787c62a);
    step<f, 17>(c, d, a, b, x[6], 0xa8304613);
    step<f, 22>(b, c, d, a, x[7], 0xfd469501);
    step<f, 7>(a, b, c, d, x[8], 0x698098d8);
    step<f, 12>(d, a, b, c, x[9], 0x8b44f7af);
    step<f, 17>(c, d, a, b, x[10], 0xffff5bb1);
    step<f, 22>(b, c, d, a, x[11], 0x895cd7be);
    step<f, 7>(a, b, c, d, x[12], 0x6b901122);
    step<f, 12>(d, a, b, c, x[13], 0xfd987193);
    step<f, 17>(c, d, a, b, x[14], 0xa679438e);
    step<f, 22>(b, c, d, a, x[15], 0x49b40821);

    // round 2
    step<g, 5>(a, b, c, d, x[1], 0xf61e2562);
    step<g, 9>(d, a, b, c, x[6], 0xc040b340);
    step<g, 14>(c, d, a, b, x[11], 0x265e5a51);
    step<g, 20>(b, c, d, a, x[0], 0xe9b6c7aa);
    step<g, 5>(a, b, c, d, x[5], 0xd62f105d);
    step<g, 9>(d, a, b, c, x[10], 0x02441453);
    step<g, 14>(c, d, a, b, x[15], 0xd8a1e681);
    step<g, 20>(b, c, d, a, x[4], 0xe7d3fbc8);
    step<g, 5>(a, b, c, d, x[9], 0x21e1cde6);
    step<g, 9>(d, a, b, c, x[14], 0xc33707d6);
    step<g, 14>(c, d, a, b, x[3], 0xf4d50d87);
    step<g, 20>(b, c, d, a, x[8], 0x455a14ed);
    step<g, 5>(a, b, c, d, x[13], 0xa9e3e905);
    step<g, 9>(d, a, b, c, x[2], 0xfcefa3f8);
    step<g, 14>(c, d, a, b, x[7], 0x676f02d9);
    step<g, 20>(b, c, d, a, x[12], 0x8d2a4c8a);

    // round 3
    step<h, 4>(a, b, c, d, x[5], 0xfffa3942);
    step<h, 11>(d, a, b, c, x[8], 0x8771f681);
    step<h, 16>(c, d, a, b, x[11], 0x6d9d6122);
    step<h, 23>(b, c, d, a, x[14], 0xfde5380c);
    step<h, 4>(a, b, c, d, x[1], 0xa4beea44);
    step<h, 11>(d, a, b, c, x[4], 0x4bdecfa9);
    step<h, 16>(c, d, a, b, x[7], 0xf6bb4b60);
    step<h, 23>(b, c, d, a, x[10], 0xbebfbc70);
    step<h, 4>(a, b, c, d, x[13], 0x289b7ec6);
    step<h, 11>(d, a, b, c, x[0], 0xeaa127fa);
    step<h, 16>(c, d, a, b, x[3], 0xd4ef3085);
    step<h, 23>(b, c, d, a, x[6], 0x04881d05);
    step<h, 4>(a, b, c, d, x[9], 0xd9d4d039);
    step<h, 11>(d, a, b, c, x[12], 0xe6db99e5);
    step<h, 16>(c, d, a, b, x[15], 0x1fa27cf8);
    step<h, 23>(b, c, d, a, x[2], 0xc4ac5665);

    // round 4
    step<i, 6>(a, b, c, d, x[0], 0xf4292244);
    step<i, 10>(d, a, b, c, x[7], 0x432aff97);
    step<i, 15>(c, d, a, b, x[14], 0xab9423a7);
    step<i, 21>(b, c, d, a, x[5], 0xfc93a039);
    step<i, 6>(a, b, c, d, x[12], 0x655b59c3);
    step<i, 10>(d, a, b, c, x[3], 0x8f0ccc92);
    step<i, 15>(c, d, a, b, x[10], 0xffeff47d);
    step<i, 21>(b, c, d, a, x[1], 0x85845dd1);
    step<i, 6>(a, b, c, d, x[8], 0x6fa87e4f);
    step<i, 10>(d, a, b, c, x[15], 0xfe2ce6e0);
    step<i, 15>(c, d, a, b, x[6], 0xa3014314);
    step<i, 21>(b, c, d, a, x[13], 0x4e0811a1);
    step<i, 6>(a, b, c, d, x[4], 0xf7537e82);
    step<i, 10>(d, a, b, c, x[11], 0xbd3af235);
    step<i, 15>(c, d, a, b, x[2], 0x2ad7d2bb);
    step<i, 21>(b, c, d, a, x[9], 0xeb86d391);
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
    MD5_memset(reinterpret_cast<unsigned char *>(x), 0, sizeof x);
}

void CMD5::Encode(unsigned char *output, std::uint32_t *input, std::uint32_t length)
{
    for (std::uint32_t at = 0; at < length; ++at)
        output[at] = static_cast<unsigned char>(input[at / 4] >> (8 * (at % 4)));
}

void CMD5::Decode(std::uint32_t *output, unsigned char *input, std::uint32_t length)
{
    for (std::uint32_t at = 0; at < length; at += 4) {
        output[at / 4] = word(input + at);
    }
}

void CMD5::MD5_memcpy(unsigned char *output, unsigned char *input, std::uint32_t length)
{
    std::copy_n(input, length, output);
}

void CMD5::MD5_memset(unsigned char *output, int value, std::uint32_t length)
{
    std::fill_n(output, length, static_cast<unsigned char>(value));
#if defined(__GNUC__)
    // What is cleared here is about to go out of use; the optimiser must not skip it for that.
    __asm__ __volatile__("" : : "r"(output) : "memory");
#endif
}

int CMD5::MD5(char const *text, char *out)
{
    static constexpr char digits[] = "0123456789abcdef";
    _MD5_CTX context;
    unsigned char digest[16];
    MD5Init(&context);
    // MD5Update counts in 32 bits; longer texts go in pieces.
    auto *bytes = reinterpret_cast<unsigned char *>(const_cast<char *>(text));
    constexpr std::size_t most = 1U << 30;
    for (std::size_t left = std::strlen(text), piece = 0; left > 0; left -= piece, bytes += piece) {
        piece = std::min(left, most);
        MD5Update(&context, bytes, std::uint32_t(piece));
    }
    MD5Final(digest, &context);
    for (const unsigned char byte : digest) {
        *out++ = digits[byte >> 4];
        *out++ = digits[byte & 15];
    }
    *out = '\0';
    return 0;
}

void CMD5::StringAddOne(char *text)
{
    std::size_t at = std::strlen(text);
    while (at > 0 && text[at - 1] == 'z')
        --at;
    if (at == 0)
        return;
    std::fill(text + at, text + std::strlen(text), '0');
    char &digit = text[at - 1];
    if (digit == '9')
        digit = 'A';
    else if (digit == 'Z')
        digit = 'a';
    else
        digit = static_cast<char>(static_cast<unsigned char>(digit) + 1);
}
