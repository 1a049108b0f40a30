/** How a download leaves its part file. */
#ifndef VIDEODOWN_TASKENGINE_PARTENDING_H
#define VIDEODOWN_TASKENGINE_PARTENDING_H

#include "taskengine/eventqueue.h"
#include "taskengine/partfile.h"
#include "taskengine/targetfile.h"

#include <memory>

namespace taskengine {

/** Closes the file. What nobody takes up again is not left behind. */
void leavePart(PartFile &part, bool mayContinue);

/** @return the step that gives a part file the name of its target */
std::unique_ptr<Completion> partCompletion(std::unique_ptr<PartFile> part,
                                           std::shared_ptr<TargetFile> target);

/** @return the step that leaves a part file, and waits for the disk, for a later request */
std::unique_ptr<Completion> partLeaving(std::unique_ptr<PartFile> part);

} // namespace taskengine

#endif
