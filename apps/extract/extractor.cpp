#include "extract/extractor.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr qsizetype mostOfErrors = 65536; // bytes kept of what it says on standard error
constexpr int slice = 100;                // milliseconds

QStringList argumentsFor(const QString &address, bool asList, const extractor::Options &options)
{
    QStringList words{QStringLiteral("--ignore-config"), QStringLiteral("--no-cache-dir"),
                      QStringLiteral("--no-warnings"), QStringLiteral("--skip-download"),
                      QStringLiteral("--dump-single-json")};
    words << (asList ? QStringLiteral("--flat-playlist") : QStringLiteral("--no-playlist"));
    if (!options.cookieFile.isEmpty())
        words << QStringLiteral("--cookies") << options.cookieFile;
    return words << QStringLiteral("--") << address;
}

// "ERROR: [site] ID: What happened (caused by ...); please report this issue on ..."
QString briefError(const QByteArray &errors)
{
    QString brief;
    for (const QByteArray &line : errors.split('\n')) {
        if (line.startsWith("ERROR:"))
            brief = QString::fromUtf8(line.mid(6)).simplified();
    }
    for (const char *end : {"; please report", " (caused by"}) {
        const qsizetype at = brief.indexOf(QLatin1String(end));
        if (at > 0)
            brief.truncate(at);
    }
    return brief.isEmpty() ? QStringLiteral("yt-dlp failed and gave no reason") : brief;
}

QString notStarted(const extractor::Options &options)
{
    return QStringLiteral("\"%1\" cannot be run: install the package yt-dlp, or name the program "
                          "with --program")
        .arg(options.program);
}

} // namespace

namespace extractor {

Answer ask(const QString &address, bool asList, const Options &options)
{
    QProcess process;
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(options.program, argumentsFor(address, asList, options), QProcess::ReadOnly);
    if (!process.waitForStarted())
        return {{}, notStarted(options)};
    const QDeadlineTimer deadline(options.timeLimit);
    QByteArray json;
    QByteArray errors;
    const auto giveUp = [&](const QString &problem) {
        process.kill();
        process.waitForFinished();
        return Answer{{}, problem};
    };
    for (bool running = true; running;) {
        running = !process.waitForFinished(0) && process.state() != QProcess::NotRunning;
        if (running)
            process.waitForReadyRead(int(std::min<qint64>(slice, deadline.remainingTime())));
        json += process.readAllStandardOutput();
        errors = (errors + process.readAllStandardError()).right(mostOfErrors);
        if (json.size() > options.outputLimit)
            return giveUp(QStringLiteral("yt-dlp said more than %1 MB about this page")
                              .arg(options.outputLimit >> 20));
        if (running && deadline.hasExpired())
            return giveUp(QStringLiteral("yt-dlp took longer than %1 s for this page")
                              .arg(options.timeLimit.count()));
    }
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return {json, {}};
    return {{}, briefError(errors)};
}

} // namespace extractor
