#include "texts/programs.h"

#include "cli/commandtexts.h"
#include "extract/commandoptions.h"
#include "texts/manualpage.h"
#include "window/commandoptions.h"

namespace programs {

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

bool takesTasks(Command command)
{
    switch (command) {
    case Command::Show:
    case Command::Retry:
    case Command::Upgrade:
    case Command::Rename:
    case Command::Remove:
        return true;
    default:
        return false;
    }
}

// Options that several commands have are described once, with the commands that take them.
void addSharedOptions(ManualPage &page, const QList<CommandFacts> &all)
{
    QList<QCommandLineOption> described;
    QHash<QString, QStringList> takers;
    for (const CommandFacts &command : all) {
        for (const QCommandLineOption &option : command.options) {
            QStringList &names = takers[option.names().constLast()];
            if (names.isEmpty())
                described << option;
            names << command.name;
        }
    }
    for (const QCommandLineOption &option : std::as_const(described)) {
        const QStringList &names = takers[option.names().constLast()];
        const QString with = names.size() == all.size()
                                 ? QStringLiteral("With every command.")
                                 : QStringLiteral("With %1.").arg(names.join(QLatin1String(", ")));
        page.addItem(termFor(option), option.description() + u' ' + with);
    }
}

void addSeeAlso(ManualPage &page, const QString &others)
{
    page.addSection(QStringLiteral("SEE ALSO"));
    page.addParagraph(others);
}

QByteArray commandPage()
{
    const QList<CommandFacts> all = commands();
    ManualPage page(QStringLiteral("videodown"),
                    QStringLiteral("download videos from video pages"));
    page.addSection(QStringLiteral("SYNOPSIS"));
    page.addParagraph(QStringLiteral("videodown COMMAND [options] [arguments]"));
    page.addSection(QStringLiteral("DESCRIPTION"));
    page.addParagraph(text(overviewText).section(u'\n', 1, 1));
    page.addSection(QStringLiteral("COMMANDS"));
    for (const CommandFacts &command : all)
        page.addItem(command.usage.section(u' ', 1), command.description);
    page.addParagraph(QStringLiteral("A TASK is the address of a page, or the beginning of a key "
                                     "that \"videodown list\" shows."));
    page.addSection(QStringLiteral("OPTIONS"));
    addSharedOptions(page, all);
    page.addSection(QStringLiteral("ENVIRONMENT AND FILES"));
    page.addItem(
        QStringLiteral("$XDG_CONFIG_HOME/videodown/config, or ~/.config/videodown/config"),
        QStringLiteral("Options, one per line as \"option = value\". The command line comes "
                       "before the environment, and that before this file."));
    page.addItem(QStringLiteral("VIDEODOWN_OPTION"),
                 QStringLiteral("The value of an option, as in VIDEODOWN_JOBS=5."));
    page.addItem(QStringLiteral("NO_COLOR"),
                 QStringLiteral("Has no effect: the program uses no colours."));
    page.addItem(QStringLiteral("$XDG_DATA_HOME/videodown/history.xml, or "
                                "~/.local/share/videodown/history.xml"),
                 QStringLiteral("The history."));
    page.addSection(QStringLiteral("EXIT STATUS"));
    page.addParagraph(text(overviewText).section(QStringLiteral("Exit status: "), 1));
    addSeeAlso(page, QStringLiteral("videodown-extract(1), videodown-window(1)"));
    return page.text();
}

// Of a program without commands.
QByteArray plainPage(const QString &program, const QString &summary, const QString &arguments,
                     const QString &description, const QList<QCommandLineOption> &options,
                     const QString &others)
{
    ManualPage page(program, summary);
    page.addSection(QStringLiteral("SYNOPSIS"));
    page.addParagraph(program + QLatin1String(" [options] ") + arguments);
    page.addSection(QStringLiteral("DESCRIPTION"));
    page.addParagraph(description);
    page.addSection(QStringLiteral("OPTIONS"));
    for (const QCommandLineOption &option : options)
        page.addItem(termFor(option), option.description());
    addSeeAlso(page, others);
    return page.text();
}

} // namespace

QList<CommandFacts> commands()
{
    QList<CommandFacts> result;
    for (const CommandText *command : allCommands())
        result.append({text(command->name), text(command->usage), text(command->description),
                       optionsOf(*command), takesTasks(command->command)});
    return result;
}

QString termFor(const QCommandLineOption &option)
{
    QStringList names;
    for (const QString &name : option.names())
        names << (name.size() == 1 ? QLatin1String("-") : QLatin1String("--")) + name;
    const QString value = option.valueName().isEmpty() ? QString() : u' ' + option.valueName();
    return names.join(QLatin1String(", ")) + value;
}

QString inShort(const QString &text)
{
    QString result = text.simplified();
    for (const char *end : {". ", ": ", "; "})
        result = result.section(QString::fromLatin1(end), 0, 0);
    return result.endsWith(u'.') ? result.chopped(1) : result;
}

QByteArray manualOf(const QString &program)
{
    if (program == QLatin1String("videodown"))
        return commandPage();
    if (program == QLatin1String("videodown-extract"))
        return plainPage(program, QStringLiteral("ask yt-dlp what a video page offers"),
                         QStringLiteral("ADDRESS"), extractoptions::description(),
                         extractoptions::all(), QStringLiteral("videodown(1), yt-dlp(1)"));
    if (program == QLatin1String("videodown-window"))
        return plainPage(program, QStringLiteral("download videos from video pages, in a window"),
                         QStringLiteral("[ADDRESS...]"), windowoptions::description(),
                         {windowoptions::history()},
                         QStringLiteral("videodown(1), videodown-extract(1)"));
    return {};
}

} // namespace programs
