#include "history/cxmlinfo.h"

namespace {

// Empty, not null: the two compare equal, but callers print and store the difference.
QString emptyText()
{
    return QStringLiteral("");
}

} // namespace

CXMLInfo::CXMLInfo(CXMLHistory *history) : CXMLInfo(history, QDateTime::currentDateTime())
{
    TaskCreateTime = QDateTime::currentDateTime();
    DownLoadStartTime = QDateTime::currentDateTime();
    DownLoadFinishTime = QDateTime::currentDateTime();
}

CXMLInfo::CXMLInfo(CXMLHistory *history, const QDateTime &date)
    : History(history),
      DownLoadDate(date),
      MD5Code(emptyText()),
      Title(emptyText()),
      OrgWebSite(emptyText()),
      fmt_stream_map(emptyText()),
      fmt_list(emptyText()),
      DownLoadURL(emptyText()),
      VideoExt(emptyText()),
      VideoInfoText(emptyText()),
      TaskCreateTime(date),
      DownLoadStartTime(date),
      DownLoadFinishTime(date),
      FileName(emptyText()),
      BaseName(emptyText()),
      SaveAsPath(emptyText()),
      SaveAsFileName(emptyText()),
      SaveAsExt(emptyText()),
      ImageURL(emptyText()),
      ImagePath(emptyText()),
      VideoID(emptyText()),
      ConvertionDesc(emptyText()),
      Profile(new CXMLProfile)
{
}

CXMLInfo::~CXMLInfo()
{
    delete Profile;
}
