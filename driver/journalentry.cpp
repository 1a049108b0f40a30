#include "driver/journalentry.h"

#include <QJsonArray>

namespace journalentry {

QJsonObject asJson(const UpgradeFiles &files)
{
    QJsonArray old;
    for (const auto &[path, aside] : files.old)
        old.append(QJsonArray{path, aside});
    return {{QStringLiteral("old"), old},
            {QStringLiteral("fresh"), QJsonArray::fromStringList(files.fresh)},
            {QStringLiteral("freshSize"), files.freshSize}};
}

UpgradeFiles upgradeIn(const QJsonObject &json)
{
    UpgradeFiles files;
    for (const auto &pair : json.value(QStringLiteral("old")).toArray())
        files.old.append({pair[0].toString(), pair[1].toString()});
    for (const auto &path : json.value(QStringLiteral("fresh")).toArray())
        files.fresh.append(path.toString());
    files.freshSize = json.value(QStringLiteral("freshSize")).toInteger();
    return files;
}

QJsonObject asJson(const MovedFiles &files)
{
    QJsonArray moves;
    for (const auto &[from, to] : files.moves)
        moves.append(QJsonArray{from, to});
    return {{QStringLiteral("moves"), moves}, {QStringLiteral("size"), files.size}};
}

MovedFiles movedIn(const QJsonObject &json)
{
    MovedFiles files;
    for (const auto &move : json.value(QStringLiteral("moves")).toArray())
        files.moves.append({move[0].toString(), move[1].toString()});
    files.size = json.value(QStringLiteral("size")).toInteger();
    return files;
}

} // namespace journalentry
