#include "commandparser.h"

CommandParser::CommandParser(const CommandText &command) : m_command(command)
{
    m_parser.addOptions(options());
    m_parser.setApplicationDescription(text(command.description));
    if (takes(WishOptions))
        m_parser.addPositionalArgument(text("ADDRESS"), text("The address of a video page."));
    else if (m_command.mostArguments != 0)
        m_parser.addPositionalArgument(text("TASK"),
                                       text("A page's address, or the beginning of a task's key."));
}

std::variant<CommandLine, Answer> CommandParser::read(const QStringList &arguments)
{
    if (!m_parser.parse(arguments))
        return wrong(m_parser.errorText());
    if (m_parser.isSet(m_help))
        return Answer{help(), false};
    m_parser.parse(withSettings(arguments));
    m_line.command = m_command.command;
    readSwitches();
    readFormat();
    if (takes(ConnectionOptions))
        readConnection();
    if (takes(FolderOptions)) {
        m_line.outputFolder = named(m_output);
        m_line.downloadFolder = named(m_downloads);
    }
    if (takes(TransferOptions))
        readTransfer();
    if (takes(ConflictOption)) {
        const QStringList actions{text("rename"), text("skip"), text("overwrite")};
        m_line.onConflict = static_cast<OnConflict>(chosenOf(m_onConflict, actions));
    }
    if (takes(ReportOptions))
        m_line.logFile = named(m_log);
    if (takes(HistoryOptions))
        m_line.historyFile = named(m_history);
    if (m_wrong.isEmpty())
        readArguments();
    return m_wrong.isEmpty() ? std::variant<CommandLine, Answer>(m_line) : wrong(m_wrong);
}

QList<QCommandLineOption> CommandParser::options() const
{
    QList<QCommandLineOption> result{m_help, m_noConfig};
    for (const auto &[group, options] : groups()) {
        if (takes(group))
            result += options;
    }
    return result;
}

QString CommandParser::help() const
{
    // The parser knows nothing of commands: its usage line gives way to ours.
    return QStringLiteral("Usage: ") + text(m_command.usage) + u'\n' +
           m_parser.helpText().section(u'\n', 1);
}

bool CommandParser::takes(unsigned group) const
{
    return (m_command.options & group) != 0;
}

Answer CommandParser::wrong(const QString &why) const
{
    return {QStringLiteral("%1\nTry: videodown help %2")
                .arg(why, text(m_command.usage).section(u' ', 1, 1)),
            true};
}

void CommandParser::readSwitches()
{
    const auto isOn = [this](unsigned group, const QCommandLineOption &option) {
        return takes(group) && m_parser.isSet(option);
    };
    m_line.keepSource = isOn(WishOptions, m_keepSource);
    m_line.json = isOn(ReportOptions | JsonOption, m_json);
    m_line.quiet = isOn(ReportOptions, m_quiet);
    m_line.verbose = isOn(ReportOptions, m_verbose);
    if (m_line.quiet && m_line.verbose)
        m_wrong = text("--quiet and --verbose exclude each other");
    m_line.again = isOn(FolderOptions, m_again);
    m_line.dryRun = isOn(FolderOptions, m_dryRun);
    m_line.convert = isOn(ConvertOption, m_convert);
    if (m_line.convert && m_line.keepSource)
        m_wrong = text("--convert: a kept source is not converted");
    m_line.deleteFiles = isOn(DeleteOption, m_deleteFiles);
    m_line.thumbnails = !isOn(TransferOptions, m_noThumbnails);
}

void CommandParser::readFormat()
{
    if (takes(FormatOptions) && m_parser.isSet(m_format))
        take(m_format, arguments::profile(m_parser.value(m_format)), m_line.profile);
    m_line.profile.includeVideo = true;
    m_line.profile.includeAudio = true;
    if (m_command.command == Command::Upgrade && m_line.profile.vSize_Width == 0 &&
        m_wrong.isEmpty())
        m_wrong = text("--format: say how large the picture is to be, as in mp4:1280x720");
}

void CommandParser::readConnection()
{
    readProxy();
    if (m_parser.isSet(m_userAgent))
        take(m_userAgent, arguments::fieldValue(m_parser.value(m_userAgent)), m_line.userAgent);
    if (m_parser.isSet(m_retries))
        take(m_retries, arguments::count(m_parser.value(m_retries), 99, 0), m_line.retries);
    if (m_parser.isSet(m_videoInfo))
        readVideoInfo();
    if (m_parser.isSet(m_infoCommand))
        take(m_infoCommand, arguments::command(m_parser.value(m_infoCommand)),
             m_line.videoInfoCommand);
}

