#include "strutil/strutil.h"

namespace strutil {

namespace {

// A function, so that texts may be trimmed while other translation units initialise.
const std::string &trimSet()
{
    static const std::string set = " \n\r\t";
    return set;
}

} // namespace

std::string trimLeft(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(trimSet());
    return first == std::string::npos ? std::string() : text.substr(first);
}

std::string trimRight(const std::string &text)
{
    const std::size_t last = text.find_last_not_of(trimSet());
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

std::string trim(const std::string &text)
{
    return trimLeft(trimRight(text));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the key is passed by value by convention
std::string getContent(const std::string &text, std::string key)
{
    const std::size_t found = text.find(key);
    return found == std::string::npos ? std::string() : text.substr(found + key.size());
}

std::vector<std::string> split(const std::string &text, const std::string &delimiters)
{
    std::vector<std::string> tokens;
    Tokenizer tokenizer(text, delimiters);
    while (tokenizer.nextToken())
        tokens.push_back(tokenizer.getToken());
    return tokens;
}

std::string toString(const bool &value)
{
    return value ? "true" : "false";
}

void string_replace(std::string &text, const std::string &search, const std::string &replacement)
{
    if (search.empty())
        return;
    std::string result;
    std::size_t from = 0;
    for (std::size_t found = text.find(search); found != std::string::npos;
         found = text.find(search, from)) {
        result.append(text, from, found - from).append(replacement);
        from = found + search.size();
    }
    text = result.append(text, from, std::string::npos);
}

const std::string Tokenizer::DEFAULT_DELIMITERS = " \t\n\r";

Tokenizer::Tokenizer(const std::string &text) : Tokenizer(text, DEFAULT_DELIMITERS) {}

Tokenizer::Tokenizer(const std::string &text, const std::string &delimiters)
    : m_buffer(text), m_delimiters(delimiters)
{
}

bool Tokenizer::nextToken()
{
    return nextToken(m_delimiters);
}

bool Tokenizer::nextToken(const std::string &delimiters)
{
    const std::size_t start = m_buffer.find_first_not_of(delimiters, m_position);
    if (start == std::string::npos) {
        m_position = m_buffer.size();
        return false;
    }
    const std::size_t end = m_buffer.find_first_of(delimiters, start);
    m_position = end == std::string::npos ? m_buffer.size() : end;
    m_token = m_buffer.substr(start, m_position - start);
    return true;
}

std::string Tokenizer::getToken() const
{
    return m_token;
}

void Tokenizer::reset()
{
    m_position = 0;
}

} // namespace strutil
