#include "adddialog.h"

#include "driver/addresscheck.h"
#include "wishwidget.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

struct AddDialog::Widgets
{
    QPlainTextEdit *addresses;
    QLabel *problem;
    WishWidget *wish;
    QPushButton *ask;
    QPushButton *download;
    QLabel *answer;
    QTreeWidget *formats;
    DownloadResult inspection;
};

namespace {

QStringList linesOf(const QPlainTextEdit &edit)
{
    QStringList lines;
    for (const QString &line : edit.toPlainText().split(u'\n')) {
        if (!line.trimmed().isEmpty() && !lines.contains(line.trimmed()))
            lines << line.trimmed();
    }
    return lines;
}

} // namespace

AddDialog::AddDialog(const Settings &settings, QWidget *parent)
    : QDialog(parent), m_widgets(std::make_unique<Widgets>()), m_settings(settings)
{
    setWindowTitle(tr("Add videos"));
    makeWidgets();
    connect(m_widgets->addresses, &QPlainTextEdit::textChanged, this, &AddDialog::check);
    connect(m_widgets->wish, &WishWidget::changed, this, &AddDialog::check);
    connect(m_widgets->ask, &QPushButton::clicked, this, &AddDialog::ask);
    connect(m_widgets->formats, &QTreeWidget::itemActivated, this, &AddDialog::choose);
    auto *accept = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this);
    connect(accept, &QShortcut::activated, m_widgets->download, &QPushButton::click);
    check();
}

AddDialog::~AddDialog() = default;

void AddDialog::makeWidgets()
{
    auto *layout = new QVBoxLayout(this);
    auto *label = new QLabel(tr("&Addresses of video pages, one per line:"));
    m_widgets->addresses = new QPlainTextEdit;
    m_widgets->addresses->setTabChangesFocus(true);
    m_widgets->addresses->setMaximumHeight(6 * fontMetrics().lineSpacing());
    m_widgets->addresses->setMinimumWidth(70 * fontMetrics().averageCharWidth());
    label->setBuddy(m_widgets->addresses);
    m_widgets->problem = new QLabel;
    m_widgets->problem->setWordWrap(true);
    m_widgets->wish = new WishWidget(m_settings);
    m_widgets->ask = new QPushButton(tr("Ask the &site what it offers"));
    m_widgets->ask->setAutoDefault(false);
    m_widgets->answer = new QLabel;
    m_widgets->answer->setWordWrap(true);
    m_widgets->formats = new QTreeWidget;
    m_widgets->formats->setAccessibleName(tr("Formats that the site offers"));
    m_widgets->formats->setHeaderLabels({tr("Container"), tr("Picture size"), tr("Remarks")});
    m_widgets->formats->setRootIsDecorated(false);
    m_widgets->formats->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_widgets->download = buttons->addButton(tr("&Download"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (QWidget *widget : std::initializer_list<QWidget *>{
             label, m_widgets->addresses, m_widgets->problem, m_widgets->wish, m_widgets->ask,
             m_widgets->answer, m_widgets->formats, buttons})
        layout->addWidget(widget);
}

void AddDialog::setAddresses(const QStringList &addresses)
{
    m_widgets->addresses->setPlainText(addresses.join(u'\n'));
}

QList<DownloadRequest> AddDialog::requests() const
{
    Settings settings = m_settings;
    m_widgets->wish->apply(settings);
    QList<DownloadRequest> requests;
    for (const QString &address : linesOf(*m_widgets->addresses))
        requests << settings.request(address);
    return requests;
}

bool AddDialog::convert() const
{
    Settings settings = m_settings;
    m_widgets->wish->apply(settings);
    return settings.convert;
}

void AddDialog::check()
{
    const QStringList lines = linesOf(*m_widgets->addresses);
    QString problem = m_widgets->wish->problem();
    for (const QString &line : lines) {
        if (const auto reason = addressProblem(line))
            problem = tr("\"%1\": %2").arg(line.left(60), reason->cause);
    }
    m_widgets->download->setEnabled(problem.isEmpty() && !lines.isEmpty());
    m_widgets->ask->setEnabled(problem.isEmpty() && lines.size() == 1);
    m_widgets->problem->setText(problem.isEmpty() && lines.size() > 1
                                    ? tr("%n address(es)", nullptr, int(lines.size()))
                                    : problem);
    markChoice();
}

void AddDialog::ask()
{
    m_widgets->answer->setText(tr("Asking the site…"));
    m_widgets->formats->hide();
    emit inspectRequested(linesOf(*m_widgets->addresses).value(0));
}

void AddDialog::showInspection(const DownloadResult &result)
{
    if (linesOf(*m_widgets->addresses) != QStringList{result.address})
        return;
    m_widgets->inspection = result;
    m_widgets->formats->clear();
    if (result.outcome != DownloadOutcome::Finished) {
        m_widgets->answer->setText(result.failure.cause + QStringLiteral(". ") +
                                   result.failure.advice);
        return;
    }
    m_widgets->answer->setText(tr("%1 (%2:%3)")
                                   .arg(result.title)
                                   .arg(result.seconds / 60)
                                   .arg(result.seconds % 60, 2, 10, QChar(u'0')));
    for (const OfferedFormat &format : result.offer.formats())
        new QTreeWidgetItem(
            m_widgets->formats,
            {format.extension, QStringLiteral("%1x%2").arg(format.width).arg(format.height)});
    m_widgets->formats->show();
    markChoice();
}

// What would be downloaded with the present wishes.
void AddDialog::markChoice()
{
    Settings settings = m_settings;
    m_widgets->wish->apply(settings);
    const VideoOffer &offer = m_widgets->inspection.offer;
    if (offer.formats().isEmpty())
        return;
    const ChosenFormat chosen =
        offer.chosen(offer.settled(settings.profile(), settings.keepSource));
    for (int row = 0; row < m_widgets->formats->topLevelItemCount(); ++row) {
        const OfferedFormat &format = offer.formats().at(row);
        const bool isChosen = format.number == chosen.number;
        QTreeWidgetItem *item = m_widgets->formats->topLevelItem(row);
        item->setText(2, !format.hasStream ? tr("no address")
                         : isChosen        ? tr("will be downloaded")
                                           : QString());
        QFont font = item->font(0);
        font.setBold(isChosen);
        for (int column = 0; column < 3; ++column)
            item->setFont(column, font);
    }
}

void AddDialog::choose(QTreeWidgetItem *item)
{
    const int row = m_widgets->formats->indexOfTopLevelItem(item);
    const OfferedFormat format = m_widgets->inspection.offer.formats().value(row);
    m_widgets->wish->setFormat(format.extension, format.width, format.height);
}

QStringList AddDialog::addressesIn(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("https?://[^\\s<>\"]+"),
                                            QRegularExpression::CaseInsensitiveOption);
    QStringList addresses;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        QString address = matches.next().captured();
        while (QStringLiteral(".,;:!?)]}'").contains(address.back()))
            address.chop(1);
        if (!address.endsWith(QLatin1String("//")) && !addresses.contains(address))
            addresses << address;
    }
    return addresses;
}
