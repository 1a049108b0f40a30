#include "texts/manualpage.h"

#include "down/version.h"

namespace {

// A full stop or an apostrophe would begin a request, and a hyphen that is typed is no dash.
QByteArray escaped(const QString &text)
{
    QString result = text.simplified();
    result.replace(u'\\', QLatin1String("\\e"));
    result.replace(u'-', QLatin1String("\\-"));
    if (result.startsWith(u'.') || result.startsWith(u'\''))
        result.prepend(QLatin1String("\\&"));
    return result.toUtf8();
}

} // namespace

ManualPage::ManualPage(const QString &program, const QString &summary)
{
    m_text = ".TH \"" + escaped(program.toUpper()) +
             "\" \"1\" \"" VIDEODOWN_DATE "\" \"videodown " VIDEODOWN_VERSION_STRING
             "\" \"User Commands\"\n";
    addSection(QStringLiteral("NAME"));
    m_text += escaped(program) + " \\- " + escaped(summary) + '\n';
}

void ManualPage::add(const char *macro, const QString &argument)
{
    QByteArray quoted = escaped(argument);
    quoted.replace('"', "\"\"");
    m_text += QByteArray(macro) + " \"" + quoted + "\"\n";
}

void ManualPage::addSection(const QString &title)
{
    m_begins = true;
    add(".SH", title);
}

void ManualPage::addParagraph(const QString &text)
{
    if (!m_begins)
        m_text += ".PP\n";
    m_text += escaped(text) + '\n';
    m_begins = false;
}

void ManualPage::addItem(const QString &term, const QString &text)
{
    m_text += ".TP\n";
    m_begins = false;
    add(".B", term);
    m_text += escaped(text) + '\n';
}
