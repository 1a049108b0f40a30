/** A task record as the named texts that a history stores. The caller holds the controller lock. */
#ifndef VIDEODOWN_DRIVER_RECORDTEXT_H
#define VIDEODOWN_DRIVER_RECORDTEXT_H

#include "history/cxmlinfo.h"

#include <QJsonObject>
#include <QStringList>

namespace recordtext {

/** Every stored field as text, by the name of its element; "Profile" holds another such object. */
QJsonObject fieldsOf(const CXMLInfo &record);

/**
 * The fields of `now` that `before` has otherwise, in the form that `fieldsOf` gives. Both are
 * texts of `storedtexts::of`; an empty `before` has none of them.
 */
QJsonObject changes(const QStringList &before, const QStringList &now);

/** `fields` with `changed` written over them. */
QJsonObject merged(QJsonObject fields, const QJsonObject &changed);

/** Sets every stored field; those that `fields` lacks get the value of a missing element. */
void setFields(CXMLInfo &record, const QJsonObject &fields);

} // namespace recordtext

#endif
