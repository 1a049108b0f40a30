#include "history/cxmlhistory.h"

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
    for (qsizetype i = 0; i < m_InfoList.size(); ++i) {
        if (m_InfoList.at(i)->MD5Code == key)
            return int(i);
    }
    return -1;
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
    qDeleteAll(m_InfoList);
    m_InfoList.clear();
}
