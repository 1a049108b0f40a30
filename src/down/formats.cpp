#include "down/cdown.h"
#include "video/formatentry.h"
#include "video/formatselection.h"

QString CDown::getHttp(const QStringList &entries, int fmt)
{
    return formatentry::streamAddress(entries, fmt);
}

QString CDown::getDownLoadHttp(const QString &fmtStreamMap, int fmt, int &fallback)
{
    return formatentry::streamAddressOrFirst(fmtStreamMap, fmt, fallback);
}

void CDown::CopyVideoStruct(tagVideoInfo *src, tagVideoInfo *dst)
{
    formatentry::copyVideoStruct(*src, *dst);
}

bool CDown::getBestVideoFmt(const QString &fmtList, tagVideoInfo *want, tagVideoInfo *out)
{
    return formatselection::bestByProfile(fmtList, *want, *out);
}

bool CDown::getBestVideoSrcFmt(const QString &fmtStreamMap, const QString &fmtList,
                               tagVideoInfo * /*want*/, tagVideoInfo *out)
{
    formatselection::bestSource(fmtStreamMap, fmtList, *out);
    return false;
}

bool CDown::FindVideSizeToEqual(const QString &fmtList, tagVideoInfo *want, tagVideoInfo *out)
{
    return formatselection::equalOrLarger(fmtList, *want, *out);
}
