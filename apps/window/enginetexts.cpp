#include "enginetexts.h"

#include <QCoreApplication>

namespace {

// What the engine says, which knows no translations; collected for the translators.
[[maybe_unused]] constexpr const char *engineTexts[] = {
    QT_TRANSLATE_NOOP("Engine", "The address may have expired: parse the page again."),
    QT_TRANSLATE_NOOP("Engine", "Try again later."),
    QT_TRANSLATE_NOOP("Engine", "Check the address."),
    QT_TRANSLATE_NOOP("Engine", "Run the command by hand with this address to see what it says."),
    QT_TRANSLATE_NOOP("Engine", "Bad Request"),
    QT_TRANSLATE_NOOP("Engine", "Unauthorized"),
    QT_TRANSLATE_NOOP("Engine", "The site wants a login, which is not supported."),
    QT_TRANSLATE_NOOP("Engine", "Forbidden"),
    QT_TRANSLATE_NOOP("Engine", "Not Found"),
    QT_TRANSLATE_NOOP("Engine", "Proxy Authentication Required"),
    QT_TRANSLATE_NOOP("Engine", "Check user and password of the proxy."),
    QT_TRANSLATE_NOOP("Engine", "Request Timeout"),
    QT_TRANSLATE_NOOP("Engine", "Gone"),
    QT_TRANSLATE_NOOP("Engine", "Range Not Satisfiable"),
    QT_TRANSLATE_NOOP("Engine", "Too Many Requests"),
    QT_TRANSLATE_NOOP("Engine", "Unavailable For Legal Reasons"),
    QT_TRANSLATE_NOOP("Engine", "Internal Server Error"),
    QT_TRANSLATE_NOOP("Engine", "Bad Gateway"),
    QT_TRANSLATE_NOOP("Engine", "Service Unavailable"),
    QT_TRANSLATE_NOOP("Engine", "Gateway Timeout"),
    QT_TRANSLATE_NOOP("Engine", "not the address of a video"),
    QT_TRANSLATE_NOOP("Engine", "the address leads away from HTTP and HTTPS"),
    QT_TRANSLATE_NOOP("Engine", "unknown host"),
    QT_TRANSLATE_NOOP("Engine", "Check the address and the connection to the network."),
    QT_TRANSLATE_NOOP("Engine", "no connection to the host"),
    QT_TRANSLATE_NOOP("Engine", "Check the connection to the network, or try again later."),
    QT_TRANSLATE_NOOP("Engine", "no trustworthy encrypted connection"),
    QT_TRANSLATE_NOOP("Engine", "Check the clock of this computer and its certificates."),
    QT_TRANSLATE_NOOP("Engine", "the proxy does not serve"),
    QT_TRANSLATE_NOOP("Engine", "Check the proxy settings."),
    QT_TRANSLATE_NOOP("Engine", "no answer in time"),
    QT_TRANSLATE_NOOP("Engine", "the connection broke off"),
    QT_TRANSLATE_NOOP("Engine", "the site sent less than it announced"),
    QT_TRANSLATE_NOOP("Engine", "redirected too many times"),
    QT_TRANSLATE_NOOP("Engine", "the site sent an empty answer"),
    QT_TRANSLATE_NOOP("Engine", "the answer makes no sense"),
    QT_TRANSLATE_NOOP("Engine", "the answer is too large"),
    QT_TRANSLATE_NOOP("Engine", "the site sent a page instead of the file"),
    QT_TRANSLATE_NOOP("Engine", "the site does not continue where the file ends"),
    QT_TRANSLATE_NOOP("Engine", "the download folder does not exist"),
    QT_TRANSLATE_NOOP("Engine", "Create the folder or choose another one."),
    QT_TRANSLATE_NOOP("Engine", "the file's name is too long"),
    QT_TRANSLATE_NOOP("Engine",
                      "Choose a download folder with a shorter path or another file system."),
    QT_TRANSLATE_NOOP("Engine", "the file cannot be written"),
    QT_TRANSLATE_NOOP(
        "Engine", "Check the permissions of the download folder, and what is in the file's place."),
    QT_TRANSLATE_NOOP("Engine", "another download is writing this file"),
    QT_TRANSLATE_NOOP("Engine", "Wait until it has ended."),
    QT_TRANSLATE_NOOP("Engine", "the disk is full"),
    QT_TRANSLATE_NOOP("Engine", "Free some space and try again."),
    QT_TRANSLATE_NOOP("Engine", "the video-info command cannot be started"),
    QT_TRANSLATE_NOOP("Engine",
                      "Check the name of the command, and that it is installed and executable."),
    QT_TRANSLATE_NOOP("Engine", "the video-info command failed"),
    QT_TRANSLATE_NOOP("Engine", "internal error"),
    QT_TRANSLATE_NOOP("Engine", "too many files are open"),
    QT_TRANSLATE_NOOP("Engine", "Download fewer videos at once, or allow more open files."),
    QT_TRANSLATE_NOOP("Engine", "the disk reports an error"),
    QT_TRANSLATE_NOOP("Engine", "Check the disk."),
    QT_TRANSLATE_NOOP("Engine", "the video-info command gave no usable answer"),
    QT_TRANSLATE_NOOP("Engine", "the file is larger than the disk or the system allows"),
    QT_TRANSLATE_NOOP("Engine",
                      "Choose a smaller format, or a download folder on another file system."),
    QT_TRANSLATE_NOOP("Engine", "the site answered"),
    QT_TRANSLATE_NOOP("Engine", "unknown cause"),
};

} // namespace

// The text of a status is made of two: "the site answered 404 Not Found".
QString enginetexts::translated(const std::string &text)
{
    const auto translation = [](const QString &english) {
        return QCoreApplication::translate("Engine", english.toUtf8().constData());
    };
    const QString whole = QString::fromStdString(text);
    const QString answered = QStringLiteral("the site answered");
    if (!whole.startsWith(answered))
        return translation(whole);
    const QString number = whole.section(u' ', 3, 3);
    const QString reason = whole.section(u' ', 4);
    return QString(translation(answered) + u' ' + number + u' ' + translation(reason)).trimmed();
}
