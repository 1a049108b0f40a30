// What sites and commands send, on its way into lines; addresses; range headers.
#include "expect.h"

#include "taskengine/address.h"
#include "taskengine/responsehead.h"
#include "taskengine/videoinfosource.h"

#include <string_view>

namespace {

// Whatever came in, what goes on is lines of "key=value" that no value can forge.
void checkLines(const std::string &lines, std::size_t most)
{
    expect(lines.find('\0') == std::string::npos, "no NUL");
    std::string_view rest = lines;
    std::size_t count = 0;
    for (; !rest.empty(); ++count) {
        const std::size_t end = rest.find("\r\n");
        expect(end != std::string_view::npos, "every line is ended");
        const std::string_view line = rest.substr(0, end);
        expect(line.find_first_of("\r\n") == std::string_view::npos, "no line end in a line");
        expect(line.find('=') != std::string_view::npos && line.front() != '=', "a key");
        rest.remove_prefix(end + 2);
    }
    expect(count <= most, "no more lines than fields");
}

std::size_t pieces(const std::string &text, std::string_view separators)
{
    std::size_t count = 1;
    for (const char character : text)
        count += separators.find(character) != std::string_view::npos ? 1 : 0;
    return count;
}

void checkRange(const std::string &text)
{
    const auto range = taskengine::parseContentRange(text);
    if (!range || range->first < 0)
        return;
    expect(range->first <= range->last, "a range has an order");
    expect(range->total < 0 || range->last < range->total, "a range lies in its file");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const taskengine::VideoInfoSource source;
    checkLines(source.lines(text), pieces(text, "&"));
    checkLines(taskengine::linesOfCommand(text), pieces(text, "\r\n"));
    const std::string address = source.infoAddress(text.substr(0, text.find('\0')));
    expect(address.empty() || address.find("/get_video_info?video_id=") != std::string::npos,
           "only the site's information is asked for");
    expect(address.find_first_of("\r\n ") == std::string::npos, "an address is one word");
    taskengine::addressFault(text.substr(0, text.find('\0')));
    checkRange(text);
    return 0;
}
