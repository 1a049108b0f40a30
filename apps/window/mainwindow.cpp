#include "mainwindow.h"

#include "adddialog.h"
#include "columnmenu.h"
#include "detailspane.h"
#include "noticebar.h"
#include "progressdelegate.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

constexpr QSize thumbnailSize{64, 36};

QIcon iconNamed(const QString &name, QStyle::StandardPixmap otherwise)
{
    return QIcon::fromTheme(name, QApplication::style()->standardIcon(otherwise));
}

} // namespace

MainWindow::MainWindow(const QString &historyPath, QWidget *parent)
    : QMainWindow(parent),
      m_stored(QStringLiteral("videodown"), QStringLiteral("window")),
      m_settings(Settings::load(m_stored)),
      m_thumbnails(thumbnailSize),
      m_model(&m_thumbnails),
      m_worker(new Worker(m_settings, historyPath))
{
    qRegisterMetaType<Abilities>();
    qRegisterMetaType<OpenedHistory>();
    qRegisterMetaType<DownloadTotals>();
    qRegisterMetaType<DownloadResult>();
    m_filter.setSourceModel(&m_model);
    setWindowTitle(tr("Videodown"));
    setAcceptDrops(true);
    makeView();
    makeDetails();
    makeActions();
    makeFilter();
    makeTray();
    statusBar()->addWidget(&m_state, 1);
    statusBar()->addPermanentWidget(&m_totals);
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connectWorker();
    restoreLook();
    updateActions();
}

MainWindow::~MainWindow()
{
    if (!m_thread.isRunning() && !m_thread.isFinished()) {
        delete m_worker; // its thread has never begun
        return;
    }
    m_thread.quit();
    m_thread.wait();
}

void MainWindow::start()
{
    connect(&m_thread, &QThread::started, m_worker, &Worker::open);
    m_thread.start();
    connect(&m_passwords, &Passwords::found, this,
            [this](const QString & /*account*/, const QString &password) {
                m_settings.proxy.password = password;
                callWorker([worker = m_worker, settings = m_settings] {
                    worker->applySettings(settings);
                });
            });
    connect(&m_passwords, &Passwords::failed, this, [this] {
        statusBar()->showMessage(tr("There is no keyring: the password of the proxy is kept until "
                                    "the program ends."));
    });
    if (!m_settings.proxy.user.isEmpty())
        m_passwords.read(m_settings.proxy.account());
}

void MainWindow::makeView()
{
    m_view = new QTreeView(this);
    m_view->setModel(&m_filter);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setAlternatingRowColors(true);
    m_view->setAllColumnsShowFocus(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(TaskModel::Added, Qt::DescendingOrder);
    m_view->setIconSize(thumbnailSize);
    m_view->setItemDelegateForColumn(TaskModel::Progress, new ProgressDelegate(m_view));
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_view->setAccessibleName(tr("Videos"));
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(TaskModel::Title, QHeaderView::Stretch);
    const int unit = fontMetrics().averageCharWidth();
    const int widths[] = {0, 34, 14, 14, 14, 12, 24};
    for (int column = TaskModel::State; column < TaskModel::ColumnCount; ++column)
        m_view->setColumnWidth(column, widths[column] * unit);
    m_notice = new NoticeBar(this);
    connect(m_notice, &NoticeBar::pressed, this, &MainWindow::reopenWanted);
    auto *centre = new QWidget(this);
    auto *layout = new QVBoxLayout(centre);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_notice);
    layout->addWidget(m_view);
    setCentralWidget(centre);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::selectionChanged);
    connect(m_view, &QTreeView::activated, this, &MainWindow::openFile);
}

void MainWindow::makeDetails()
{
    auto *dock = new QDockWidget(tr("Details"), this);
    dock->setObjectName(QStringLiteral("details"));
    m_details = new DetailsPane(dock);
    m_details->showNothing(0);
    dock->setWidget(m_details);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {8 * fontMetrics().lineSpacing()}, Qt::Vertical);
    QAction *toggle = dock->toggleViewAction();
    toggle->setShortcut(QKeySequence(Qt::Key_F9));
    QMenu *menu = menuBar()->addMenu(tr("&View"));
    menu->addAction(toggle);
    menu->addMenu(new ColumnMenu(*m_view->header(), this));
}

