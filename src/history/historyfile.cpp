#include "history/historyfile.h"

#include "history/plainreader.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QThread>

bool historyfile::exists(const QString &path)
{
    return !path.isEmpty() && QFileInfo::exists(path);
}

void historyfile::announceMissing()
{
    // Without a QApplication a box ends the program, and off its thread it hangs.
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (application == nullptr || application->thread() != QThread::currentThread())
        return;
    QMessageBox::information(nullptr, QStringLiteral("information"),
                             QStringLiteral("XML File does not exist!"), QMessageBox::Ok);
}

historyfile::Loaded historyfile::load(const QString &path, CXMLHistory *history)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {{}, false};
    if (const auto plain = plainTasks(file, history))
        return {*plain, true};
    if (!file.isSequential())
        file.seek(0);
    return {tasks(contentOf(file.readAll()), history), false};
}

void historyfile::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::WriteOnly))
        file.write(content);
}

void CXMLHistory::LoadFromFile(const QString &path)
{
    if (historyfile::exists(path))
        m_InfoList.append(historyfile::load(path, this).tasks);
    else
        historyfile::announceMissing();
}

void CXMLHistory::SaveToFile(const QString &path)
{
    historyfile::write(path, historyfile::serialize(*this));
}

QDomElement CXMLHistory::CreateAttributeNode(QDomDocument &doc, QDomElement parent,
                                             const QString &tagName, const QString &attributeName,
                                             const QString &attributeValue)
{
    QDomElement element = doc.createElement(tagName);
    element.setAttribute(attributeName, attributeValue);
    parent.appendChild(element);
    return element;
}
