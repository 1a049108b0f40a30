/** Why a request to the default task engine failed, as a number and in words. */
#ifndef VIDEODOWN_TASKENGINE_FAILURE_H
#define VIDEODOWN_TASKENGINE_FAILURE_H

#include "engine/visibility.h"

#include <string>

namespace VIDEODOWN_PUBLIC taskengine {

/**
 * Why a request failed, as the value of its failure event. Values from 100 to 599 are the HTTP
 * status with which the site refused; the others are these.
 */
enum class Failure {
    BadAddress = 1000,        ///< not an address, or a page address without a video in it
    ForbiddenProtocol = 1001, ///< neither HTTP nor HTTPS, also as the target of a redirect
    UnknownHost = 1002,       ///< the host's name has no address
    ConnectionFailed = 1003,  ///< refused or unreachable
    TlsFailed = 1004,         ///< no trustworthy encrypted connection
    ProxyFailed = 1005,       ///< proxy settings incomplete, or the proxy did not serve
    TimedOut = 1006,          ///< no connection in time, or too little data for too long
    ConnectionLost = 1007,    ///< ended in the middle of an answer
    ShortBody = 1008,         ///< less data than announced
    TooManyRedirects = 1009,  ///< more than ten
    EmptyResponse = 1010,     ///< no data at all
    MalformedResponse = 1011, ///< not HTTP, contradictory, or a video-info text without a line
    ResponseTooLarge = 1012,  ///< beyond the limits of `Options`
    NotMedia = 1013,          ///< a page or text instead of a video or image
    RangeMismatch = 1014,     ///< the site continued at another place than asked
    FolderMissing = 1015,     ///< the target's folder does not exist
    NameTooLong = 1016,       ///< the file system does not take the target's name
    FileNotWritable = 1017,   ///< the target or its part file cannot be written
    FileInUse = 1018,         ///< another request is writing this target
    DiskFull = 1019,          ///< no space, or less than the video will need
    CommandNotFound = 1020,   ///< the video-info command cannot be started
    CommandFailed = 1021,     ///< the video-info command ended with an error
    Internal = 1022,          ///< none of the others, for instance out of memory
    TooManyFiles = 1023,      ///< the program or the system has too many files open
    DiskError = 1024,         ///< the disk cannot be read or written
    UnusableOutput = 1025,    ///< the video-info command printed no field, or too much
    FileTooLarge = 1026,      ///< beyond what the file system or the process may write
};

/**
 * @param value the value of a parse's failure event
 * @return whether the site answered, or could not even be asked, but has no video-info response
 */
bool meansNoVideoInfo(double value);

/**
 * @param value the value of a failure event
 * @return its cause in English, to stand behind a colon: "the site answered 404 Not Found"
 */
std::string failureText(double value);

/** @return what the user can do about it, a sentence in English; empty when nothing is known */
std::string failureAdvice(double value);

} // namespace taskengine

#endif