void CommandParser::readProxy()
{
    m_line.proxyFromEnvironment = m_parser.value(m_proxy) == QLatin1String("env");
    if (m_parser.isSet(m_proxy) && !m_line.proxyFromEnvironment)
        take(m_proxy, arguments::proxy(m_parser.value(m_proxy)), m_line.proxy);
    // Settings of the environment come before those of the file.
    const char *const variable = "VIDEODOWN_PROXY_PASSWORD";
    const bool isSet = m_parser.isSet(m_passwordFile);
    const bool isFromFile = originOf(m_passwordFile).contains(u'/');
    if (m_line.proxy && qEnvironmentVariableIsSet(variable) && (!isSet || isFromFile))
        take(m_proxy, arguments::withPassword(*m_line.proxy, qEnvironmentVariable(variable)),
             m_line.proxy);
    else if (isSet)
        readPasswordFile();
}

void CommandParser::readPasswordFile()
{
    QString password;
    take(m_passwordFile, arguments::firstLine(m_parser.value(m_passwordFile)), password);
    if (m_line.proxy && m_line.proxy->szProxyText2[0] != '\0')
        take(m_passwordFile, arguments::withPassword(*m_line.proxy, password), m_line.proxy);
    else if (m_wrong.isEmpty() && !m_origins.contains(m_passwordFile.names().constLast()))
        m_wrong = text("--proxy-password-file needs a --proxy that names a user");
}

void CommandParser::readVideoInfo()
{
    const QString source = m_parser.value(m_videoInfo);
    m_line.useExtractor = source == QLatin1String("auto");
    if (source != QLatin1String("auto") && source != QLatin1String("site"))
        take(m_videoInfo, arguments::command(source), m_line.videoInfoCommand);
    if (m_parser.isSet(m_infoCommand) && m_wrong.isEmpty())
        m_wrong = text("--video-info and --video-info-command exclude each other");
}

void CommandParser::readTransfer()
{
    if (m_parser.isSet(m_jobs))
        take(m_jobs, arguments::count(m_parser.value(m_jobs), maxVideoLimit), m_line.jobs);
    if (m_parser.isSet(m_connections))
        take(m_connections, arguments::count(m_parser.value(m_connections), 8), m_line.connections);
    if (m_parser.isSet(m_limitRate))
        take(m_limitRate, arguments::rate(m_parser.value(m_limitRate)), m_line.limitRate);
    const QStringList modes{text("auto"), text("always"), text("never")};
    m_line.progress = static_cast<ProgressMode>(chosenOf(m_progress, modes));
}

// Which of these words the option has.
qsizetype CommandParser::chosenOf(const QCommandLineOption &option, const QStringList &words)
{
    const qsizetype chosen = words.indexOf(m_parser.value(option));
    if (chosen < 0 && m_wrong.isEmpty())
        m_wrong =
            QStringLiteral("%1: \"%2\" is none of %3 and %4")
                .arg(originOf(option), m_parser.value(option),
                     words.mid(0, words.size() - 1).join(QLatin1String(", ")), words.constLast());
    return chosen;
}

QString CommandParser::named(const QCommandLineOption &from)
{
    QString name = m_parser.value(from);
    if (m_parser.isSet(from) && name.isEmpty() && m_wrong.isEmpty())
        m_wrong = originOf(from) + QLatin1String(": the name is empty");
    return name;
}

void CommandParser::readArguments()
{
    m_line.arguments = m_parser.positionalArguments();
    const qsizetype given = m_line.arguments.size();
    if (given < m_command.leastArguments)
        m_wrong = text("too few arguments");
    else if (m_command.mostArguments >= 0 && given > m_command.mostArguments)
        m_wrong = text("too many arguments");
    else if (m_command.command == Command::Rename)
        m_line.newName = m_line.arguments.takeLast();
    else if (takes(WishOptions))
        readLists();
}

void CommandParser::readLists()
{
    for (const QString &name : m_parser.values(m_from)) {
        QStringList listed;
        take(m_from, arguments::listFile(name), listed);
        m_line.arguments += listed;
    }
    if (m_wrong.isEmpty() && m_line.arguments.isEmpty())
        m_wrong = QStringLiteral("no address given");
}
