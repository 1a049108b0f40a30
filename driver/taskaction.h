/** What can be done with a task. */
#ifndef VIDEODOWN_DRIVER_TASKACTION_H
#define VIDEODOWN_DRIVER_TASKACTION_H

/** What a person may want to do with a task; see `DownloadDriver::obstacle`. */
enum class TaskAction {
    Stop,     ///< end it, keeping what is there of it
    Pause,    ///< halt its transfer
    Continue, ///< end the pause
    Move,     ///< change its turn among the waiting tasks
    Resume,   ///< continue an interrupted or stopped task
    Retry,    ///< try a failed or stopped task again
    Upgrade,  ///< replace the video by a larger one
    Rename,   ///< rename its files
    Remove,   ///< take it out of the history
    Open,     ///< watch the video
};

/** What a driver is doing with a task. */
enum class TaskActivity {
    None,        ///< nothing: it has ended, or was never added
    Waiting,     ///< it has its turn later
    Parsing,     ///< the site is being asked about it
    Downloading, ///< its video is on its way
    Paused,      ///< the same, but halted
    Copying,     ///< its video is being copied to the output folder
    Stopping,    ///< it will end soon
};

#endif
