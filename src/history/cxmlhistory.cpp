#include "history/cxmlhistory.h"

#include <algorithm>
#include <utility>

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
    return m_InfoList.value(index);
}

int CXMLHistory::GetIndex(const QString &key) const
{
    const auto has = [&](const CXMLInfo *info) { return sameText(info->MD5Code, key); };
    const auto first = std::find_if(m_InfoList.cbegin(), m_InfoList.cend(), has);
    return first == m_InfoList.cend() ? -1 : int(first - m_InfoList.cbegin());
}

CXMLInfo *CXMLHistory::Add(CXMLInfo *info)
{
    CXMLInfo *added = info != nullptr ? info : new CXMLInfo(this);
    m_InfoList.append(added);
    return added;
}

void CXMLHistory::remove(int index)
{
    if (index >= 0 && index < m_InfoList.size())
        m_InfoList.removeAt(index);
}

void CXMLHistory::removeAll()
{
    QList<CXMLInfo *> all = std::exchange(m_InfoList, {});
    std::sort(all.begin(), all.end());
    qDeleteAll(all.begin(), std::unique(all.begin(), all.end()));
}
