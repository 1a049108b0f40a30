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
#include <QMimeData>
#include <QStatusBar>
#include <QTreeView>
#include <QUrl>

#include <algorithm>

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
    const QStringList keys = selectedKeys();
    for (auto each = m_actions.cbegin(); each != m_actions.cend(); ++each)
        each.value()->setToolTip(m_plainToolTips.value(each.key()));
    updateActions();
    if (keys.size() == 1)
        tellWorker([worker = m_worker, key = keys.first()] { worker->findDetails(key); });
    else
        m_details->showNothing(int(keys.size()));
}

// An action can be used when it can be done with one of the selected videos at least.
void MainWindow::updateActions()
{
    const QStringList keys = selectedKeys();
    const bool works = !m_readOnly && !m_closing;
    const auto can = [&](TaskAction action) {
        return std::any_of(keys.cbegin(), keys.cend(), [&](const QString &key) {
            const TaskRow *row = m_model.find(key);
            return row != nullptr && row->can(action);
        });
    };
    for (auto each = m_actions.cbegin(); each != m_actions.cend(); ++each) {
        const auto action = TaskAction(each.key());
        const bool single = action == TaskAction::Rename || action == TaskAction::Open;
        each.value()->setEnabled((works || action == TaskAction::Open) &&
                                 (!single || keys.size() == 1) && can(action));
    }
    for (QAction *action : std::as_const(m_selectionActions))
        action->setEnabled(!keys.isEmpty());
    m_addAction->setEnabled(works);
    m_deleteAction->setEnabled(works && can(TaskAction::Remove));
    m_convertAction->setEnabled(works && can(TaskAction::Open));
    m_moveUp->setEnabled(works && can(TaskAction::Move));
    m_moveDown->setEnabled(works && can(TaskAction::Move));
}

void MainWindow::perform(TaskAction action)
{
    tellWorker(
        [worker = m_worker, action, keys = selectedKeys()] { worker->perform(action, keys); });
}

void MainWindow::addAddresses(const QStringList &addresses)
{
    QList<DownloadRequest> requests;
    for (const QString &address : addresses)
        requests << m_settings.request(address);
    if (requests.isEmpty())
        return;
    tellWorker([worker = m_worker, requests, convert = m_settings.convert] {
        worker->add(requests, convert);
    });
    statusBar()->showMessage(tr("%n video(s) added", nullptr, int(requests.size())), 5000);
}

void MainWindow::showAddDialog()
{
    if (m_addDialog)
        return m_addDialog->raise();
    m_addDialog = new AddDialog(m_settings, this);
    m_addDialog->setAttribute(Qt::WA_DeleteOnClose);
    m_addDialog->setAddresses(AddDialog::addressesIn(QApplication::clipboard()->text()));
    connect(m_addDialog, &AddDialog::inspectRequested, this, [this](const QString &address) {
        tellWorker([worker = m_worker, address] { worker->inspect(address); });
    });
    connect(m_addDialog, &QDialog::accepted, this, [this] { addFrom(*m_addDialog); });
    m_addDialog->open();
}

void MainWindow::addFrom(AddDialog &dialog)
{
    tellWorker([worker = m_worker, requests = dialog.requests(), convert = dialog.convert()] {
        worker->add(requests, convert);
    });
}

void MainWindow::paste()
{
    const QStringList addresses = AddDialog::addressesIn(QApplication::clipboard()->text());
    if (addresses.isEmpty())
        statusBar()->showMessage(tr("There is no address in the clipboard."), 5000);
    else if (!m_readOnly && !m_closing)
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
    event->acceptProposedAction();
}

void MainWindow::showSettings()
{
    SettingsDialog dialog(m_settings, m_passwords.isAvailable(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_settings = dialog.settings();
    m_settings.save(m_stored);
    if (!m_settings.proxy.user.isEmpty())
        m_passwords.write(m_settings.proxy.user + u'@' + m_settings.proxy.host,
                          m_settings.proxy.password);
    m_tray.setVisible(m_settings.trayIcon && QSystemTrayIcon::isSystemTrayAvailable());
    tellWorker([worker = m_worker, settings = m_settings] { worker->applySettings(settings); });
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
        tellWorker([worker = m_worker, key, name] { worker->rename(key, name); });
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
        tellWorker([worker = m_worker, keys = selectedKeys(), profile = *profile] {
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
        tellWorker([worker = m_worker, keys = selectedKeys(), profile = *profile] {
            worker->convert(keys, profile);
        });
}

void MainWindow::removeTasks()
{
    tellWorker([worker = m_worker, keys = selectedKeys()] { worker->remove(keys, false); });
}

void MainWindow::deleteTasks()
{
    tellWorker([worker = m_worker, keys = selectedKeys()] { worker->findFiles(keys); });
}

void MainWindow::openFile()
{
    const TaskRow *row = selectedRow();
    if (row != nullptr && row->can(TaskAction::Open))
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
    tellWorker([worker = m_worker, keys = selectedKeys()] { worker->move(keys, true); });
}

void MainWindow::moveDown()
{
    tellWorker([worker = m_worker, keys = selectedKeys()] { worker->move(keys, false); });
}

void MainWindow::raiseWindow()
{
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}
