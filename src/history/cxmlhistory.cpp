#include "history/cxmlhistory.h"

#include <algorithm>

namespace {

// Keys differ early, so comparing them here and now is faster than a call for each.
bool sameText(const QString &a, const QString &b)
{
    return a.size() == b.size() && std::equal(a.cbegin(), a.cend(), b.cbegin());
}

} // namespace

CXMLHistory::CXMLHistory() = default;

CXMLHistory::~CXMLHistory()
{
    removeAll();
}

int CXMLHistory::count() const
{
    return int(m_InfoList.size());
}

CXMLInfo *CXMLHistory::item(const QString &key) const
{
    const int index = GetIndex(key);
    return index < 0 ? nullptr : m_InfoList.at(index);
}

CXMLInfo *CXMLHistory::item(int index) const
{
    return m_InfoList.at(index);
}

int CXMLHistory::GetIndex(const QString &key) const
{
    std::atomic<int> &found = m_found[qHash(key) % m_found.size()];
    const int guess = found.load(std::memory_order_relaxed);
    if (guess < count() && m_InfoList.at(guess)->MD5Code == key)
        return guess;
    const auto has = [&](const CXMLInfo *info) { return sameText(info->MD5Code, key); };
    const auto first = std::find_if(m_InfoList.cbegin(), m_InfoList.cend(), has);
    const auto position = int(first - m_InfoList.cbegin());
    found.store(position, std::memory_order_relaxed); // if there is none, the next one added may be
    return position < count() ? position : -1;
}

// After a removal a guess may point at the second of two records with one key.
void CXMLHistory::forgetPositions()
{
    for (std::atomic<int> &found : m_found)
        found.store(0, std::memory_order_relaxed);
}

CXMLInfo *CXMLHistory::Add(CXMLInfo *info)
{
    CXMLInfo *added = info != nullptr ? info : new CXMLInfo(this);
    m_InfoList.append(added);
    return added;
}

void CXMLHistory::remove(int index)
{
    if (index < 0 || index >= m_InfoList.size())
        return;
    m_InfoList.removeAt(index);
    forgetPositions();
}

void CXMLHistory::removeAll()
{
    qDeleteAll(m_InfoList);
    m_InfoList.clear();
    forgetPositions();
}
