#include "driver/recordtext.h"

#include <QDomDocument>

namespace recordtext {

namespace {

QJsonObject textsOf(const QDomElement &parent)
{
    QJsonObject texts;
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const bool isNested = !child.firstChildElement().isNull();
        texts.insert(child.tagName(), isNested ? QJsonValue(textsOf(child)) : child.text());
    }
    return texts;
}

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

QJsonObject fieldsOf(CXMLInfo &record)
{
    QDomDocument document;
    QDomElement info = document.createElement(QStringLiteral("Info"));
    record.toDomNode(document, info);
    return textsOf(info);
}

QJsonObject changes(const QJsonObject &before, const QJsonObject &now)
{
    QJsonObject changed;
    for (auto field = now.begin(); field != now.end(); ++field) {
        const QJsonValue old = before.value(field.key());
        if (*field == old)
            continue;
        changed.insert(field.key(), field->isObject()
                                        ? QJsonValue(changes(old.toObject(), field->toObject()))
                                        : *field);
    }
    return changed;
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
