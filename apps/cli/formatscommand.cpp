#include "commands.h"

#include "jsonline.h"
#include "session.h"
#include "standardstreams.h"
#include "terminaltext.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

namespace {

ChosenFormat chosenOf(const DownloadResult &result, const CommandLine &line)
{
    return result.offer.chosen(result.offer.settled(line.profile, line.keepSource));
}

QJsonObject asJson(const OfferedFormat &format)
{
    return {{QStringLiteral("number"), format.number},
            {QStringLiteral("extension"), format.extension},
            {QStringLiteral("width"), format.width},
            {QStringLiteral("height"), format.height},
            {QStringLiteral("hasAddress"), format.hasStream}};
}

QJsonObject asJson(const DownloadResult &result, const ChosenFormat &chosen)
{
    QJsonObject object = jsonline::headOf(result);
    if (result.outcome != DownloadOutcome::Finished)
        return object;
    QJsonArray formats;
    for (const OfferedFormat &format : result.offer.formats())
        formats.append(asJson(format));
    object.insert(QStringLiteral("seconds"), result.seconds);
    object.insert(QStringLiteral("formats"), formats);
    object.insert(QStringLiteral("chosen"),
                  QJsonObject{{QStringLiteral("number"), chosen.number},
                              {QStringLiteral("extension"), chosen.extension}});
    return object;
}

QString row(const OfferedFormat &format, bool isChosen)
{
    const QString size = QStringLiteral("%1x%2").arg(format.width).arg(format.height);
    return QStringLiteral("%1 %2  %3  %4%5\n")
        .arg(QLatin1Char(isChosen ? '*' : ' '))
        .arg(format.number, 4)
        .arg(format.extension, -6)
        .arg(size)
        .arg(format.hasStream ? QString() : QStringLiteral("  no address"));
}

QByteArray asText(const DownloadResult &result, const ChosenFormat &chosen)
{
    QString text =
        QStringLiteral("%1 (%2)\n")
            .arg(standardstreams::shown(result.title), terminaltext::duration(result.seconds));
    for (const OfferedFormat &format : result.offer.formats())
        text += row(format, format.number == chosen.number);
    return text.toUtf8();
}

} // namespace

ExitStatus runFormats(const CommandLine &line)
{
    CommandLine quiet = line;
    quiet.progress = ProgressMode::Never;
    Session session(quiet, QDir::currentPath());
    if (const int code = session.openLog())
        return {code, 0};
    QObject::connect(&session.driver(), &DownloadDriver::ended, &session,
                     [&](const DownloadResult &result) {
                         if (line.json)
                             session.deliver(jsonline::of(asJson(result, chosenOf(result, line))));
                         else if (result.outcome == DownloadOutcome::Finished)
                             session.deliver(asText(result, chosenOf(result, line)));
                     });
    QList<DownloadRequest> requests;
    for (const QString &address : line.arguments) {
        DownloadRequest request;
        request.address = address;
        request.inspectOnly = true;
        requests << request;
    }
    return session.run(requests);
}
