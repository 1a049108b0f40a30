// What the user does.
#include "adddialog.h"
#include "detailspane.h"
#include "mainwindow.h"
#include "settingsdialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QTreeView>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

// "mp4 1280x720": the wish as one text that can be chosen or typed.
std::optional<Profile_Desc> profileIn(const QString &text)
{
    const QStringList parts = text.split(u' ', Qt::SkipEmptyParts);
    const QStringList size = parts.value(1).split(u'x');
    Profile_Desc profile;
    profile.includeVideo = true;
    profile.fileTypeExt = parts.value(0);
    profile.vSize_Width = size.value(0).toInt();
    profile.vSize_Height = size.value(1).toInt();
    const bool sizeIsGood = parts.size() < 2 || profile.vSize_Width * profile.vSize_Height > 0;
    return profile.fileTypeExt.isEmpty() || !sizeIsGood ? std::nullopt : std::optional(profile);
}

QString mimeText(const QMimeData &data)
{
    QStringList texts{data.text()};
    for (const QUrl &url : data.urls())
        texts << url.toString(QUrl::FullyEncoded);
    return texts.join(u'\n');
}

} // namespace

QStringList MainWindow::selectedKeys() const
{
    QStringList keys;
    for (const QModelIndex &index : m_view->selectionModel()->selectedRows())
        keys << index.data(TaskModel::KeyRole).toString();
    return keys;
}

const TaskRow *MainWindow::selectedRow() const
{
    const QModelIndex current = m_view->currentIndex();
    return current.isValid() ? m_model.find(current.data(TaskModel::KeyRole).toString()) : nullptr;
}

void MainWindow::selectionChanged()
{
    askForAbilities();
    askForDetails();
}

// One question at a time: what changes before the answer is asked for after it.
void MainWindow::askForAbilities()
{
    m_askAgain = m_asking;
    if (m_asking)
        return;
    const QStringList keys = selectedKeys();
    if (keys.isEmpty())
        return showAbilities({});
    m_asking = true;
    callWorker([worker = m_worker, keys] { worker->findAbilities(keys); });
}

void MainWindow::askForDetails()
{
    const QStringList keys = selectedKeys();
    m_shownState.clear();
    if (keys.size() != 1)
        return m_details->showNothing(int(keys.size()));
    m_shownState = TaskModel::stateText(*m_model.find(keys.first()));
    callWorker([worker = m_worker, key = keys.first()] { worker->findDetails(key); });
}

// What cannot be done says why in its tool tip.
void MainWindow::updateActions()
{
    for (const TaskButton &button : std::as_const(m_taskButtons)) {
        const auto count = m_abilities.keys.size();
        const QString why = count == 0 ? tr("no video is selected")
                            : button.single && count > 1
                                ? tr("only one video at a time")
                                : m_abilities.obstacles[std::size_t(button.needs)];
        const bool can =
            m_abilities.can(button.needs) && !m_closing && (!button.single || count == 1);
        button.action->setEnabled(can);
        button.action->setToolTip(can || why.isEmpty() ? button.toolTip
                                                       : tr("%1: %2").arg(button.toolTip, why));
    }
    for (QAction *action : std::as_const(m_selectionActions))
        action->setEnabled(!m_abilities.keys.isEmpty());
    m_addAction->setEnabled(!m_readOnly && !m_closing);
}

void MainWindow::perform(TaskAction action)
{
    callWorker(
        [worker = m_worker, action, keys = selectedKeys()] { worker->perform(action, keys); });
}

void MainWindow::addAddresses(const QStringList &addresses)
{
    QList<DownloadRequest> requests;
    for (const QString &address : addresses)
        requests << m_settings.request(address);
    if (requests.isEmpty())
        return;
    if (m_readOnly)
        return refuse(addresses);
    callWorker([worker = m_worker, requests, convert = m_settings.convert] {
        worker->add(requests, convert);
    });
    statusBar()->showMessage(tr("%n video(s) added", nullptr, int(requests.size())), 5000);
}

// Nobody's addresses get lost: they can be copied from here.
void MainWindow::refuse(const QStringList &addresses)
{
    auto *notice = new QMessageBox(
        QMessageBox::Information, windowTitle(),
        tr("%n video(s) not added: the history can only be read.", nullptr, int(addresses.size())),
        QMessageBox::Ok, this);
    notice->setAttribute(Qt::WA_DeleteOnClose);
    notice->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    if (addresses.size() > 10)
        notice->setDetailedText(addresses.join(u'\n'));
    notice->setInformativeText(addresses.mid(0, 10).join(u'\n'));
    notice->open();
}

