// Downloads one video: example ADDRESS FOLDER
#include <down/cdown.h>
#include <strutil/narrowtext.h>

#include <cstdio>
#include <future>

struct Application
{
    CDown *down = nullptr;
    std::promise<bool> finished;
};

// The response is in the task's record: ask for thumbnail and video.
static int onVideoInfo(void *user, const char *key, tagDownloadStateCode, char *, unsigned long)
{
    auto *application = static_cast<Application *>(user);
    const int result = application->down->DoDownloadVideo(QString::fromLatin1(key), true);
    if (result == -1 || application->down->getDownState(QString::fromLatin1(key)) == -1)
        application->finished.set_value(false); // refused, or the site offers no formats
    return result;
}

static int onState(void *user, const char *, tagDownloadStateCode code, double, FILE_TYPE type)
{
    auto *application = static_cast<Application *>(user);
    const bool video = type == FILE_TYPE_VIDEO;
    if (code == DOWN_STATE_PARSE_FAIL || (code == DOWN_STATE_DOWNLOAD_FAIL && video))
        application->finished.set_value(false);
    if (code == DOWN_STATE_DOWNLOAD_FINISH && video)
        application->finished.set_value(true);
    return 0;
}

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    narrowtext::setCodec(narrowtext::Codec::Utf8); // titles in any script keep their names
    Application application;
    tagDownInfo settings;
    settings.pUserData = &application;
    settings.pfnVideoInfoCallback = onVideoInfo;
    settings.pfnStateCallback = onState;
    settings.strDownloadPath = QString::fromLocal8Bit(argv[2]);
    settings.nThreadNum = 3;
    CDown down(&settings);
    application.down = &down;
    CDown::Downinit();

    Profile_Desc profile; // the picture that is wanted; the next larger one will do
    profile.fileTypeExt = QStringLiteral("mp4");
    profile.vSize_Width = 640;
    profile.vSize_Height = 360;
    const QString address = QString::fromLocal8Bit(argv[1]);
    down.DoParseVideo(address, settings.strDownloadPath, &profile, false);

    const bool finished = application.finished.get_future().get();
    CDown::Quit(); // no callback comes after it
    CDown::DownUninit();
    CXMLInfo *task = down.getXMLInfo(CDown::GetURLToMD5(address));
    if (finished)
        std::puts(qUtf8Printable(CDown::getFileName(task)));
    return finished ? 0 : 1;
}
