#include "runlog.h"

#include "standardstreams.h"

#include <QDateTime>
#include <QRegularExpression>

#include <utility>

QString RunLog::open(const QString &path)
{
    m_file.setFileName(path);
    return m_file.open(QIODevice::Append | QIODevice::Unbuffered) ? QString()
                                                                  : m_file.errorString();
}

// In one write, which two programs do not mix.
QString RunLog::append(const QString &line)
{
    if (!m_file.isOpen())
        return {};
    const QDateTime now = QDateTime::currentDateTime();
    const QString time = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate);
    const QByteArray bytes =
        (time + u' ' + standardstreams::shown(runlog::withoutUsers(line))).toUtf8() + '\n';
    if (m_file.write(bytes) == bytes.size() || std::exchange(m_failed, true))
        return {};
    return m_file.errorString();
}

QString runlog::withoutUsers(QString line)
{
    static const QRegularExpression user(QStringLiteral("(?<=://)[^/?#\\s]*@"));
    return line.remove(user);
}
