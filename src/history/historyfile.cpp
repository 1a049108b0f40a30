#include "history/historyfile.h"

#include "history/plainreader.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QThread>

namespace historyfile {

/**
 * QMessageBox::information(), by the name that linkers know: null in a program without Qt Widgets.
 * Only one that has them can show a box, and no other should have to load, or install, what a
 * display needs.
 */
[[gnu::weak]] QMessageBox::StandardButton showInformation(
    QWidget *parent, const QString &title, const QString &text,
    QMessageBox::StandardButtons buttons,
    QMessageBox::StandardButton defaultButton) __asm__("_ZN11QMessageBox11informationEP7QWidgetRK7Q"
                                                       "StringS4_6QFlagsINS_14StandardButtonEES6_");

} // namespace historyfile

bool historyfile::exists(const QString &path)
{
    return !path.isEmpty() && QFileInfo::exists(path);
}

void historyfile::announceMissing()
{
    // Without a QApplication a box ends the program, and off its thread it hangs.
    const QCoreApplication *application = QCoreApplication::instance();
    if (application == nullptr || !application->inherits("QApplication") ||
        application->thread() != QThread::currentThread() || showInformation == nullptr)
        return;
    showInformation(nullptr, QStringLiteral("information"),
                    QStringLiteral("XML File does not exist!"), QMessageBox::Ok,
                    QMessageBox::NoButton);
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
