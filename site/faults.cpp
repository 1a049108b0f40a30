#include "site/faults.h"

#include <algorithm>

void Faults::add(const Misbehaviour &fault)
{
    const std::lock_guard lock(m_mutex);
    m_entries.push_back({fault});
}

void Faults::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
}

Misbehaviour Faults::take(const std::string &target)
{
    const std::lock_guard lock(m_mutex);
    const auto fits = [&target](const Entry &entry) {
        const Misbehaviour &fault = entry.fault;
        return target.compare(0, fault.prefix.size(), fault.prefix) == 0 &&
               (fault.firstRequests == 0 || entry.met < fault.firstRequests);
    };
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), fits);
    if (entry == m_entries.end())
        return {};
    ++entry->met;
    return entry->fault;
}
