#include "taskengine/request.h"

#include "taskengine/settings.h"

#include <utility>

namespace taskengine {

namespace {

template <std::size_t Size>
bool isText(const char (&field)[Size])
{
    return field[0] != '\0' && strnlen(field, Size) < Size;
}

template <std::size_t Size>
bool isTerminated(const char (&field)[Size])
{
    return strnlen(field, Size) < Size;
}

bool hasUsableProxy(const tagTaskInfo &record)
{
    const tagProxyParam &proxy = record.proxyParam;
    return record.nProxySet != 1 ||
           (isTerminated(proxy.szProxyText1) && isTerminated(proxy.szProxyText2) &&
            isTerminated(proxy.szProxyText3));
}

} // namespace

Request::Request(RequestKind requestKind, const tagTaskInfo &info,
                 std::shared_ptr<RequestTable> table)
    : kind(requestKind), options(currentOptions()), record(info), m_table(std::move(table))
{
}

bool Request::isUsable() const
{
    if (!isText(record.szTaskKey) || record.pfnStateCallback == nullptr || !hasUsableProxy(record))
        return false;
    if (kind == RequestKind::Parse)
        return isText(record.szPageURL) && record.pfnVideoInfoCallback != nullptr;
    return isText(record.szDownloadURL) && isText(record.szSavePath);
}

void Request::call(tagDownloadStateCode code, double value) const
{
    record.pfnStateCallback(record.pUserData, record.szTaskKey, code, value,
                            static_cast<FILE_TYPE>(record.nFileType));
}

/** Turns the end of a download into that of its last step. */
void Request::complete(Event &event) const
{
    const auto fault = event.completion->commit();
    event.completion.reset();
    if (!fault)
        return;
    if (fault->is(Failure::DiskFull))
        call(DOWN_STATE_DISK_NO_SPACE, 0);
    event.code = DOWN_STATE_DOWNLOAD_FAIL;
    event.value = fault->value;
}

/** The key is free before the terminal event arrives: it may be sent again from inside it. */
void Request::deliver(Event &event)
{
    if (event.completion)
        complete(event);
    if (isTerminal(event.code))
        m_table->erase(*this);
    if (event.code == DOWN_STATE_PARSE_SUCCESS)
        record.pfnVideoInfoCallback(record.pUserData, record.szTaskKey, event.code,
                                    event.text.data(), event.text.size());
    else
        call(event.code, event.value);
}

bool RequestTable::isFree(const std::string &key) const
{
    const MutexLock lock(m_mutex);
    return !m_closed && m_requests.count(key) == 0;
}

bool RequestTable::submit(const RequestPointer &request)
{
    const MutexLock lock(m_mutex);
    if (m_closed || !m_requests.emplace(request->record.szTaskKey, request).second)
        return false;
    m_commands.push_back({Command::Verb::Start, request});
    return true;
}

bool RequestTable::command(const std::string &key, Command::Verb verb)
{
    const MutexLock lock(m_mutex);
    const auto found = m_requests.find(key);
    if (found == m_requests.end())
        return false;
    m_commands.push_back({verb, found->second});
    return true;
}

void RequestTable::erase(const Request &request)
{
    const MutexLock lock(m_mutex);
    const auto found = m_requests.find(request.record.szTaskKey);
    if (found != m_requests.end() && found->second.get() == &request)
        m_requests.erase(found);
}

void RequestTable::close()
{
    std::unordered_map<std::string, RequestPointer> requests; // let go outside the lock
    std::deque<Command> commands;
    const MutexLock lock(m_mutex);
    m_closed = true;
    requests.swap(m_requests);
    commands.swap(m_commands);
}

std::deque<Command> RequestTable::takeCommands()
{
    const MutexLock lock(m_mutex);
    return std::exchange(m_commands, {});
}

} // namespace taskengine
