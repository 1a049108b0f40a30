/** Manual pages in the macros of man(7). */
#ifndef VIDEODOWN_TEXTS_MANUALPAGE_H
#define VIDEODOWN_TEXTS_MANUALPAGE_H

#include <QByteArray>
#include <QList>
#include <QString>

/** A page from its parts, in the order in which they are added. */
class ManualPage
{
public:
    /** @param summary what the program does, without a full stop */
    ManualPage(const QString &program, const QString &summary);

    void addSection(const QString &title);
    void addParagraph(const QString &text);
    /** @param term stands in bold before the text */
    void addItem(const QString &term, const QString &text);

    QByteArray text() const { return m_text; }

private:
    void add(const char *macro, const QString &argument);

    QByteArray m_text;
    bool m_begins = false; // nothing of its section stands there yet
};

#endif
