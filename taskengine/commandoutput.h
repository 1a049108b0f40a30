/** What a video-info command has printed, judged before anybody relies on it. */
#ifndef VIDEODOWN_TASKENGINE_COMMANDOUTPUT_H
#define VIDEODOWN_TASKENGINE_COMMANDOUTPUT_H

#include <cstddef>
#include <optional>
#include <string>

namespace taskengine {

/** Something in the output that would have the wrong file fetched, or none. */
struct Mistake
{
    std::size_t line;   ///< where, counted from 1; 0: something is missing
    const char *kind;   ///< as `command_fault` in options.h has it
    std::string detail; ///< the piece of text that it is about, shortened
};

/** @return the first mistake in the output of a command that ended well; nothing when it is good */
std::optional<Mistake> mistakeIn(const std::string &output);

/** @return the lines to deliver instead of that output: no formats, and the mistake */
std::string linesFor(const Mistake &mistake);

/** @return the lines with a field "by=WORD" behind the first format in `fmt_list` */
std::string signedLines(std::string lines, const std::string &word);

} // namespace taskengine

#endif
