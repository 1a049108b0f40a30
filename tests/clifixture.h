/** The program videodown, run in a folder and with a history of its own against a local site. */
#ifndef VIDEODOWN_TESTS_CLIFIXTURE_H
#define VIDEODOWN_TESTS_CLIFIXTURE_H

#include "site/videosite.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;

class CliFixture
{
protected:
    static constexpr std::chrono::milliseconds patience{60000}; // for what takes a moment
    static constexpr std::size_t videoSize = 50000;

    struct Ended
    {
        int code;
        bool bySignal;
        QString output;
        QString error;
    };

    /** Under the emulator (scripts/test-i386) a program with threads hangs when a signal comes. */
    static bool losesSignals(int signal = SIGINT)
    {
        return signal != SIGKILL && qEnvironmentVariableIsSet("VIDEODOWN_EMULATED");
    }

    // QSKIP without a second argument is no standard C++.
    static void skip(const char *reason) { QTest::qSkip(reason, __FILE__, __LINE__); }

    bool startSite()
    {
        m_site.setSmallVideoSize(videoSize);
        return m_site.start();
    }

    void makeFolder()
    {
        m_root = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", QFile::encodeName(path("data")));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path("config")));
        qputenv("VIDEODOWN_VIDEO_INFO", "site"); // whatever is installed here
    }

    void endFaults()
    {
        m_site.clearMisbehaviours();
        m_site.release();
    }

    // The bodies of the streams halt in the middle until the site is told to go on.
    void haltStreams(std::size_t after = videoSize / 2)
    {
        Misbehaviour halt;
        halt.prefix = "/stream/";
        halt.holdAfter = after;
        m_site.addMisbehaviour(halt);
    }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
    }

    /** A file of the site's own videos. */
    static QByteArray media(const char *name)
    {
        return contents(QStringLiteral(VIDEODOWN_MEDIA) + QString::fromLatin1(name));
    }

    static QByteArray smallVideo(unsigned number, int format)
    {
        return QByteArray::fromStdString(smallVideoBytes(number, format, videoSize));
    }

    QString page(const char *video) const
    {
        return QString::fromStdString(m_site.pageAddress(video));
    }

    QString path(const char *name) const { return m_root->filePath(QString::fromUtf8(name)); }

    QStringList files(const char *folder = ".") const
    {
        return QDir(path(folder)).entryList({u"*.flv"_s, u"*.mp4"_s}, QDir::Files, QDir::Name);
    }

    void begin(QProcess &process, const QStringList &arguments) const
    {
        process.setWorkingDirectory(m_root->path());
        process.start(QStringLiteral(VIDEODOWN_PROGRAM), arguments);
    }

    static Ended end(QProcess &process)
    {
        if (!process.waitForFinished(int(patience.count())))
            qFatal("the program does not end");
        return {process.exitCode(), process.exitStatus() == QProcess::CrashExit,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    Ended run(const QStringList &arguments, const QByteArray &input = {}) const
    {
        QProcess process;
        begin(process, arguments);
        process.write(input);
        process.closeWriteChannel();
        return end(process);
    }

    VideoSite m_site;
    std::unique_ptr<QTemporaryDir> m_root;
};

#endif
