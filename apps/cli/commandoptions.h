/** The options of the commands, and what the help says of them. */
#ifndef VIDEODOWN_CLI_COMMANDOPTIONS_H
#define VIDEODOWN_CLI_COMMANDOPTIONS_H

#include "commandtexts.h"

#include <QCommandLineOption>
#include <QList>

#include <utility>

namespace commandoptions {

inline QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

inline QCommandLineOption option(const QStringList &names, const char *description,
                                 const char *value = "")
{
    return {names, text(description), text(value)};
}

} // namespace commandoptions

/** Every option that there is. */
class CommandOptions
{
protected:
    static QString text(const char *utf8) { return commandoptions::text(utf8); }
    static QCommandLineOption option(const QStringList &names, const char *description,
                                     const char *value = "")
    {
        return commandoptions::option(names, description, value);
    }

    /** The options of each `OptionGroup`. */
    QList<std::pair<unsigned, QList<QCommandLineOption>>> groups() const
    {
        return {{FormatOptions, {m_format}},
                {WishOptions, {m_from, m_keepSource}},
                {ConnectionOptions,
                 {m_proxy, m_passwordFile, m_userAgent, m_retries, m_videoInfo, m_infoCommand}},
                {ReportOptions, {m_json, m_quiet, m_verbose, m_log}},
                {JsonOption, {m_json}},
                {FolderOptions, {m_output, m_downloads, m_again, m_dryRun}},
                {TransferOptions, {m_jobs, m_connections, m_limitRate, m_noThumbnails, m_progress}},
                {DeleteOption, {m_deleteFiles}},
                {ConvertOption, {m_convert}},
                {ConflictOption, {m_onConflict}},
                {HistoryOptions, {m_history}}};
    }

    const QCommandLineOption m_help = option({text("h"), text("help")}, "Show this help.");
    const QCommandLineOption m_noConfig =
        option({text("no-config")}, "Do not read the configuration file.");
    const QCommandLineOption m_from = option({text("from")},
                                             "Also download the addresses in this file, one per "
                                             "line; blank lines and lines that begin with "
                                             "\"#\" are skipped. \"-\" means standard input.",
                                             "file");
    const QCommandLineOption m_format = option(
        {text("f"), text("format")},
        "The wanted format: an extension and, optionally, a picture size, as in mp4:1280x720. "
        "The "
        "format of this size is chosen, else the next larger one, else the largest. Without a "
        "size: the largest format with this extension. Without this option: the largest of "
        "all. "
        "Nothing is converted without --convert.",
        "ext[:WxH]");
    const QCommandLineOption m_keepSource = option(
        {text("keep-source")},
        "Put the video into the output folder as the site offers it; without -f, in the best "
        "FLV format, if the site has one.");
    const QCommandLineOption m_proxy =
        option({text("proxy")},
               "Use this proxy: [http|socks5|socks5h://][user[:password]@]host:port. With socks5h, "
               "the proxy resolves host names. \"env\": those that http_proxy, https_proxy and "
               "all_proxy name in the environment, but for the hosts in no_proxy. The password may "
               "also stand in the environment, as VIDEODOWN_PROXY_PASSWORD.",
               "proxy");
    const QCommandLineOption m_passwordFile =
        option({text("proxy-password-file")},
               "Read the password of the proxy's user from the first line of this file.", "file");
    const QCommandLineOption m_userAgent =
        option({text("user-agent")},
               "What to tell sites of this program. Default: Mozilla/5.0 (compatible; "
               "videodown/0.1).",
               "text");
    const QCommandLineOption m_retries = option(
        {text("retries")},
        "How often to try again after a fault that may pass, 0 to 99. Default: 4.", "number");
    const QCommandLineOption m_videoInfo =
        option({text("video-info")},
               "How to find out what the site offers: \"site\" asks the site itself, \"auto\" then "
               "asks videodown-extract if the site has no answer and yt-dlp is installed; anything "
               "else is a command, as with --video-info-command. Default: auto.",
               "source");
    const QCommandLineOption m_infoCommand =
        option({text("video-info-command")},
               "Run this command, with the address of a page as its last argument, to find out "
               "what the "
               "site offers. It prints \"key=value\" lines. No shell is used; double quotes "
               "keep words "
               "together.",
               "command");
    const QCommandLineOption m_json = option(
        {text("json")}, "Print a JSON object for each task on standard output, one per line.");
    const QCommandLineOption m_quiet = option({text("q"), text("quiet")}, "Only show errors.");
    const QCommandLineOption m_verbose =
        option({text("v"), text("verbose")},
               "Also tell who has said what a page offers, which format was chosen, what was there "
               "of a video already, and the path that it gets.");
    const QCommandLineOption m_log =
        option({text("log")},
               "Append all messages to this file too, with the time, and with those of --verbose.",
               "file");
    const QCommandLineOption m_output = option(
        {text("o"), text("output")},
        "The output folder, created if it is missing. Default: the current folder.", "folder");
    const QCommandLineOption m_downloads =
        option({text("downloads")},
               "The folder that videos and thumbnails are downloaded to, created if it is missing. "
               "With --keep-source, finished videos are copied from there to the output folder; "
               "otherwise they stay there. Default: the output folder.",
               "folder");
    const QCommandLineOption m_again =
        option({text("again")}, "Also download videos that are there already.");
    const QCommandLineOption m_dryRun =
        option({text("dry-run")},
               "Only ask the sites, and show what would be downloaded: the format, and the path "
               "that the video would get. Writes nothing but the log.");
    const QCommandLineOption m_deleteFiles = option(
        {text("delete-files")},
        "Also delete the files of the tasks: videos, copies, thumbnails and the part files of "
        "interrupted downloads.");
    const QCommandLineOption m_convert =
        option({text("convert")},
               "Convert videos that the site does not offer in the wanted format, with ffmpeg. The "
               "converted file goes to the output folder; the downloaded one stays.");
    const QCommandLineOption m_onConflict{
        {text("on-conflict")},
        text("What to do when a file with the video's name is there: \"rename\" gives the video a "
             "number, \"skip\" does not download it, \"overwrite\" puts it in the place of the "
             "file once it is complete, unless that is the file of another task. Default: rename."),
        text("action"),
        text("rename")};
    const QCommandLineOption m_history =
        option({text("history")},
               "The history file, created if it is missing. Default: videodown/history.xml in the "
               "user's data folder ($XDG_DATA_HOME, or ~/.local/share).",
               "file");
    const QCommandLineOption m_jobs =
        option({text("j"), text("jobs")},
               "How many videos to download at once, 1 to 100. Default: 3.", "number");
    const QCommandLineOption m_connections = option(
        {text("connections")},
        "Most connections for each video, 1 to 8. More than one are used while each makes the "
        "download faster; a host gets at most 8 in all. Default: 3.",
        "number");
    const QCommandLineOption m_limitRate = option(
        {text("limit-rate")},
        "Most bytes per second of all transfers together, as in 500K or 2M; at least 1K.", "rate");
    const QCommandLineOption m_noThumbnails =
        option({text("no-thumbnails")}, "Do not download thumbnails.");
    const QCommandLineOption m_progress{
        {text("progress")},
        text("Show progress: \"always\" as bars, \"never\", or \"auto\": as bars on a terminal, "
             "as lines elsewhere. Default: auto."),
        text("when"),
        text("auto")};
};

#endif
