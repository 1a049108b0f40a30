#include "driver/taskstate.h"

QString stateName(TaskState state)
{
    switch (state) {
    case TaskState::Waiting:
    case TaskState::Running:
        return QStringLiteral("interrupted");
    case TaskState::Finished:
        return QStringLiteral("finished");
    case TaskState::Failed:
        return QStringLiteral("failed");
    case TaskState::Stopped:
        return QStringLiteral("stopped");
    case TaskState::None:
        break;
    }
    return QStringLiteral("unknown");
}
