// The command videodown.
#include "commandline.h"
#include "commands.h"
#include "down/version.h"
#include "exitstatus.h"
#include "signalwatch.h"
#include "standardstreams.h"
#include "strutil/narrowtext.h"

#include <QCoreApplication>

namespace {

// What Qt notices about its surroundings is not addressed to the user of a command.
void dropQtMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                   const QString & /*message*/)
{
}

ExitStatus give(const Answer &answer)
{
    if (!answer.isError)
        return {standardstreams::writeOutput(answer.text.toUtf8()) == 0 ? ExitDone : ExitFailed, 0};
    for (const QString &line : answer.text.split(u'\n'))
        standardstreams::writeMessage(QStringLiteral("videodown: ") + line);
    return {ExitUsage, 0};
}

ExitStatus runProgram(const QStringList &arguments)
{
    const auto read = readCommandLine(arguments);
    if (const auto *answer = std::get_if<Answer>(&read))
        return give(*answer);
    const auto &line = std::get<CommandLine>(read);
    switch (line.command) {
    case Command::Get:
        return runGet(line);
    case Command::Formats:
        return runFormats(line);
    case Command::List:
        return runList(line);
    case Command::Show:
        return runShow(line);
    case Command::Resume:
        return runResume(line);
    case Command::Retry:
        return runRetry(line);
    case Command::Upgrade:
        return runUpgrade(line);
    case Command::Rename:
        return runRename(line);
    case Command::Remove:
        break;
    }
    return runRemove(line);
}

} // namespace

int main(int argc, char *argv[])
{
    standardstreams::openMissing();
    qInstallMessageHandler(dropQtMessage);
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("videodown"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VIDEODOWN_VERSION_STRING));
    narrowtext::setCodec(narrowtext::Codec::Utf8);
    const ExitStatus status = runProgram(QCoreApplication::arguments());
    if (status.signal != 0)
        SignalWatch::endBy(status.signal);
    return status.code;
}
