#include "site/faults.h"

#include <algorithm>

std::shared_ptr<void> Crowd::join(unsigned most)
{
    const std::lock_guard lock(m_mutex);
    if (most > 0 && *m_members >= most)
        return nullptr;
    ++*m_members;
    return {m_members.get(), [members = m_members](void *) { --*members; }};
}

std::chrono::nanoseconds Crowd::waitFor(std::uint64_t bytes, std::uint64_t perSecond)
{
    const auto now = std::chrono::steady_clock::now();
    const auto seconds = static_cast<double>(bytes) / static_cast<double>(perSecond);
    const std::lock_guard lock(m_mutex);
    // Who was woken late may catch up.
    m_idleFrom = std::max(m_idleFrom, now - std::chrono::milliseconds(50)) +
                 std::chrono::nanoseconds(static_cast<std::int64_t>(seconds * 1e9));
    return std::max(m_idleFrom - now, std::chrono::nanoseconds(0));
}

void Faults::add(const Misbehaviour &fault)
{
    const std::lock_guard lock(m_mutex);
    m_entries.push_back({{fault}});
}

void Faults::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
}

MetFault Faults::take(const std::string &target)
{
    const std::lock_guard lock(m_mutex);
    const auto fits = [&target](const Entry &entry) {
        const Misbehaviour &fault = entry.meeting.fault;
        return target.compare(0, fault.prefix.size(), fault.prefix) == 0 &&
               (fault.firstRequests == 0 || entry.met < fault.firstRequests);
    };
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), fits);
    if (entry == m_entries.end())
        return {};
    ++entry->met;
    return entry->meeting;
}
