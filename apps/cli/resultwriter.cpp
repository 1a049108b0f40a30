#include "resultwriter.h"

#include "driver/conversions.h"
#include "jsonline.h"
#include "standardstreams.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

namespace resultwriter {

namespace {

QJsonObject asJson(const PictureSize &picture)
{
    return {{QStringLiteral("width"), picture.width}, {QStringLiteral("height"), picture.height}};
}

QString nameOf(Finding finding)
{
    switch (finding) {
    case Finding::AlreadyAsLarge:
        return QStringLiteral("alreadyAsLarge");
    case Finding::NoneLarger:
        return QStringLiteral("noneLarger");
    case Finding::Downloaded:
    case Finding::AlreadyThere:
        break;
    }
    return QStringLiteral("larger");
}

QJsonObject asJson(Session &session, const DownloadResult &result)
{
    QJsonObject object = jsonline::headOf(result);
    if (!result.path.isEmpty())
        object.insert(QStringLiteral("path"), result.path);
    if (result.outcome != DownloadOutcome::Finished)
        return object;
    object.insert(QStringLiteral("bytes"), QFileInfo(result.path).size());
    object.insert(QStringLiteral("alreadyThere"), result.finding == Finding::AlreadyThere);
    object.insert(QStringLiteral("overwrote"), result.overwrote);
    if (!result.notOverwritten.isEmpty())
        object.insert(QStringLiteral("notOverwritten"), result.notOverwritten);
    if (result.former.width > 0)
        object.insert(QStringLiteral("upgrade"),
                      QJsonObject{{QStringLiteral("found"), nameOf(result.finding)},
                                  {QStringLiteral("from"), asJson(result.former)},
                                  {QStringLiteral("to"), asJson(result.picture)}});
    const QJsonObject conversion = conversions::describe(session.driver().controller(), result.key);
    object.insert(QStringLiteral("conversion"), conversion);
    return object;
}

QByteArray asText(const DownloadResult &result)
{
    // Read by programs, a path must be exact; shown to people, it must not control the terminal.
    return (standardstreams::outputIsTerminal() ? standardstreams::shown(result.path).toUtf8()
                                                : QFile::encodeName(result.path)) +
           '\n';
}

} // namespace

void attach(Session &session, const CommandLine &line)
{
    QObject::connect(&session, &Session::settled, &session,
                     [&session, json = line.json](const DownloadResult &result) {
                         if (json)
                             session.deliver(jsonline::of(asJson(session, result)));
                         else if (result.outcome == DownloadOutcome::Finished)
                             session.deliver(asText(result));
                     });
}

} // namespace resultwriter
