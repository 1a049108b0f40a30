// Options whose values stand in the configuration file or in the environment.
#include "commandparser.h"

#include <utility>

// What may stand in the configuration file: what neither names tasks nor deletes anything.
QList<QCommandLineOption> CommandParser::settable() const
{
    QList<QCommandLineOption> result;
    for (const auto &[group, options] : groups()) {
        if (group != DeleteOption && group != JsonOption)
            result += options;
    }
    result.removeIf([this](const QCommandLineOption &each) {
        return each.names() == m_from.names() || each.names() == m_again.names() ||
               each.names() == m_dryRun.names();
    });
    return result;
}

// The settings first: of an option that stands twice, the last one counts.
QStringList CommandParser::withSettings(const QStringList &arguments)
{
    QStringList names;
    for (const QCommandLineOption &each : settable())
        names << each.names().constLast();
    QList<configuration::Setting> settings;
    if (!m_parser.isSet(m_noConfig)) {
        const auto read = configuration::fromFile(names);
        if (const auto *bad = std::get_if<arguments::Wrong>(&read))
            m_wrong = bad->why;
        else
            settings = std::get<QList<configuration::Setting>>(read);
    }
    settings += configuration::fromEnvironment(names);
    QStringList all = arguments;
    qsizetype at = 1;
    for (const configuration::Setting &setting : std::as_const(settings)) {
        const QString word = asArgument(setting);
        if (!word.isEmpty())
            all.insert(at++, word);
    }
    return all;
}

// Empty when the command does not take it, or the command line says otherwise.
QString CommandParser::asArgument(const configuration::Setting &setting)
{
    for (const auto &[group, options] : groups()) {
        for (const QCommandLineOption &each : options) {
            const QString name = each.names().constLast();
            if (name != setting.option || !takes(group) || m_parser.isSet(each) || isExcluded(name))
                continue;
            m_origins.insert(name, setting.origin);
            if (!each.valueName().isEmpty())
                return QStringLiteral("--%1=%2").arg(name, setting.value);
            const auto on = configuration::isOn(setting.value);
            if (const auto *bad = std::get_if<arguments::Wrong>(&on))
                m_wrong =
                    m_wrong.isEmpty() ? setting.origin + QLatin1String(": ") + bad->why : m_wrong;
            const auto *value = std::get_if<bool>(&on);
            return value != nullptr && *value ? QLatin1String("--") + name : QString();
        }
    }
    return {};
}

// By an option of the command line that it must not stand beside.
bool CommandParser::isExcluded(const QString &name) const
{
    const std::pair<QCommandLineOption, QCommandLineOption> pairs[] = {
        {m_videoInfo, m_infoCommand}, {m_convert, m_keepSource}, {m_quiet, m_verbose}};
    for (const auto &[one, other] : pairs) {
        if ((name == one.names().constLast() && m_parser.isSet(other)) ||
            (name == other.names().constLast() && m_parser.isSet(one)))
            return true;
    }
    return false;
}

/** Where the option's value stands, for messages. */
QString CommandParser::originOf(const QCommandLineOption &option) const
{
    const QString name = option.names().constLast();
    return m_origins.value(name, QLatin1String("--") + name);
}
