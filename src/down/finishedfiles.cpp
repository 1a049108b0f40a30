#include "down/cdown.h"
#include "down/paths.h"

#include <QFileInfo>

#include <cstdio>
#include <memory>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t copyBlock = std::size_t{256} * 1024;

struct FileCloser
{
    void operator()(FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

// Opening the destination would empty the source when both are one file, under whatever name.
bool isSameFile(FILE *source, const char *destination)
{
    struct stat from = {};
    struct stat to = {};
    return fstat(fileno(source), &from) == 0 && stat(destination, &to) == 0 &&
           from.st_dev == to.st_dev && from.st_ino == to.st_ino;
}

// Leaves the copying to the kernel, which need not hand the bytes out, and may share blocks instead
// where the file system can. Does as much as that takes; files that it cannot copy are left to us.
void copyInKernel(FILE *from, FILE *to)
{
#ifdef __linux__
    constexpr std::size_t most = std::size_t{1} << 30;
    while (copy_file_range(fileno(from), nullptr, fileno(to), nullptr, most, 0) > 0)
        continue;
#endif
}

} // namespace

bool CopyFileC(char *source, char *destination)
{
    const File from(std::fopen(source, "rb"));
    if (!from)
        return false;
    if (isSameFile(from.get(), destination))
        return true;
    const File to(std::fopen(destination, "wb"));
    if (!to)
        return false;
    std::vector<char> block(copyBlock);
    std::setvbuf(from.get(), nullptr, _IONBF, 0);
    std::setvbuf(to.get(), nullptr, _IONBF, 0);
    copyInKernel(from.get(), to.get());
    for (std::size_t got = 0; (got = std::fread(block.data(), 1, copyBlock, from.get())) > 0;)
        std::fwrite(block.data(), 1, got, to.get());
    return true;
}

bool CDown::CopyVideo(const QString &key)
{
    if (key.size() != 32)
        return true;
    QByteArray source;
    QByteArray destination;
    {
        const ControllerLock lock;
        const CXMLInfo *record = m_pHistory->item(key);
        if (record == nullptr || record->IsOrgVideo != 1)
            return false;
        source = localForm(record->FileName);
        destination =
            localForm(record->SaveAsPath + g_BackSlash + QFileInfo(record->FileName).fileName());
    }
    const ControllerUnlock unlock;
    return CopyFileC(source.data(), destination.data());
}

bool CDown::getConvertInfo(const QString &key, tagConvertInfo *info)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_pHistory->item(key);
    if (record == nullptr)
        return false;
    const Profile_Desc &profile = *record->Profile->m_pDesc;
    const bool asWanted = profile.fileTypeExt == record->VideoExt &&
                          profile.vSize_Width == record->VideoWidth &&
                          profile.vSize_Height == record->VideoHeight;
    info->nConvert = asWanted || record->IsOrgVideo == 1 ? 0 : 1;
    if (info->nConvert == 0)
        return true;
    info->strSrcFile = withForwardSlashes(record->FileName);
    QString extension;
    const QString baseName = GetFileBaseName(info->strSrcFile, extension);
    const QString target = withForwardSlashes(record->SaveAsPath + g_BackSlash + baseName);
    info->ProfileDesc = profile;
    info->strDstFile = target + u'.' + info->ProfileDesc.fileTypeExt;
    return true;
}
