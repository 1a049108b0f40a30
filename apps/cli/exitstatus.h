/** How the program ends. */
#ifndef VIDEODOWN_CLI_EXITSTATUS_H
#define VIDEODOWN_CLI_EXITSTATUS_H

/** Exit statuses; they stand in the help text. */
enum ExitCode : int {
    ExitDone = 0,    ///< every task is done
    ExitFailed = 1,  ///< a task failed or was stopped, or results or history could not be written
    ExitUsage = 2,   ///< wrong options or arguments; nothing was begun
    ExitFolder = 3,  ///< a folder or the log cannot be used; nothing was begun
    ExitHistory = 4, ///< the history cannot be used; nothing was begun
};

/** A program that a signal interrupted ends by that signal, so that its caller can tell. */
struct ExitStatus
{
    int code = ExitDone;
    int signal = 0; ///< to end by; 0: by exiting with `code`
};

#endif
