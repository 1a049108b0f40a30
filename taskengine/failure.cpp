#include "taskengine/failure.h"

#include <algorithm>
#include <array>

namespace taskengine {

namespace {

struct Words
{
    int value;
    const char *text;
    const char *advice;
};

constexpr const char *parseAgain = "The address may have expired: parse the page again.";
constexpr const char *tryLater = "Try again later.";
constexpr const char *checkAddress = "Check the address.";
constexpr const char *byHand = "Run the command by hand with this address to see what it says.";

constexpr int valueOf(Failure failure)
{
    return static_cast<int>(failure);
}

/** Reason phrases after RFC 9110, section 15, and RFC 6585 for 429. */
constexpr std::array<Words, 14> statuses{{
    {400, "Bad Request", parseAgain},
    {401, "Unauthorized", "The site wants a login, which is not supported."},
    {403, "Forbidden", parseAgain},
    {404, "Not Found", checkAddress},
    {407, "Proxy Authentication Required", "Check user and password of the proxy."},
    {408, "Request Timeout", tryLater},
    {410, "Gone", parseAgain},
    {416, "Range Not Satisfiable", parseAgain},
    {429, "Too Many Requests", tryLater},
    {451, "Unavailable For Legal Reasons", ""},
    {500, "Internal Server Error", tryLater},
    {502, "Bad Gateway", tryLater},
    {503, "Service Unavailable", tryLater},
    {504, "Gateway Timeout", tryLater},
}};

constexpr std::array<Words, 27> failures{{
    {valueOf(Failure::BadAddress), "not the address of a video", checkAddress},
    {valueOf(Failure::ForbiddenProtocol), "the address leads away from HTTP and HTTPS",
     checkAddress},
    {valueOf(Failure::UnknownHost), "unknown host",
     "Check the address and the connection to the network."},
    {valueOf(Failure::ConnectionFailed), "no connection to the host",
     "Check the connection to the network, or try again later."},
    {valueOf(Failure::TlsFailed), "no trustworthy encrypted connection",
     "Check the clock of this computer and its certificates."},
    {valueOf(Failure::ProxyFailed), "the proxy does not serve", "Check the proxy settings."},
    {valueOf(Failure::TimedOut), "no answer in time", tryLater},
    {valueOf(Failure::ConnectionLost), "the connection broke off", tryLater},
    {valueOf(Failure::ShortBody), "the site sent less than it announced", tryLater},
    {valueOf(Failure::TooManyRedirects), "redirected too many times", checkAddress},
    {valueOf(Failure::EmptyResponse), "the site sent an empty answer", parseAgain},
    {valueOf(Failure::MalformedResponse), "the answer makes no sense", checkAddress},
    {valueOf(Failure::ResponseTooLarge), "the answer is too large", checkAddress},
    {valueOf(Failure::NotMedia), "the site sent a page instead of the file", parseAgain},
    {valueOf(Failure::RangeMismatch), "the site does not continue where the file ends", tryLater},
    {valueOf(Failure::FolderMissing), "the download folder does not exist",
     "Create the folder or choose another one."},
    {valueOf(Failure::NameTooLong), "the file's name is too long",
     "Choose a download folder with a shorter path or another file system."},
    {valueOf(Failure::FileNotWritable), "the file cannot be written",
     "Check the permissions of the download folder, and what is in the file's place."},
    {valueOf(Failure::FileInUse), "another download is writing this file",
     "Wait until it has ended."},
    {valueOf(Failure::DiskFull), "the disk is full", "Free some space and try again."},
    {valueOf(Failure::CommandNotFound), "the video-info command cannot be started",
     "Check the name of the command, and that it is installed and executable."},
    {valueOf(Failure::CommandFailed), "the video-info command failed", byHand},
    {valueOf(Failure::Internal), "internal error", ""},
    {valueOf(Failure::TooManyFiles), "too many files are open",
     "Download fewer videos at once, or allow more open files."},
    {valueOf(Failure::DiskError), "the disk reports an error", "Check the disk."},
    {valueOf(Failure::UnusableOutput), "the video-info command gave no usable answer", byHand},
    {valueOf(Failure::FileTooLarge), "the file is larger than the disk or the system allows",
     "Choose a smaller format, or a download folder on another file system."},
}};

template <typename Table>
const Words *find(const Table &table, double value)
{
    const auto found = std::find_if(table.begin(), table.end(),
                                    [value](const Words &words) { return words.value == value; });
    return found == table.end() ? nullptr : &*found;
}

std::string statusText(double value)
{
    const Words *words = find(statuses, value);
    const std::string number = std::to_string(static_cast<int>(value));
    return "the site answered " + number + (words ? std::string(" ") + words->text : "");
}

} // namespace

bool meansNoVideoInfo(double value)
{
    constexpr std::array none{Failure::BadAddress, Failure::EmptyResponse,
                              Failure::MalformedResponse, Failure::ResponseTooLarge,
                              Failure::TooManyRedirects};
    return (value >= 400 && value < 500 && value != 407) ||
           std::any_of(none.begin(), none.end(),
                       [value](Failure failure) { return value == valueOf(failure); });
}

std::string failureText(double value)
{
    if (value >= 100 && value < 600)
        return statusText(value);
    const Words *words = find(failures, value);
    return words ? words->text : "unknown cause";
}

std::string failureAdvice(double value)
{
    const Words *words = value < 600 ? find(statuses, value) : find(failures, value);
    return words ? words->advice : "";
}

} // namespace taskengine
