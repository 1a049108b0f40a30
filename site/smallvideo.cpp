#include "site/catalogue.h"

#include <algorithm>
#include <random>

namespace {

std::string containerSignature(int format)
{
    using namespace std::string_literals;
    const FormatDescription *const description = findFormat(format);
    const bool flv = description && description->extension == "flv"s;
    return flv ? "FLV\x01\x05\0\0\0\x09\0\0\0\0"s
               : "\0\0\0\x10"s
                 "ftypmp42\0\0\0\0"s;
}

} // namespace

std::string smallVideoBytes(unsigned number, int format, std::size_t size)
{
    // The engine's sequence is fixed by the standard, that of the distributions is not.
    std::mt19937 random(number * 64U + static_cast<unsigned>(format));
    std::string bytes = containerSignature(format);
    bytes.reserve(size);
    while (bytes.size() < size)
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(random() & 0xFFU)));
    return bytes;
}
