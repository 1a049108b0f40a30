/** One command's options, read and understood. */
#ifndef VIDEODOWN_CLI_COMMANDPARSER_H
#define VIDEODOWN_CLI_COMMANDPARSER_H

#include "arguments.h"
#include "commandline.h"
#include "commandoptions.h"
#include "configuration.h"

#include <QCommandLineParser>
#include <QHash>

/** Reads the command line of one command, and what the environment and the file say beside it. */
class CommandParser : private CommandOptions
{
public:
    explicit CommandParser(const CommandText &command);

    /** @param arguments the command's, its name first. To be called once. */
    std::variant<CommandLine, Answer> read(const QStringList &arguments);

    /** The options that the command takes. */
    QList<QCommandLineOption> options() const;

    QString help() const;

private:
    bool takes(unsigned group) const;

    // Settings that stand elsewhere (parsersettings.cpp)
    QList<QCommandLineOption> settable() const;
    QStringList withSettings(const QStringList &arguments);
    QString asArgument(const configuration::Setting &setting);
    bool isExcluded(const QString &name) const;
    QString originOf(const QCommandLineOption &option) const;

    Answer wrong(const QString &why) const;
    // Takes an option's value over when it is set and right; notes the first wrong one.
    template <typename Value, typename Target>
    void take(const QCommandLineOption &from, const arguments::Read<Value> &read, Target &target)
    {
        if (const auto *value = std::get_if<Value>(&read))
            target = *value;
        else if (m_wrong.isEmpty())
            m_wrong = originOf(from) + QLatin1String(": ") + std::get<arguments::Wrong>(read).why;
    }

    void readSwitches();
    void readFormat();
    void readConnection();
    void readProxy();
    void readPasswordFile();
    void readVideoInfo();
    void readTransfer();
    qsizetype chosenOf(const QCommandLineOption &option, const QStringList &words);
    QString named(const QCommandLineOption &from);
    void readArguments();
    void readLists();

    const CommandText &m_command;
    QCommandLineParser m_parser;
    CommandLine m_line;
    QString m_wrong;
    QHash<QString, QString> m_origins; // of values that are not on the command line
};

#endif
