#include "detailspane.h"

namespace {

QString heading(const QString &text)
{
    return QStringLiteral("<h4>%1</h4>").arg(text.toHtmlEscaped());
}

QString row(const QString &name, const QString &value)
{
    return QStringLiteral("<tr><td><b>%1</b>&nbsp;&nbsp;</td><td>%2</td></tr>")
        .arg(name.toHtmlEscaped(), value.toHtmlEscaped());
}

} // namespace

DetailsPane::DetailsPane(QWidget *parent) : QTextBrowser(parent)
{
    setOpenLinks(false);
    // Without the keyboard, there would be no copying with Ctrl+C either.
    setTextInteractionFlags(textInteractionFlags() | Qt::TextSelectableByKeyboard);
    setAccessibleName(tr("Details of the selected task"));
}

void DetailsPane::show(const TaskDetails &details)
{
    QString html = QStringLiteral("<h3>%1</h3>").arg(details.title.toHtmlEscaped());
    if (!details.failure.cause.isEmpty())
        html += heading(tr("Why it failed")) + QStringLiteral("<p>%1<br>%2</p>")
                                                   .arg(details.failure.cause.toHtmlEscaped(),
                                                        details.failure.advice.toHtmlEscaped());
    if (!details.files.isEmpty()) {
        html += heading(tr("Files")) + QStringLiteral("<p>");
        for (const QString &file : details.files)
            html += file.toHtmlEscaped() + QStringLiteral("<br>");
        html += QStringLiteral("</p>");
    }
    if (!details.conversion.isEmpty())
        html += heading(tr("A conversion would make")) +
                QStringLiteral("<p>%1</p>").arg(details.conversion.toHtmlEscaped());
    if (!details.formats.isEmpty()) {
        html += heading(tr("Formats that the site offered")) + QStringLiteral("<table>");
        for (const OfferedFormat &format : details.formats)
            html += row(QString::number(format.number), QStringLiteral("%1 %2x%3")
                                                            .arg(format.extension)
                                                            .arg(format.width)
                                                            .arg(format.height));
        html += QStringLiteral("</table>");
    }
    html += heading(tr("Record")) + QStringLiteral("<table>");
    for (const auto &[name, value] : details.fields)
        html += row(name, value);
    setHtml(html + QStringLiteral("</table>"));
}

void DetailsPane::showNothing(int selected)
{
    setPlainText(selected == 0 ? tr("Select a video to see its details.")
                               : tr("%n video(s) selected.", nullptr, selected));
}
