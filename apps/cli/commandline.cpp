#include "commandline.h"

#include "commandparser.h"
#include "taskengine/options.h"

#include <QCoreApplication>

namespace {

using commandoptions::text;

Answer helpOn(const QString &name)
{
    if (const CommandText *command = commandNamed(name))
        return {CommandParser(*command).help(), false};
    if (name.isEmpty())
        return {text(overviewText), false};
    return {QStringLiteral("there is no command \"%1\"\nTry: videodown help").arg(name), true};
}

} // namespace

QList<QCommandLineOption> optionsOf(const CommandText &command)
{
    return CommandParser(command).options();
}

std::variant<CommandLine, Answer> readCommandLine(const QStringList &arguments)
{
    const QString name = arguments.value(1);
    if (const CommandText *command = commandNamed(name))
        return CommandParser(*command).read(arguments.mid(1));
    if (name == QLatin1String("-v") || name == QLatin1String("--version"))
        return Answer{QStringLiteral("videodown %1 (Qt %2, %3)\n")
                          .arg(QCoreApplication::applicationVersion(), QLatin1String(qVersion()),
                               QString::fromStdString(taskengine::transferLibrary())),
                      false};
    if (name == QLatin1String("-h") || name == QLatin1String("--help"))
        return helpOn({});
    if (name == QLatin1String("help"))
        return helpOn(arguments.value(2));
    if (name.isEmpty())
        return Answer{QStringLiteral("no command given\nTry: videodown help"), true};
    return helpOn(name);
}
