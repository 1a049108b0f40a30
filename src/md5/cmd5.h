/** The MD5 message digest of RFC 1321, under the names of its reference routines. */
#ifndef VIDEODOWN_MD5_CMD5_H
#define VIDEODOWN_MD5_CMD5_H

#include "engine/visibility.h"

#include <cstdint>

/**
 * A class without data: every operation works on the caller's storage, so instances are
 * interchangeable and any thread may use one. A context must not be shared while in use.
 *
 * MD5 identifies tasks here; it protects nothing. All words are 32 bits wide.
 */
class VIDEODOWN_PUBLIC CMD5
{
public:
    /** The digest in progress. Set up by `MD5Init`, cleared by `MD5Final`. */
    struct _MD5_CTX
    {
        std::uint32_t state[4];   ///< chaining words A, B, C, D
        std::uint32_t count[2];   ///< message length in bits, low word first
        unsigned char buffer[64]; ///< partial block
    };

    CMD5() = default;
    ~CMD5() = default;

    /** Starts a digest. */
    void MD5Init(_MD5_CTX *context);
    /** Adds `length` bytes; a message may come in pieces of any size. */
    void MD5Update(_MD5_CTX *context, unsigned char *input, std::uint32_t length);
    /** Writes the 16-byte digest and sets every byte of the context to zero. */
    void MD5Final(unsigned char *digest, _MD5_CTX *context);
    /** Compresses one 64-byte block into the four chaining words. */
    void MD5Transform(std::uint32_t *state, unsigned char *block);
    /** Words to bytes, least significant first; `length` in bytes, a multiple of 4. */
    void Encode(unsigned char *output, std::uint32_t *input, std::uint32_t length);
    /** Bytes to words, least significant first; `length` in bytes, a multiple of 4. */
    void Decode(std::uint32_t *output, unsigned char *input, std::uint32_t length);
    /** Copies `length` bytes; the ranges must not overlap. */
    void MD5_memcpy(unsigned char *output, unsigned char *input, std::uint32_t length);
    /** Sets `length` bytes to `value`. */
    void MD5_memset(unsigned char *output, int value, std::uint32_t length);

    /**
     * Hex digest of a NUL-terminated text: 32 lower-case characters and a NUL.
     * @param out at least 33 bytes
     * @return always 0
     */
    int MD5(char const *text, char *out);

    /**
     * Adds one, in place, to a number whose digits run 0-9, A-Z, a-z. Other last characters become
     * the character with the next code. An empty text and one of "z" only have no successor of
     * their length and stay unchanged.
     */
    void StringAddOne(char *text);
};

#endif
