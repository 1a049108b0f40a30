/** Building engine requests. Internal to src/down. */
#ifndef VIDEODOWN_DOWN_ENGINEREQUEST_H
#define VIDEODOWN_DOWN_ENGINEREQUEST_H

#include "down/cdown.h"
#include "down/paths.h"

#include <cstring>

namespace request {

/** Whether `text` and its NUL fit a field. */
template <std::size_t Size>
bool fits(const char (&)[Size], const QByteArray &text)
{
    return text.size() < qsizetype(Size);
}

/** Copies `text` into a field. @return false, with the field unchanged, when it does not fit */
template <std::size_t Size>
bool fill(char (&field)[Size], const QString &text)
{
    const QByteArray bytes = localForm(text);
    if (!fits(field, bytes))
        return false;
    std::memset(field, 0, Size);
    std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return true;
}

/** Sets what all requests have in common. */
void fillCommon(tagTaskInfo &task, const CDown &controller, int taskType) VIDEODOWN_NEEDS_LOCK;

/** The library's two engine callbacks, whose addresses travel in the requests. */
struct Callbacks
{
    VideoInfoCallbackFunction videoInfo;
    StateCallbackFunction state;
};
Callbacks callbacks(); // engineevents.cpp

} // namespace request

#endif
