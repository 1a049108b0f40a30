/** The engine's side of the settings in options.h. */
#ifndef VIDEODOWN_TASKENGINE_SETTINGS_H
#define VIDEODOWN_TASKENGINE_SETTINGS_H

#include "taskengine/options.h"

#include <memory>

namespace taskengine {

/** @return the options in force; a request keeps those it was sent under */
std::shared_ptr<const Options> currentOptions();

} // namespace taskengine

#endif
