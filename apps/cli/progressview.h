/** Showing on standard error how the tasks get on. */
#ifndef VIDEODOWN_CLI_PROGRESSVIEW_H
#define VIDEODOWN_CLI_PROGRESSVIEW_H

#include "driver/downloadtask.h"

#include <QString>

#include <functional>
#include <memory>

/** What the option `--progress` says. */
enum class ProgressMode { Auto, Always, Never };

/** Shows nothing but messages; the views below show more. One thread. */
class ProgressView
{
public:
    ProgressView() = default;
    virtual ~ProgressView() = default;
    ProgressView(const ProgressView &) = delete;
    ProgressView &operator=(const ProgressView &) = delete;

    /** A task is at work; `label` names it. */
    virtual void started(const QString &key, const QString &label);
    /** Its video is being converted. */
    virtual void converting(const QString &key, const QString &label);
    /** Its title is known. */
    virtual void renamed(const QString &key, const QString &label);
    virtual void progressed(const DownloadProgress &progress);
    virtual void ended(const QString &key);
    /** Writes lines to a stream that may be the same terminal: nothing else stands there then. */
    virtual void uncovered(const std::function<void()> &write);

    /** Writes a message line. */
    void say(const QString &line);
};

/** The view for a mode: bars on a terminal (or when forced), lines elsewhere. */
std::unique_ptr<ProgressView> makeProgressView(ProgressMode mode);

/** A bar for each task at work, redrawn in place. */
std::unique_ptr<ProgressView> makeBarView();

/** A line for each step and each quarter. */
std::unique_ptr<ProgressView> makeLineView();

#endif
