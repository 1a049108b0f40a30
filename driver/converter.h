/** Converts finished videos with the program ffmpeg. */
#ifndef VIDEODOWN_DRIVER_CONVERTER_H
#define VIDEODOWN_DRIVER_CONVERTER_H

#include "driver/downloadtask.h"
#include "engine/visibility.h"

#include <QList>
#include <QObject>
#include <QProcess>
#include <QTemporaryFile>

#include <memory>

/** One video to convert. */
struct Conversion
{
    DownloadResult result; ///< of the download; handed back when the conversion has ended
    QString source;        ///< absolute path
    QString target;        ///< absolute path; when the name is taken, the next one with a number
    Profile_Desc profile;  ///< extension and size are heeded
    int seconds = 0;       ///< the video's length, for the progress
};

/**
 * Converts one video after the other. The new file is written under a temporary name beside the
 * target and renamed when it is complete, never over another file. The source stays.
 *
 * Threads: belongs to the thread that made it, which must run an event loop.
 */
class VIDEODOWN_PUBLIC Converter : public QObject
{
    Q_OBJECT

public:
    explicit Converter(QObject *parent = nullptr);
    /** Ends a conversion at work without any signal. */
    ~Converter() override;

    /** Whether ffmpeg is installed. */
    static bool isAvailable();

    void add(const Conversion &conversion);
    /** Ends the conversion of this task, if there is one, as stopped. */
    void stop(const QString &key);
    /** Ends all conversions as stopped. */
    void stopAll();
    bool isIdle() const { return !m_process && m_waiting.isEmpty(); }

signals:
    void started(const DownloadResult &result);
    /** In bytes of the source, estimated by time. */
    void progressed(const DownloadProgress &progress);
    /** The download's result with outcome, path (on success) and failure of the conversion. */
    void ended(const DownloadResult &result);
    void idle();

private:
    void startNext();
    void endCurrent();
    QStringList arguments() const;
    void readProgress();
    void processEnded(bool succeeded);
    bool moveToTarget(QString &path);
    void end(DownloadOutcome outcome, const QString &cause);

    QList<Conversion> m_waiting;
    Conversion m_current;
    std::unique_ptr<QTemporaryFile> m_file; // being written
    std::unique_ptr<QProcess> m_process;    // null between conversions
    bool m_stopping = false;
};

#endif
