// The program videodown-window: videodown-window [--history FILE] [ADDRESS...]
#include "commandoptions.h"
#include "instancelink.h"
#include "mainwindow.h"

#include "down/version.h"
#include "strutil/narrowtext.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCryptographicHash>
#include <QDir>
#include <QLibraryInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTranslator>

#include <optional>

#include <unistd.h>

namespace {

QString historyPath(const QString &given)
{
    if (!given.isEmpty())
        return QDir::current().absoluteFilePath(given);
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QLatin1String("/videodown/history.xml");
}

// One first instance for each user and history.
QString instanceName(const QString &history)
{
    const QByteArray hash =
        QCryptographicHash::hash(history.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return QStringLiteral("videodown-%1-%2").arg(getuid()).arg(QLatin1String(hash));
}

void translate(QApplication &application)
{
    auto *own = new QTranslator(&application);
    // English has its plurals there; without a translation of the user's language, it is shown.
    if (own->load(QLocale(), QStringLiteral("videodown-window"), QStringLiteral("_"),
                  QStringLiteral(":/i18n")) ||
        own->load(QStringLiteral(":/i18n/videodown-window_en.qm")))
        QApplication::installTranslator(own);
    auto *qt = new QTranslator(&application);
    if (qt->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(qt);
}

// `late` is what second starts handed over while the window was closing; empty when the user only
// wants a new one.
int runWindow(const QString &history, const QStringList &addresses, InstanceLink &link,
              std::optional<QStringList> &late)
{
    link.listen();
    MainWindow window(history);
    QObject::connect(&link, &InstanceLink::received, &window, [&](const QStringList &received) {
        if (window.isClosing()) {
            late = late.value_or(QStringList()) + received;
            return;
        }
        window.addAddresses(received);
        window.raiseWindow();
    });
    QObject::connect(&window, &MainWindow::opened, &window,
                     [&] { window.addAddresses(addresses); });
    QObject::connect(&window, &MainWindow::reopenWanted, &window, [&] {
        late = late.value_or(QStringList());
        window.close();
    });
    QObject::connect(&window, &MainWindow::closed, qApp, &QCoreApplication::quit);
    window.start();
    window.show();
    const int code = QApplication::exec();
    link.close();
    return code;
}

// Not in a loop in this program: the engine's settings and the controller's lists start afresh.
void startAgain(const QString &history, const QStringList &addresses)
{
    QProcess::startDetached(QCoreApplication::applicationFilePath(),
                            QStringList{QStringLiteral("--history"), history} + addresses);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("videodown"));
    QApplication::setApplicationVersion(QStringLiteral(VIDEODOWN_VERSION_STRING));
    QApplication::setDesktopFileName(QStringLiteral("videodown-window"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/videodown.svg")));
    narrowtext::setCodec(narrowtext::Codec::Utf8);
    translate(application);

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addVersionOption();
    parser.setApplicationDescription(windowoptions::description());
    const QCommandLineOption history = windowoptions::history();
    parser.addOption(history);
    parser.addPositionalArgument(
        QStringLiteral("ADDRESS"),
        QCoreApplication::translate("main", "The address of a video page."),
        QStringLiteral("[ADDRESS...]"));
    parser.process(application);

    const QString path = historyPath(parser.value(history));
    InstanceLink link(instanceName(path));
    if (link.sendToFirst(parser.positionalArguments()))
        return 0;
    std::optional<QStringList> late;
    const int code = runWindow(path, parser.positionalArguments(), link, late);
    if (late)
        startAgain(path, *late);
    return code;
}
