#include "driver/recordtext.h"

#include "history/storedtexts.h"

#include <QDomDocument>

namespace recordtext {

namespace {

void append(QDomDocument &document, QDomElement &parent, const QJsonObject &texts)
{
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        QDomElement child = document.createElement(text.key());
        parent.appendChild(child);
        if (text->isObject())
            append(document, child, text->toObject());
        else
            child.appendChild(document.createTextNode(text->toString()));
    }
}

} // namespace

QJsonObject fieldsOf(const CXMLInfo &record)
{
    return changes({}, storedtexts::of(record));
}

QJsonObject changes(const QStringList &before, const QStringList &now)
{
    const auto &names = storedtexts::names();
    QJsonObject info;
    QJsonObject profile;
    for (qsizetype at = 0; at < now.size(); ++at) {
        if (!before.isEmpty() && before[at] == now[at])
            continue;
        const auto &name = names[std::size_t(at)];
        (name.isOfProfile ? profile : info).insert(name.element, now[at]);
    }
    if (!profile.isEmpty())
        info.insert(QStringLiteral("Profile"), profile);
    return info;
}

QJsonObject merged(QJsonObject fields, const QJsonObject &changed)
{
    for (auto field = changed.begin(); field != changed.end(); ++field)
        fields.insert(field.key(), field->isObject()
                                       ? QJsonValue(merged(fields.value(field.key()).toObject(),
                                                           field->toObject()))
                                       : *field);
    return fields;
}

void setFields(CXMLInfo &record, const QJsonObject &fields)
{
    QDomDocument document;
    QDomElement info = document.createElement(QStringLiteral("Info"));
    append(document, info, fields);
    record.fromDomNode(info);
}

} // namespace recordtext
