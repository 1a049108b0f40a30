/** The window: list, actions, details and status. */
#ifndef VIDEODOWN_WINDOW_MAINWINDOW_H
#define VIDEODOWN_WINDOW_MAINWINDOW_H

#include "passwords.h"
#include "settings.h"
#include "taskfilter.h"
#include "thumbnails.h"
#include "worker.h"

#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QSettings>
#include <QSystemTrayIcon>
#include <QThread>

class AddDialog;
class DetailsPane;
class NoticeBar;
class QComboBox;
class QLineEdit;
class QTreeView;

/**
 * Shows what a worker does, and has it do what the user wants. Touches no file and no network
 * itself. Closing the window stops everything and saves first; `closed` comes then.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /** @param historyPath of the history to be kept; absolute */
    explicit MainWindow(const QString &historyPath, QWidget *parent = nullptr);
    ~MainWindow() override;

    /** Opens the history; to be called once, before or after the window is shown. */
    void start();
    /** Downloads these with the settings as they are. */
    void addAddresses(const QStringList &addresses);
    /** Comes to the front, as after a second start. */
    void raiseWindow();

    TaskModel &model() { return m_model; }
    QTreeView &view() { return *m_view; }
    QAction &action(TaskAction action);
    /** Whether everything is being stopped and saved: nothing can be added any more. */
    bool isClosing() const { return m_closing; }

signals:
    /** The history has been read. */
    void opened();
    /** Everything is stopped and saved. */
    void closed();
    /** The user wants the history, which can only be read, to be opened again by a new window. */
    void reopenWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    using Step = void (MainWindow::*)();

    // What the user can do with the selected tasks, as far as one of them allows it.
    struct TaskButton
    {
        QAction *action;
        TaskAction needs;
        bool single; // of one task at a time
        QString toolTip;
    };

    // Setting up (mainwindow.cpp)
    void makeView();
    void makeDetails();
    void makeActions();
    void makeFilter();
    void makeTray();
    QAction *addAction(const QString &text, const QString &icon, const QKeySequence &keys,
                       Step step);
    QAction *addTaskAction(TaskAction needs, const QString &text, const QString &icon,
                           const QKeySequence &keys, Step step = nullptr);
    void addMenu(const QString &title, const QList<QList<QAction *>> &groups);
    void connectWorker();
    void restoreLook();
    void saveLook();

    // What the worker reports (windowevents.cpp)
    void historyOpened(const OpenedHistory &history);
    void tellDamage(const QString &text);
    void historyClosed(const QString &problem);
    void showTotals(const DownloadTotals &totals);
    void rowsChanged(const QList<TaskRow> &rows);
    void showDetails(const TaskDetails &details);
    void showAbilities(const Abilities &abilities);
    void askForDeletion(const QStringList &keys, const QStringList &files);
    void lastEnded();

    // What the user does (windowactions.cpp)
    void askForAbilities();
    void askForDetails();
    void updateActions();
    void selectionChanged();
    void showAddDialog();
    void addFrom(AddDialog &dialog);
    void refuse(const QStringList &addresses);
    void paste();
    void showSettings();
    void renameTask();
    void upgradeTasks();
    void convertTasks();
    void removeTasks();
    void deleteTasks();
    void openFile();
    void openFolder();
    void copyAddresses();
    void moveUp();
    void moveDown();
    void perform(TaskAction action);

    QStringList selectedKeys() const;
    const TaskRow *selectedRow() const;
    // Nothing comes after "close", which ends the worker's session.
    template <typename Function>
    void callWorker(Function function)
    {
        if (!m_closing)
            QMetaObject::invokeMethod(m_worker, std::move(function), Qt::QueuedConnection);
    }

    QSettings m_stored;
    Settings m_settings;
    Passwords m_passwords;
    Thumbnails m_thumbnails;
    TaskModel m_model;
    TaskFilter m_filter;
    QThread m_thread;
    Worker *m_worker; // lives on m_thread, which deletes it
    QTreeView *m_view = nullptr;
    NoticeBar *m_notice = nullptr;
    DetailsPane *m_details = nullptr;
    QLineEdit *m_search = nullptr;
    QComboBox *m_group = nullptr;
    QLabel m_totals;
    QLabel m_state;
    QSystemTrayIcon m_tray;
    QList<TaskButton> m_taskButtons;
    QList<QAction *> m_selectionActions; // that need a selection, whatever its state
    QAction *m_addAction = nullptr;
    Abilities m_abilities; // of the selected tasks, as last heard
    bool m_asking = false; // for abilities
    bool m_askAgain = false;
    QString m_shownState; // of the task in the details pane
    QPointer<AddDialog> m_addDialog;
    bool m_readOnly = false;
    bool m_closing = false;
    bool m_isClosed = false;
};

#endif
