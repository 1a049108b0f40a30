#include "settingsdialog.h"

#include "wishwidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

struct SettingsDialog::Widgets
{
    WishWidget *wish;
    QLineEdit *downloads;
    QSpinBox *limit;
    QCheckBox *thumbnails;
    QCheckBox *notify;
    QCheckBox *tray;
    QSpinBox *connections;
    QSpinBox *rateLimit;
    QComboBox *proxyType;
    QLineEdit *host;
    QSpinBox *port;
    QLineEdit *user;
    QLineEdit *password;
    QLineEdit *command;
    QLabel *problem;

    QWidget *makeDownloads(const Settings &settings);
    QWidget *makeNetwork(const Settings &settings, bool keepsPasswords);
    QString findProblem() const;
};

QWidget *SettingsDialog::Widgets::makeDownloads(const Settings &settings)
{
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    wish = new WishWidget(settings);
    form->addRow(wish);
    downloads =
        WishWidget::addFolder(form, SettingsDialog::tr("&Download to:"), settings.downloadFolder);
    downloads->setPlaceholderText(SettingsDialog::tr("the same folder"));
    limit = new QSpinBox;
    limit->setRange(1, maxVideoLimit);
    limit->setValue(settings.videoLimit);
    form->addRow(SettingsDialog::tr("&Videos at once:"), limit);
    thumbnails = new QCheckBox(SettingsDialog::tr("Download &thumbnails"));
    thumbnails->setChecked(settings.thumbnails);
    notify = new QCheckBox(SettingsDialog::tr("&Notify me when all downloads have ended"));
    notify->setChecked(settings.notify);
    tray = new QCheckBox(SettingsDialog::tr("Show an &icon in the system tray"));
    tray->setChecked(settings.trayIcon);
    for (QCheckBox *box : {thumbnails, notify, tray})
        form->addRow(box);
    return page;
}

QWidget *SettingsDialog::Widgets::makeNetwork(const Settings &settings, bool keepsPasswords)
{
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    connections = new QSpinBox;
    connections->setRange(1, Settings::maxConnections);
    connections->setValue(settings.connections);
    form->addRow(SettingsDialog::tr("&Connections for each video:"), connections);
    rateLimit = new QSpinBox;
    rateLimit->setRange(0, Settings::maxRateLimit);
    rateLimit->setSingleStep(100);
    rateLimit->setSuffix(SettingsDialog::tr(" KiB/s"));
    rateLimit->setSpecialValueText(SettingsDialog::tr("No limit"));
    rateLimit->setValue(settings.rateLimit);
    rateLimit->setToolTip(SettingsDialog::tr("For all downloads together"));
    form->addRow(SettingsDialog::tr("&Speed limit:"), rateLimit);
    proxyType = new QComboBox;
    proxyType->addItems({SettingsDialog::tr("None"), QStringLiteral("HTTP"),
                         QStringLiteral("SOCKS5"),
                         SettingsDialog::tr("SOCKS5 that resolves host names")});
    proxyType->setCurrentIndex(int(settings.proxy.type) + 1);
    form->addRow(SettingsDialog::tr("&Proxy:"), proxyType);
    host = new QLineEdit(settings.proxy.host);
    form->addRow(SettingsDialog::tr("&Host:"), host);
    port = new QSpinBox;
    port->setRange(1, 65535);
    port->setValue(settings.proxy.port);
    form->addRow(SettingsDialog::tr("P&ort:"), port);
    user = new QLineEdit(settings.proxy.user);
    form->addRow(SettingsDialog::tr("&User:"), user);
    password = new QLineEdit(settings.proxy.password);
    password->setEchoMode(QLineEdit::Password);
    form->addRow(SettingsDialog::tr("Pass&word:"), password);
    if (!keepsPasswords)
        form->addRow(new QLabel(SettingsDialog::tr(
            "There is no keyring: the password is kept until the program ends.")));
    command = new QLineEdit(settings.videoInfoCommand);
    command->setPlaceholderText(QStringLiteral("auto"));
    command->setToolTip(SettingsDialog::tr(
        "\"auto\": the site is asked, then yt-dlp, if it is installed; \"site\": only the site. "
        "Anything else is a command: it gets the address of a page as its last argument and prints "
        "what the site offers."));
    form->addRow(SettingsDialog::tr("Video &info:"), command);
    return page;
}

QString SettingsDialog::Widgets::findProblem() const
{
    if (!downloads->text().isEmpty() && !QDir::isAbsolutePath(downloads->text()))
        return SettingsDialog::tr("Give the whole path of the folder.");
    if (proxyType->currentIndex() > 0 && host->text().trimmed().isEmpty())
        return SettingsDialog::tr("Give the host of the proxy.");
    return wish->problem();
}

SettingsDialog::SettingsDialog(const Settings &settings, bool keepsPasswords, QWidget *parent)
    : QDialog(parent), m_widgets(std::make_unique<Widgets>()), m_settings(settings)
{
    setWindowTitle(tr("Settings"));
    auto *tabs = new QTabWidget;
    tabs->addTab(m_widgets->makeDownloads(settings), tr("Do&wnloads"));
    tabs->addTab(m_widgets->makeNetwork(settings, keepsPasswords), tr("N&etwork"));
    m_widgets->problem = new QLabel;
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(m_widgets->problem);
    layout->addWidget(buttons);
    const auto check = [this, ok = buttons->button(QDialogButtonBox::Ok)] {
        const QString problem = m_widgets->findProblem();
        m_widgets->problem->setText(problem);
        ok->setEnabled(problem.isEmpty());
    };
    connect(m_widgets->wish, &WishWidget::changed, this, check);
    connect(m_widgets->downloads, &QLineEdit::textChanged, this, check);
    connect(m_widgets->host, &QLineEdit::textChanged, this, check);
    connect(m_widgets->proxyType, &QComboBox::currentIndexChanged, this, check);
    check();
}

SettingsDialog::~SettingsDialog() = default;

Settings SettingsDialog::settings() const
{
    Settings settings = m_settings;
    m_widgets->wish->apply(settings);
    settings.downloadFolder = m_widgets->downloads->text();
    settings.videoLimit = m_widgets->limit->value();
    settings.thumbnails = m_widgets->thumbnails->isChecked();
    settings.notify = m_widgets->notify->isChecked();
    settings.trayIcon = m_widgets->tray->isChecked();
    settings.connections = m_widgets->connections->value();
    settings.rateLimit = m_widgets->rateLimit->value();
    settings.proxy.type = ProxySettings::Type(m_widgets->proxyType->currentIndex() - 1);
    settings.proxy.host = m_widgets->host->text().trimmed();
    settings.proxy.port = m_widgets->port->value();
    settings.proxy.user = m_widgets->user->text();
    settings.proxy.password = m_widgets->password->text();
    settings.videoInfoCommand = m_widgets->command->text();
    return settings;
}