void MainWindow::showAddDialog()
{
    if (m_addDialog)
        return m_addDialog->raise();
    m_addDialog = new AddDialog(m_settings, this);
    m_addDialog->setAttribute(Qt::WA_DeleteOnClose);
    m_addDialog->setAddresses(AddDialog::addressesIn(QApplication::clipboard()->text()));
    connect(m_addDialog, &AddDialog::inspectRequested, this, [this](const QString &address) {
        callWorker([worker = m_worker, address] { worker->inspect(address); });
    });
    connect(m_addDialog, &QDialog::accepted, this, [this] { addFrom(*m_addDialog); });
    m_addDialog->open();
}

void MainWindow::addFrom(AddDialog &dialog)
{
    callWorker([worker = m_worker, requests = dialog.requests(), convert = dialog.convert()] {
        worker->add(requests, convert);
    });
}

void MainWindow::paste()
{
    const QStringList addresses = AddDialog::addressesIn(QApplication::clipboard()->text());
    if (addresses.isEmpty())
        statusBar()->showMessage(tr("There is no address in the clipboard."), 5000);
    else if (!m_closing)
        addAddresses(addresses);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!m_readOnly && !AddDialog::addressesIn(mimeText(*event->mimeData())).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    addAddresses(AddDialog::addressesIn(mimeText(*event->mimeData())));
    // A move would take the text away where it came from.
    if (event->possibleActions().testFlag(Qt::CopyAction))
        event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MainWindow::showSettings()
{
    SettingsDialog dialog(m_settings, m_passwords.isAvailable(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const ProxySettings former = std::exchange(m_settings, dialog.settings()).proxy;
    m_settings.save(m_stored);
    const ProxySettings &proxy = m_settings.proxy;
    const bool isOther = proxy.account() != former.account();
    if (isOther && !former.user.isEmpty())
        m_passwords.write(former.account(), {});
    // The keyring may not have answered yet: an unchanged password is not written over its own.
    if (!proxy.user.isEmpty() && (isOther || proxy.password != former.password))
        m_passwords.write(proxy.account(), proxy.password);
    m_tray.setVisible(m_settings.trayIcon && QSystemTrayIcon::isSystemTrayAvailable());
    callWorker([worker = m_worker, settings = m_settings] { worker->applySettings(settings); });
}

void MainWindow::renameTask()
{
    const TaskRow *row = selectedRow();
    if (row == nullptr)
        return;
    const QString key = row->key;
    bool accepted = false;
    const QString name =
        QInputDialog::getText(this, tr("Rename"), tr("New name of the file:"), QLineEdit::Normal,
                              QFileInfo(row->path).completeBaseName(), &accepted);
    if (accepted && !name.isEmpty())
        callWorker([worker = m_worker, key, name] { worker->rename(key, name); });
}

void MainWindow::upgradeTasks()
{
    bool accepted = false;
    const QStringList sizes{QStringLiteral("mp4 1280x720"), QStringLiteral("mp4 1920x1080"),
                            QStringLiteral("flv 854x480")};
    const QString wish = QInputDialog::getItem(
        this, tr("Larger picture"), tr("Container and picture size:"), sizes, 0, true, &accepted);
    const auto profile = profileIn(wish);
    if (accepted && profile)
        callWorker([worker = m_worker, keys = selectedKeys(), profile = *profile] {
            worker->upgrade(keys, profile);
        });
}

void MainWindow::convertTasks()
{
    bool accepted = false;
    const QStringList wishes{QStringLiteral("mkv"), QStringLiteral("avi"), QStringLiteral("mp4"),
                             QStringLiteral("mp4 640x360"), QStringLiteral("webm")};
    const QString wish =
        QInputDialog::getItem(this, tr("Convert"), tr("Container, and picture size if it matters:"),
                              wishes, 0, true, &accepted);
    const auto profile = profileIn(wish);
    if (accepted && profile)
        callWorker([worker = m_worker, keys = selectedKeys(), profile = *profile] {
            worker->convert(keys, profile);
        });
}

void MainWindow::removeTasks()
{
    callWorker([worker = m_worker, keys = selectedKeys()] { worker->remove(keys, false); });
}

void MainWindow::deleteTasks()
{
    callWorker([worker = m_worker, keys = selectedKeys()] { worker->findFiles(keys); });
}

void MainWindow::openFile()
{
    const TaskRow *row = selectedRow();
    if (row != nullptr && action(TaskAction::Open).isEnabled())
        QDesktopServices::openUrl(QUrl::fromLocalFile(row->path));
}

void MainWindow::openFolder()
{
    if (const TaskRow *row = selectedRow())
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(row->path).path()));
}

void MainWindow::copyAddresses()
{
    QStringList addresses;
    for (const QString &key : selectedKeys())
        addresses << m_model.find(key)->address;
    QApplication::clipboard()->setText(addresses.join(u'\n'));
}

void MainWindow::moveUp()
{
    callWorker([worker = m_worker, keys = selectedKeys()] { worker->move(keys, true); });
}

void MainWindow::moveDown()
{
    callWorker([worker = m_worker, keys = selectedKeys()] { worker->move(keys, false); });
}

void MainWindow::raiseWindow()
{
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}