QAction *MainWindow::addAction(const QString &text, const QString &icon, const QKeySequence &keys,
                               Step step)
{
    auto *action = new QAction(QIcon::fromTheme(icon), text, this);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, step);
    QMainWindow::addAction(action);
    return action;
}

QAction *MainWindow::addTaskAction(TaskAction needs, const QString &text, const QString &icon,
                                   const QKeySequence &keys, Step step)
{
    auto *made = new QAction(QIcon::fromTheme(icon), text, this);
    made->setShortcut(keys);
    connect(made, &QAction::triggered, this, [this, needs, step] {
        if (step != nullptr)
            (this->*step)();
        else
            perform(needs);
    });
    const bool single = needs == TaskAction::Rename || step == Step(&MainWindow::openFile);
    m_taskButtons.append({made, needs, single, made->toolTip()});
    return made;
}

QAction &MainWindow::action(TaskAction action)
{
    return *std::find_if(m_taskButtons.cbegin(), m_taskButtons.cend(), [action](const auto &each) {
                return each.needs == action;
            })->action;
}

void MainWindow::makeActions()
{
    const auto named = [](QAction *action, const char *icon, QStyle::StandardPixmap otherwise) {
        action->setIcon(iconNamed(QLatin1String(icon), otherwise));
        return action;
    };
    m_addAction = named(addAction(tr("&Add…"), {}, QKeySequence::New, &MainWindow::showAddDialog),
                        "list-add", QStyle::SP_FileDialogNewFolder);
    QAction *pasteAction = addAction(tr("&Paste addresses"), QStringLiteral("edit-paste"),
                                     QKeySequence::Paste, &MainWindow::paste);
    QAction *settings =
        addAction(tr("&Settings…"), QStringLiteral("configure"),
                  QKeySequence(Qt::CTRL | Qt::Key_Comma), &MainWindow::showSettings);
    auto *quit =
        new QAction(QIcon::fromTheme(QStringLiteral("application-exit")), tr("&Quit"), this);
    quit->setShortcut(QKeySequence::Quit);
    connect(quit, &QAction::triggered, this, &QWidget::close);

    using A = TaskAction;
    QAction *pause = named(addTaskAction(A::Pause, tr("&Pause"), {}, Qt::CTRL | Qt::Key_P),
                           "media-playback-pause", QStyle::SP_MediaPause);
    QAction *go = named(addTaskAction(A::Continue, tr("C&ontinue"), {}, Qt::CTRL | Qt::Key_G),
                        "media-playback-start", QStyle::SP_MediaPlay);
    QAction *stop = named(addTaskAction(A::Stop, tr("&Stop"), {}, Qt::CTRL | Qt::Key_S),
                          "media-playback-stop", QStyle::SP_MediaStop);
    QAction *resume = named(addTaskAction(A::Resume, tr("&Resume"), {}, Qt::CTRL | Qt::Key_R),
                            "go-next", QStyle::SP_MediaSkipForward);
    QAction *retry = named(addTaskAction(A::Retry, tr("&Try again"), {}, Qt::Key_F5),
                           "view-refresh", QStyle::SP_BrowserReload);
    QAction *up = addTaskAction(A::Move, tr("Move &up"), QStringLiteral("go-up"),
                                Qt::ALT | Qt::Key_Up, &MainWindow::moveUp);
    QAction *down = addTaskAction(A::Move, tr("Move &down"), QStringLiteral("go-down"),
                                  Qt::ALT | Qt::Key_Down, &MainWindow::moveDown);
    QAction *open = named(
        addTaskAction(A::Open, tr("&Open file"), {}, Qt::CTRL | Qt::Key_O, &MainWindow::openFile),
        "document-open", QStyle::SP_DialogOpenButton);
    QAction *folder =
        addAction(tr("Open &folder"), QStringLiteral("folder-open"),
                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), &MainWindow::openFolder);
    QAction *copy = addAction(tr("&Copy address"), QStringLiteral("edit-copy"), QKeySequence::Copy,
                              &MainWindow::copyAddresses);
    QAction *rename = addTaskAction(A::Rename, tr("Re&name…"), QStringLiteral("edit-rename"),
                                    Qt::Key_F2, &MainWindow::renameTask);
    QAction *upgrade = addTaskAction(A::Upgrade, tr("&Larger picture…"), QStringLiteral("zoom-in"),
                                     Qt::CTRL | Qt::Key_L, &MainWindow::upgradeTasks);
    QAction *convert = addTaskAction(A::Open, tr("Con&vert…"), QStringLiteral("system-run"),
                                     Qt::CTRL | Qt::Key_T, &MainWindow::convertTasks);
    QAction *remove = named(addTaskAction(A::Remove, tr("Re&move from list"), {},
                                          QKeySequence::Delete, &MainWindow::removeTasks),
                            "list-remove", QStyle::SP_DialogCancelButton);
    QAction *erase = named(addTaskAction(A::Remove, tr("&Delete files…"), {},
                                         Qt::SHIFT | Qt::Key_Delete, &MainWindow::deleteTasks),
                           "edit-delete", QStyle::SP_TrashIcon);
    m_selectionActions = {folder, copy};

    addMenu(tr("&File"), {{m_addAction, pasteAction}, {settings, quit}});
    addMenu(tr("&Video"), {{pause, go, stop, resume, retry, up, down},
                           {open, folder, copy, rename, upgrade, convert},
                           {remove, erase}});
    m_view->addActions(menuBar()->actions().at(1)->menu()->actions());
    QToolBar *bar = addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    for (QAction *known : {pause, go, stop, open, remove}) // their icons say enough
        known->setPriority(QAction::LowPriority);
    for (const QList<QAction *> &actions :
         {QList<QAction *>{m_addAction}, {pause, go, stop, resume, retry}, {open, remove}}) {
        bar->addActions(actions);
        if (actions.last() != remove)
            bar->addSeparator();
    }
}

