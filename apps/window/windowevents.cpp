// What the worker reports, and what the window makes of it.
#include "adddialog.h"
#include "detailspane.h"
#include "mainwindow.h"
#include "noticebar.h"

#include <QApplication>
#include <QCloseEvent>
#include <QItemSelectionModel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTreeView>

void MainWindow::connectWorker()
{
    connect(m_worker, &Worker::opened, this, &MainWindow::historyOpened);
    connect(m_worker, &Worker::closed, this, &MainWindow::historyClosed);
    connect(m_worker, &Worker::rowsChanged, this, &MainWindow::rowsChanged);
    connect(m_worker, &Worker::rowsRemoved, &m_model, &TaskModel::removeTasks);
    connect(m_worker, &Worker::totalsChanged, this, &MainWindow::showTotals);
    connect(m_worker, &Worker::detailsFound, this, &MainWindow::showDetails);
    connect(m_worker, &Worker::abilitiesFound, this, &MainWindow::showAbilities);
    connect(m_worker, &Worker::filesFound, this, &MainWindow::askForDeletion);
    connect(m_worker, &Worker::idle, this, &MainWindow::lastEnded);
    connect(m_worker, &Worker::message, this,
            [this](const QString &text) { statusBar()->showMessage(text); });
    connect(m_worker, &Worker::inspected, this, [this](const DownloadResult &result) {
        if (m_addDialog)
            m_addDialog->showInspection(result);
    });
}

void MainWindow::historyOpened(const OpenedHistory &history)
{
    m_readOnly = !history.problem.isEmpty();
    if (m_readOnly)
        m_notice->show(tr("For reading only: %1").arg(history.problem), tr("Open a&gain"));
    updateActions();
    emit opened();
    if (!history.setAside.isEmpty())
        tellDamage(
            tr("The history was damaged. What could be read of it is in the list.\n\nThe damaged "
               "file was kept as\n%1\nThe version before it, if there was one, is beside it, "
               "with “.previous” added to the name.")
                .arg(history.setAside));
    if (!history.setAsideJournal.isEmpty())
        tellDamage(tr("The journal beside the history belongs to another history. It was kept "
                      "as\n%1")
                       .arg(history.setAsideJournal));
    if (history.interrupted == 0 || m_readOnly)
        return;
    auto *question = new QMessageBox(
        QMessageBox::Question, windowTitle(),
        tr("%n download(s) were interrupted. Resume them now?", nullptr, history.interrupted),
        QMessageBox::Yes | QMessageBox::No, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::accepted, this,
            [this] { callWorker([worker = m_worker] { worker->resumeInterrupted(); }); });
    question->open();
}

void MainWindow::tellDamage(const QString &text)
{
    auto *box = new QMessageBox(QMessageBox::Warning, windowTitle(), text, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box->open();
}

void MainWindow::showTotals(const DownloadTotals &totals)
{
    const int running = m_model.count(TaskGroup::Running);
    const int waiting = m_model.count(TaskGroup::Waiting);
    const int failed = m_model.count(TaskGroup::Failed);
    const QString speed = QLocale().formattedDataSize(totals.bytesPerSecond);
    m_totals.setText(tr("%1 running, %2 waiting, %3 failed · %4/s")
                         .arg(running)
                         .arg(waiting)
                         .arg(failed)
                         .arg(speed));
    m_tray.setToolTip(QStringLiteral("%1: %2").arg(windowTitle(), m_totals.text()));
}

void MainWindow::rowsChanged(const QList<TaskRow> &rows)
{
    m_model.setRows(rows);
    const QItemSelectionModel &selection = *m_view->selectionModel();
    const auto isSelected = [&](const TaskRow &row) {
        return selection.isSelected(m_filter.mapFromSource(m_model.indexOf(row.key)));
    };
    if (!selection.hasSelection() || std::none_of(rows.cbegin(), rows.cend(), isSelected))
        return;
    askForAbilities();
    const TaskRow *shown = selectedKeys().size() == 1 ? selectedRow() : nullptr;
    if (shown != nullptr && TaskModel::stateText(*shown) != m_shownState)
        askForDetails();
}

void MainWindow::showDetails(const TaskDetails &details)
{
    const QStringList keys = selectedKeys();
    if (keys.size() == 1 && keys.first() == details.key)
        m_details->show(details);
}

void MainWindow::showAbilities(const Abilities &abilities)
{
    m_asking = false;
    m_abilities = abilities;
    if (std::exchange(m_askAgain, false))
        askForAbilities();
    updateActions();
}

void MainWindow::askForDeletion(const QStringList &keys, const QStringList &files)
{
    auto *question = new QMessageBox(
        QMessageBox::Warning, windowTitle(),
        tr("Remove %n video(s) from the list and delete these files?", nullptr, int(keys.size())),
        QMessageBox::Cancel, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setDefaultButton(QMessageBox::Cancel);
    question->setInformativeText(files.isEmpty() ? tr("There are no files.")
                                                 : files.mid(0, 10).join(u'\n'));
    if (files.size() > 10)
        question->setDetailedText(files.join(u'\n'));
    QPushButton *sure = question->addButton(tr("&Delete"), QMessageBox::DestructiveRole);
    connect(sure, &QPushButton::clicked, this, [this, keys] {
        callWorker([worker = m_worker, keys] { worker->remove(keys, true); });
    });
    question->open();
}

void MainWindow::lastEnded()
{
    if (m_settings.notify && !isActiveWindow() && QSystemTrayIcon::supportsMessages() &&
        m_tray.isVisible())
        m_tray.showMessage(windowTitle(), tr("All downloads have ended."));
    QApplication::alert(this);
}

// The first close has everything stopped and saved; the window goes when that is done.
void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_isClosed || !m_thread.isRunning()) {
        saveLook();
        event->accept();
        return;
    }
    event->ignore();
    if (std::exchange(m_closing, true))
        return;
    m_state.setText(tr("Stopping and saving…"));
    updateActions();
    QMetaObject::invokeMethod(m_worker, &Worker::close, Qt::QueuedConnection);
}

void MainWindow::historyClosed(const QString &problem)
{
    m_isClosed = true;
    if (!problem.isEmpty() && !m_readOnly)
        QMessageBox::warning(this, windowTitle(),
                             tr("The history could not be saved: %1").arg(problem));
    close();
    emit closed();
}
