#include "configuration.h"

#include <QFile>
#include <QStandardPaths>

namespace {

constexpr qint64 mostBytes = 1 << 20;

QString path()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return folder + QLatin1String("/videodown/config");
}

} // namespace

namespace configuration {

arguments::Read<QList<Setting>> fromFile(const QStringList &options)
{
    QFile file(path());
    if (!file.exists())
        return QList<Setting>();
    if (!file.open(QIODevice::ReadOnly) || file.size() > mostBytes)
        return arguments::Wrong{QStringLiteral("%1 cannot be read").arg(file.fileName())};
    QList<Setting> settings;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const QString origin = QStringLiteral("%1, line %2").arg(file.fileName()).arg(i + 1);
        const QString name = line.section(u'=', 0, 0).trimmed();
        if (!line.contains(u'='))
            return arguments::Wrong{origin + QLatin1String(": there is no \"=\"")};
        if (!options.contains(name))
            return arguments::Wrong{
                QStringLiteral("%1: there is no option \"%2\"").arg(origin, name)};
        settings.append({name, line.section(u'=', 1).trimmed(), origin});
    }
    return settings;
}

QList<Setting> fromEnvironment(const QStringList &options)
{
    QList<Setting> settings;
    for (const QString &option : options) {
        const QString name =
            QLatin1String("VIDEODOWN_") + QString(option).replace(u'-', u'_').toUpper();
        const QString value = qEnvironmentVariable(name.toUtf8().constData());
        if (!value.isEmpty())
            settings.append({option, value, name});
    }
    return settings;
}

arguments::Read<bool> isOn(const QString &value)
{
    const QString word = value.toLower();
    if (QStringList({QStringLiteral("yes"), QStringLiteral("true"), QStringLiteral("on"),
                     QStringLiteral("1")})
            .contains(word))
        return true;
    if (QStringList({QStringLiteral("no"), QStringLiteral("false"), QStringLiteral("off"),
                     QStringLiteral("0")})
            .contains(word))
        return false;
    return arguments::Wrong{QStringLiteral("\"%1\" is neither yes nor no").arg(value)};
}

} // namespace configuration
