// What the controller itself costs a task, beside as many others as the benchmark's argument says,
// with an engine that answers every request before it returns.
#include "down/cdown.h"
#include "samplehistory.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

std::string response = "title=A title of usual length\r\nauthor=Somebody\r\nlength_seconds=12\r\n"
                       "fmt_list=35/854x480/9/0/115,34/640x360/9/0/115,18/640x360/9/0/115\r\n"
                       "fmt_stream_map=35|http://host/35,34|http://host/34,18|http://host/18\r\n"
                       "thumbnail_url=http://host/picture.jpg\r\n";

void report(const tagTaskInfo &request, tagDownloadStateCode code, double value = 0)
{
    request.pfnStateCallback(request.pUserData, request.szTaskKey, code, value,
                             FILE_TYPE(request.nFileType));
}

} // namespace

int DownloadInit()
{
    return 0;
}

int DownloadCleanup()
{
    return 0;
}

int Quit()
{
    return 0;
}

int SetProductAppDataPath(const char *)
{
    return 0;
}

// NOLINTBEGIN(performance-unnecessary-value-param): the boundary passes records by value
int ParseVideoInfo(tagTaskInfo request)
{
    request.pfnVideoInfoCallback(request.pUserData, request.szTaskKey, DOWN_STATE_PARSE_SUCCESS,
                                 response.data(), response.size());
    return 0;
}

int DownloadVideo(tagTaskInfo request)
{
    report(request, DOWN_STATE_START_DOWNLOAD);
    report(request, DOWN_STATE_FILE_SIZE, 1 << 20);
    report(request, DOWN_STATE_DOWNLOAD_FINISH);
    return 0;
}

int DownloadImage(tagTaskInfo request)
{
    report(request, DOWN_STATE_START_DOWNLOAD);
    report(request, DOWN_STATE_DOWNLOAD_FINISH);
    return 0;
}
// NOLINTEND(performance-unnecessary-value-param)

int StopDownload(const char *)
{
    return 0;
}

int SuspendedDownload(const char *)
{
    return 0;
}

namespace {

void taskBeside(benchmark::State &state)
{
    const QTemporaryDir folder;
    tagDownInfo info;
    info.strDownloadPath = folder.path();
    info.nThreadNum = 2;
    CDown controller(&info);
    {
        const ControllerLock lock;
        addTasks(*controller.m_pHistory, int(state.range(0)));
    }
    const QString address = QStringLiteral("http://host/watch?v=aBcDeF-_123");
    const QString key = CDown::GetURLToMD5(address);
    Profile_Desc profile;
    profile.fileTypeExt = QStringLiteral("mp4");
    profile.vSize_Width = 640;
    profile.vSize_Height = 360;
    while (state.KeepRunning()) {
        controller.DoParseVideo(address, folder.path(), &profile, false);
        controller.DoDownloadVideo(key, true);
        const std::unique_ptr<CXMLInfo> task(controller.getXMLInfo(key));
        if (task == nullptr || task->FileSize != 1 << 20)
            state.SkipWithError("the task did not go its whole way");
        state.PauseTiming();
        controller.remove(key, false);
        state.ResumeTiming();
    }
}

BENCHMARK(taskBeside)->Name("controller/ours")->Arg(10)->Arg(1000)->Arg(10000);

} // namespace
