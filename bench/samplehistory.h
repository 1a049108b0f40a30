/** A history of any size, so that every benchmark speaks of the same tasks. */
#ifndef VIDEODOWN_BENCH_SAMPLEHISTORY_H
#define VIDEODOWN_BENCH_SAMPLEHISTORY_H

#include "down/cdown.h"
#include "history/cxmlhistory.h"

/** Adds `tasks` finished tasks with texts of usual length, spread over the days of a month. */
inline void addTasks(CXMLHistory &history, int tasks)
{
    for (int i = 0; i < tasks; ++i) {
        CXMLInfo *task = history.Add(nullptr);
        task->Title = QStringLiteral("A title of usual length & with an é, number %1").arg(i);
        task->OrgWebSite = QStringLiteral("http://host/watch?v=%1").arg(i);
        task->MD5Code = CDown::GetURLToMD5(task->OrgWebSite);
        task->fmt_list = QStringLiteral("35/854x480/9/0/115,34/640x360/9/0/115,18/640x360/9/0/115");
        task->fmt_stream_map = QStringLiteral("34|http://host/stream?id=1&key=2,").repeated(4);
        task->DownLoadDate = QDateTime(QDate(2012, 3, 1 + i % 28), QTime(9, 5, 3));
    }
}

#endif
