/** Small functions on narrow strings. Every byte is a character; no locale, no encoding. */
#ifndef VIDEODOWN_STRUTIL_STRUTIL_H
#define VIDEODOWN_STRUTIL_STRUTIL_H

#include "engine/visibility.h"

#include <cstddef>
#include <string>
#include <vector>

namespace VIDEODOWN_PUBLIC strutil {

/** `text` without its leading spaces, line feeds, carriage returns and tabs. */
std::string trimLeft(const std::string &text);
/** `text` without its trailing ones. */
std::string trimRight(const std::string &text);
/** `text` without either. */
std::string trim(const std::string &text);

/** What follows the first occurrence of `key` in `text`; empty when there is none. */
std::string getContent(const std::string &text, std::string key);

/** The non-empty pieces of `text` between bytes of the set `delimiters`, in order. */
std::vector<std::string> split(const std::string &text, const std::string &delimiters);

/** "true" or "false". */
std::string toString(const bool &value);

/**
 * Replaces every occurrence of `search` in `text`, left to right; inserted text is not searched
 * again. An empty `search` leaves the text unchanged.
 */
void string_replace(std::string &text, const std::string &search, const std::string &replacement);

/**
 * Steps through the tokens of a text: the runs of bytes that are not in a delimiter set, so never
 * an empty one. Owns copies of its text and set. Not for use by two threads at once.
 */
class Tokenizer
{
public:
    /** Space, tab, line feed, carriage return. */
    static const std::string DEFAULT_DELIMITERS;

    explicit Tokenizer(const std::string &text);
    Tokenizer(const std::string &text, const std::string &delimiters);

    /** Steps to the next token. @return false at the end; the token then keeps its value */
    bool nextToken();
    /** The same with another set for this one step. */
    bool nextToken(const std::string &delimiters);
    /** The token of the last successful step; empty before it. */
    std::string getToken() const;
    /** Back to the start of the text; the token keeps its value. */
    void reset();

private:
    std::size_t m_position = 0;
    std::string m_buffer;
    std::string m_token;
    std::string m_delimiters;
};

} // namespace strutil

#endif
