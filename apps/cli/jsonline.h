/** Results as JSON Lines. Every object has "schema": 1; later versions only add fields. */
#ifndef VIDEODOWN_CLI_JSONLINE_H
#define VIDEODOWN_CLI_JSONLINE_H

#include "driver/downloadtask.h"

#include <QByteArray>
#include <QJsonObject>

namespace jsonline {

/**
 * What all results have: "schema", "address", "key", "title", "status" ("finished", "failed",
 * "stopped" or "skipped") and, of a failure, "error" with "cause" and "advice".
 */
QJsonObject headOf(const DownloadResult &result);

/** The object on one line, line end included, without any character that controls a terminal. */
QByteArray of(const QJsonObject &object);

} // namespace jsonline

#endif
