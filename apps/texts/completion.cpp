#include "texts/completion.h"

#include "texts/programs.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace completion {

namespace {

using programs::CommandFacts;

// What can follow an option, by the name of its value.
QString choicesFor(const QString &valueName)
{
    if (valueName == u"when"_s)
        return u"auto always never"_s;
    if (valueName == u"source"_s)
        return u"auto site"_s;
    if (valueName == u"action"_s)
        return u"rename skip overwrite"_s;
    return {};
}

QStringList dashed(const QCommandLineOption &option)
{
    QStringList names;
    for (const QString &name : option.names())
        names << (name.size() == 1 ? u"-"_s : u"--"_s) + name;
    return names;
}

QList<QCommandLineOption> allOptions(const QList<CommandFacts> &commands)
{
    QList<QCommandLineOption> all;
    QStringList seen;
    for (const CommandFacts &command : commands) {
        for (const QCommandLineOption &option : command.options) {
            if (seen.contains(option.names().constLast()))
                continue;
            seen << option.names().constLast();
            all << option;
        }
    }
    return all;
}

QStringList namesOf(const QList<CommandFacts> &commands)
{
    QStringList names;
    for (const CommandFacts &command : commands)
        names << command.name;
    return names;
}

QString quoted(QString text)
{
    return u'\'' + text.replace(u'\'', u"'\\''"_s) + u'\'';
}

// The names of options whose values are of these names, for a shell's case.
QString valuePattern(const QList<QCommandLineOption> &options, const QStringList &valueNames)
{
    QStringList names;
    for (const QCommandLineOption &option : options) {
        if (valueNames.contains(option.valueName()))
            names += dashed(option);
    }
    return names.join(u'|');
}

QString bashValueCases(const QList<QCommandLineOption> &options)
{
    QString text;
    const auto add = [&text](const QString &pattern, const QString &generator,
                             const QString &mode) {
        if (!pattern.isEmpty())
            text +=
                u"        %1) %2mapfile -t COMPREPLY < <(compgen %3 -- \"$current\"); return ;;\n"_s
                    .arg(pattern, mode, generator);
    };
    const QString files = u"compopt -o filenames; "_s;
    add(valuePattern(options, {u"file"_s}), u"-f"_s, files);
    add(valuePattern(options, {u"folder"_s}), u"-d"_s, files);
    for (const QString &value : {u"when"_s, u"source"_s, u"action"_s})
        add(valuePattern(options, {value}), u"-W "_s + quoted(choicesFor(value)), {});
    QStringList others;
    for (const QCommandLineOption &option : options) {
        const QString value = option.valueName();
        if (!value.isEmpty() && value != u"file"_s && value != u"folder"_s &&
            choicesFor(value).isEmpty())
            others += dashed(option);
    }
    return text + u"        %1) return ;;\n"_s.arg(others.join(u'|'));
}

QString bashOptionCases(const QList<CommandFacts> &commands)
{
    QString text;
    for (const CommandFacts &command : commands) {
        QStringList options;
        for (const QCommandLineOption &option : command.options)
            options += dashed(option);
        text += u"        %1) options='%2'%3 ;;\n"_s.arg(
            command.name, options.join(u' '), command.takesTasks ? u" tasks=yes"_s : QString());
    }
    return text;
}

// In a description of zsh's _arguments, brackets and colons would end it.
QString zshText(QString text)
{
    for (const QChar c : {u'\\', u'[', u']', u':'})
        text.replace(c, u'\\' + QString(c));
    return text;
}

QString zshAction(const QString &valueName)
{
    if (valueName == u"file"_s)
        return u"_files"_s;
    if (valueName == u"folder"_s)
        return u"_files -/"_s;
    const QString choices = choicesFor(valueName);
    return choices.isEmpty() ? u" "_s : u'(' + choices + u')';
}

QString zshOption(const QCommandLineOption &option)
{
    const QStringList names = dashed(option);
    QString what = u"[%1]"_s.arg(zshText(programs::inShort(option.description())));
    if (!option.valueName().isEmpty())
        what += u":%1:%2"_s.arg(zshText(option.valueName()), zshAction(option.valueName()));
    const QString last = names.constLast();
    const QString suffix = option.valueName().isEmpty() ? QString() : u"="_s;
    if (names.size() == 1)
        return quoted(last + suffix + what);
    return u"'(%1)'{%2,%3%4}%5"_s.arg(names.join(u' '), names.constFirst(), last, suffix,
                                      quoted(what));
}

QString zshCase(const CommandFacts &command)
{
    QString text = u"        %1)\n            _arguments -s \\\n"_s.arg(command.name);
    for (const QCommandLineOption &option : command.options)
        text += u"                "_s + zshOption(option) + u" \\\n"_s;
    return text + u"                '*:%1'\n            ;;\n"_s.arg(
                      command.takesTasks ? u"task:_videodown_tasks"_s : u"address: "_s);
}

QString fishOption(const CommandFacts &command, const QCommandLineOption &option)
{
    QString text = u"complete -c videodown -n '__fish_seen_subcommand_from %1'"_s.arg(command.name);
    for (const QString &name : option.names())
        text += (name.size() == 1 ? u" -s "_s : u" -l "_s) + name;
    const QString value = option.valueName();
    if (value == u"file"_s || value == u"folder"_s)
        text += u" -r -F"_s;
    else if (!value.isEmpty())
        text += u" -x"_s;
    if (!choicesFor(value).isEmpty())
        text += u" -a "_s + quoted(choicesFor(value));
    return text + u" -d "_s + quoted(programs::inShort(option.description())) + u'\n';
}

} // namespace