// Before the menu of views, which the details pane has made.
void MainWindow::addMenu(const QString &title, const QList<QList<QAction *>> &groups)
{
    auto *menu = new QMenu(title, this);
    for (const QList<QAction *> &group : groups) {
        if (!menu->isEmpty())
            menu->addSeparator();
        menu->addActions(group);
    }
    menuBar()->insertMenu(menuBar()->actions().last(), menu);
}

void MainWindow::makeFilter()
{
    QToolBar *bar = addToolBar(tr("Filter"));
    bar->setObjectName(QStringLiteral("filter"));
    m_group = new QComboBox(bar);
    m_group->setAccessibleName(tr("Show videos in this state"));
    for (const QString &name :
         {tr("All"), tr("Running"), tr("Waiting"), tr("Finished"), tr("Failed"), tr("Stopped")})
        m_group->addItem(name);
    m_search = new QLineEdit(bar);
    m_search->setPlaceholderText(tr("Search"));
    m_search->setAccessibleName(tr("Search titles, addresses and files"));
    m_search->setClearButtonEnabled(true);
    m_search->setMaximumWidth(30 * fontMetrics().averageCharWidth());
    bar->addWidget(m_group);
    bar->addWidget(m_search);
    connect(m_group, &QComboBox::currentIndexChanged, this,
            [this](int index) { m_filter.setGroup(TaskGroup(index)); });
    connect(m_search, &QLineEdit::textChanged, &m_filter, &TaskFilter::setText);
    auto *find = new QAction(tr("&Search"), this);
    find->setShortcut(QKeySequence::Find);
    connect(find, &QAction::triggered, m_search, qOverload<>(&QWidget::setFocus));
    QMainWindow::addAction(find);
}

void MainWindow::makeTray()
{
    m_tray.setIcon(QApplication::windowIcon());
    m_tray.setToolTip(windowTitle());
    connect(&m_tray, &QSystemTrayIcon::activated, this, &MainWindow::raiseWindow);
    m_tray.setVisible(m_settings.trayIcon && QSystemTrayIcon::isSystemTrayAvailable());
}

void MainWindow::restoreLook()
{
    const QFontMetrics metrics = fontMetrics();
    resize(QSize(200 * metrics.averageCharWidth(), 52 * metrics.lineSpacing())
               .boundedTo(screen()->availableSize() * 0.95));
    restoreGeometry(m_stored.value(QStringLiteral("look/geometry")).toByteArray());
    restoreState(m_stored.value(QStringLiteral("look/state")).toByteArray());
    m_view->header()->restoreState(m_stored.value(QStringLiteral("look/columns")).toByteArray());
}

void MainWindow::saveLook()
{
    m_stored.setValue(QStringLiteral("look/geometry"), saveGeometry());
    m_stored.setValue(QStringLiteral("look/state"), saveState());
    m_stored.setValue(QStringLiteral("look/columns"), m_view->header()->saveState());
}
