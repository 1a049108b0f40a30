#include "formatscommand.h"

#include "driver/formatchoice.h"
#include "jsonline.h"
#include "session.h"
#include "standardstreams.h"
#include "terminaltext.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

namespace {

struct Offer
{
    QString title;
    int seconds = 0;
    QList<OfferedFormat> formats;
    ChosenFormat chosen;
};

Offer offerOf(DownloadDriver &driver, const QString &key, const CommandLine &line)
{
    DownloadRequest request;
    request.profile = line.profile;
    request.keepSource = line.keepSource;
    const ControllerLock lock;
    const CXMLInfo *record = driver.controller().getXMLInfo(key);
    if (record == nullptr)
        return {};
    const QString &list = record->fmt_list;
    const QString &streams = record->fmt_stream_map;
    return {record->Title, record->Duration, formatchoice::offered(list, streams),
            formatchoice::chosen(formatchoice::settled(request, list, streams), list, streams)};
}

QJsonObject asJson(const OfferedFormat &format)
{
    return {{QStringLiteral("number"), format.number},
            {QStringLiteral("extension"), format.extension},
            {QStringLiteral("width"), format.width},
            {QStringLiteral("height"), format.height},
            {QStringLiteral("hasAddress"), format.hasStream}};
}

QJsonObject asJson(const DownloadResult &result, const Offer &offer)
{
    QJsonObject object = jsonline::headOf(result);
    if (result.outcome != DownloadOutcome::Finished)
        return object;
    QJsonArray formats;
    for (const OfferedFormat &format : offer.formats)
        formats.append(asJson(format));
    object.insert(QStringLiteral("seconds"), offer.seconds);
    object.insert(QStringLiteral("formats"), formats);
    object.insert(QStringLiteral("chosen"),
                  QJsonObject{{QStringLiteral("number"), offer.chosen.number},
                              {QStringLiteral("extension"), offer.chosen.extension}});
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

QByteArray asText(const Offer &offer)
{
    QString text =
        QStringLiteral("%1 (%2)\n")
            .arg(standardstreams::shown(offer.title), terminaltext::duration(offer.seconds));
    for (const OfferedFormat &format : offer.formats)
        text += row(format, format.number == offer.chosen.number);
    return text.toUtf8();
}

} // namespace

ExitStatus runFormats(const CommandLine &line)
{
    CommandLine quiet = line;
    quiet.progress = ProgressMode::Never;
    Session session(quiet, QDir::currentPath());
    QObject::connect(&session.driver(), &DownloadDriver::ended, &session,
                     [&](const DownloadResult &result) {
                         const Offer offer = offerOf(session.driver(), result.key, line);
                         if (line.json)
                             session.deliver(jsonline::of(asJson(result, offer)));
                         else if (result.outcome == DownloadOutcome::Finished)
                             session.deliver(asText(offer));
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
