#include "jsonline.h"

#include <QJsonDocument>

namespace jsonline {

namespace {

QString statusOf(DownloadOutcome outcome)
{
    switch (outcome) {
    case DownloadOutcome::Finished:
        return QStringLiteral("finished");
    case DownloadOutcome::Failed:
        return QStringLiteral("failed");
    case DownloadOutcome::Skipped:
        return QStringLiteral("skipped");
    case DownloadOutcome::Stopped:
        break;
    }
    return QStringLiteral("stopped");
}

} // namespace

QJsonObject headOf(const DownloadResult &result)
{
    QJsonObject object{{QStringLiteral("schema"), 1},
                       {QStringLiteral("address"), result.address},
                       {QStringLiteral("key"), result.key},
                       {QStringLiteral("title"), result.title},
                       {QStringLiteral("status"), statusOf(result.outcome)}};
    if (result.outcome == DownloadOutcome::Failed)
        object.insert(QStringLiteral("error"),
                      QJsonObject{{QStringLiteral("cause"), result.failure.cause},
                                  {QStringLiteral("advice"), result.failure.advice}});
    return object;
}

QByteArray of(const QJsonObject &object)
{
    QString text = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    // The document escapes the controls below the space only; these others stand in texts alone.
    for (char16_t control = 0x7f; control <= 0x9f; ++control)
        text.replace(QChar(control), QStringLiteral("\\u%1").arg(int(control), 4, 16, QChar(u'0')));
    return text.toUtf8() + '\n';
}

} // namespace jsonline