QByteArray forBash()
{
    const QList<CommandFacts> commands = programs::commands();
    const QString script = uR"sh(# Completion of videodown for bash.
_videodown_tasks() { # lines of key and title
    local history=() i
    for ((i = 2; i < COMP_CWORD; ++i)); do
        [[ ${COMP_WORDS[i]} != --history ]] || history=(--history "${COMP_WORDS[i + 1]}")
    done
    videodown list "${history[@]}" 2>/dev/null | while IFS= read -r line; do
        [[ $line != "$1"* ]] || printf '%s  %s\n' "${line:0:8}" "${line:53}"
    done
}

_videodown() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} options='' tasks=''
    COMPREPLY=()
    if ((COMP_CWORD == 1)) || [[ $command == help && $COMP_CWORD == 2 ]]; then
        mapfile -t COMPREPLY < <(compgen -W '%1 help' -- "$current")
        return
    fi
    if [[ $current == = ]]; then current=''; fi
    if [[ $previous == = ]]; then previous=${COMP_WORDS[COMP_CWORD - 2]}; fi
    case $previous in
%2    esac
    case $command in
%3    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    elif [[ -n $tasks ]]; then
        mapfile -t COMPREPLY < <(_videodown_tasks "$current")
        # The title is there to be read, not to be typed.
        if ((${#COMPREPLY[@]} == 1)); then COMPREPLY=("${COMPREPLY[0]%% *}"); fi
    fi
}
complete -F _videodown videodown
)sh"_s;
    return script
        .arg(namesOf(commands).join(u' '), bashValueCases(allOptions(commands)),
             bashOptionCases(commands))
        .toUtf8();
}

QByteArray forZsh()
{
    const QList<CommandFacts> commands = programs::commands();
    QString names;
    QString cases;
    for (const CommandFacts &command : commands) {
        names += u"        %1\n"_s.arg(
            quoted(command.name + u':' + zshText(programs::inShort(command.description))));
        cases += zshCase(command);
    }
    const QString script = uR"sh(#compdef videodown
# Completion of videodown for zsh.
_videodown_tasks() {
    local -a history tasks
    local line at=${words[(I)--history]}
    ((at == 0)) || history=(--history ${(Q)words[at + 1]})
    for line in ${(f)"$(videodown list $history 2>/dev/null)"}; do
        tasks+=("${line[1,8]}:${${line[54,-1]}//:/\\:}")
    done
    _describe -t tasks task tasks
}

_videodown() {
    local -a commands=(
%1        'help:Shows help'
    )
    if ((CURRENT == 2)); then
        _describe -t commands command commands
        return
    fi
    local command=$words[2]
    shift words
    ((CURRENT--))
    case $command in
%2    esac
}

_videodown "$@"
)sh"_s;
    return script.arg(names, cases).toUtf8();
}

QByteArray forFish()
{
    const QList<CommandFacts> commands = programs::commands();
    QString text = uR"sh(# Completion of videodown for fish.
function __videodown_tasks
    set -l words (commandline -opc)
    set -l given
    if set -l at (contains -i -- --history $words)
        set given --history $words[(math $at + 1)]
    end
    for line in (videodown list $given 2>/dev/null)
        printf '%s\t%s\n' (string sub -l 8 -- $line) (string sub -s 54 -- $line)
    end
end

complete -c videodown -f
)sh"_s;
    QStringList withTasks;
    for (const CommandFacts &command : commands) {
        text += u"complete -c videodown -n __fish_use_subcommand -a %1 -d %2\n"_s.arg(
            command.name, quoted(programs::inShort(command.description)));
        for (const QCommandLineOption &option : command.options)
            text += fishOption(command, option);
        if (command.takesTasks)
            withTasks << command.name;
    }
    text += u"complete -c videodown -n __fish_use_subcommand -a help -d 'Shows help'\n"_s;
    text +=
        u"complete -c videodown -n '__fish_seen_subcommand_from %1' -a '(__videodown_tasks)'\n"_s
            .arg(withTasks.join(u' '));
    return text.toUtf8();
}

} // namespace completion
