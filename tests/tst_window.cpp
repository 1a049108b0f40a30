/** The window: its list, its actions, and whole runs against a local site. */
#include "adddialog.h"
#include "clifixture.h"
#include "instancelink.h"
#include "mainwindow.h"
#include "noticebar.h"
#include "settingsdialog.h"

#include <QAbstractItemModelTester>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QLocalSocket>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTreeView>

#include <thread>

namespace {

TaskRow makeRow(int number, TaskState state = TaskState::Finished)
{
    TaskRow row;
    row.key = u"key%1"_s.arg(number);
    row.title = u"Title %1"_s.arg(number);
    row.address = u"http://site/watch?v=%1"_s.arg(number);
    row.added = QDateTime(QDate(2026, 1, 1), QTime(0, 0)).addSecs(number);
    row.state = state;
    return row;
}

QStringList keysIn(const QAbstractItemModel &model)
{
    QStringList keys;
    for (int row = 0; row < model.rowCount(); ++row)
        keys << model.index(row, 0).data(TaskModel::KeyRole).toString();
    return keys;
}

} // namespace

class WindowTest : public QObject, private CliFixture
{
    Q_OBJECT

private:
    std::unique_ptr<MainWindow> openWindow() const
    {
        auto window = std::make_unique<MainWindow>(path("history.xml"));
        QSignalSpy opened(window.get(), &MainWindow::opened);
        window->start();
        window->show();
        if (opened.isEmpty() && !opened.wait(int(patience.count())))
            qFatal("the history is not opened");
        return window;
    }

    static void closeWindow(MainWindow &window)
    {
        QSignalSpy closed(&window, &MainWindow::closed);
        window.close();
        QVERIFY(!closed.isEmpty() || closed.wait(int(patience.count())));
        QVERIFY(!window.isVisible());
    }

    QString stateOf(MainWindow &window, const char *video) const
    {
        for (const QString &key : keysIn(window.model())) {
            const TaskRow *row = window.model().find(key);
            if (row->address == page(video))
                return TaskModel::stateText(*row);
        }
        return {};
    }

    static void press(MainWindow &window, TaskAction action)
    {
        window.view().selectAll();
        QTRY_VERIFY(window.action(action).isEnabled());
        window.action(action).trigger();
    }

private slots:
    void initTestCase() { QVERIFY(startSite()); }

    void init()
    {
        makeFolder();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path("config")));
        QSettings settings(u"videodown"_s, u"window"_s);
        settings.clear();
        settings.setValue(u"folders/output"_s, path("videos"));
    }

    void cleanup() { endFaults(); }

    // Ten thousand rows, of which some change and some go while they are sorted and filtered.
    void rowsStayInOrder()
    {
        TaskModel model(nullptr);
        TaskFilter filter;
        filter.setSourceModel(&model);
        QList<TaskRow> rows;
        for (int number = 0; number < 10000; ++number)
            rows << makeRow(number, number % 2 == 0 ? TaskState::Finished : TaskState::Failed);
        model.setRows(rows);
        filter.sort(TaskModel::Progress, Qt::DescendingOrder);
        rows = {makeRow(7), makeRow(8)};
        rows[0].percent = 50;
        rows[1].percent = 70;
        model.setRows(rows);
        QCOMPARE(keysIn(filter).mid(0, 2), QStringList({u"key8"_s, u"key7"_s}));
        filter.setGroup(TaskGroup::Failed);
        QCOMPARE(filter.rowCount(), 4999);
        filter.setText(u"TITLE v=99"_s);
        QCOMPARE(filter.rowCount(), 56); // 99, 991 to 999 and 9901 to 9999, the odd ones
        filter.setGroup(TaskGroup::All);
        model.removeTasks({u"key99"_s, u"key9900"_s, u"none"_s});
        QCOMPARE(filter.rowCount(), 109);
        QCOMPARE(model.find(u"key9901"_s)->title, u"Title 9901"_s);
        QCOMPARE(model.indexOf(u"key9999"_s).row(), 9997);
    }

    void modelsKeepTheirPromises()
    {
        TaskModel model(nullptr);
        TaskFilter filter;
        filter.setSourceModel(&model);
        const QAbstractItemModelTester tester(&model);
        const QAbstractItemModelTester filterTester(&filter);
        filter.sort(TaskModel::Added, Qt::DescendingOrder);
        for (int number = 0; number < 20; ++number)
            model.setRows({makeRow(number), makeRow(number / 2, TaskState::Failed)});
        filter.setGroup(TaskGroup::Failed);
        model.removeTasks({u"key3"_s, u"key19"_s, u"key0"_s});
        QCOMPARE(keysIn(filter).join(u' '), u"key9 key8 key7 key6 key5 key4 key2 key1"_s);
    }

    void cells()
    {
        TaskModel model(nullptr);
        TaskRow row = makeRow(1, TaskState::Failed);
        row.failure = {u"the disk is full"_s, u"Free some space."_s};
        row.progress.total = 3000;
        model.setRows({row});
        const auto text = [&](int column, int role = Qt::DisplayRole) {
            return model.index(0, column).data(role).toString();
        };
        QCOMPARE(text(TaskModel::State), u"Failed: the disk is full"_s);
        QVERIFY(text(TaskModel::State, Qt::ToolTipRole).contains(u"Free some space."_s));
        row.state = TaskState::Running;
        row.activity = TaskActivity::Downloading;
        row.progress.received = 1000;
        row.progress.bytesPerSecond = 20;
        model.setRows({row});
        QCOMPARE(text(TaskModel::State), u"Downloading"_s);
        QCOMPARE(text(TaskModel::TimeLeft), u"1:40"_s);
        QVERIFY(text(TaskModel::Speed).startsWith(u"20 "_s));
        row.activity = TaskActivity::Paused;
        model.setRows({row});
        QVERIFY(text(TaskModel::Speed).isEmpty() && text(TaskModel::TimeLeft).isEmpty());
    }

    void actionsFollowTheSelection()
    {
        QCOMPARE(
            run({u"get"_s, u"--history"_s, u"history.xml"_s, page("small-1"), page("failing-2")})
                .code,
            1);
        auto window = openWindow();
        QAction &retry = window->action(TaskAction::Retry);
        QAction &rename = window->action(TaskAction::Rename);
        const auto select = [&](const QString &title) {
            const QAbstractItemModel &rows = *window->view().model();
            const auto found = rows.match(rows.index(0, 0), Qt::DisplayRole, title, 1);
            window->view().setCurrentIndex(found.value(0));
        };
        QVERIFY(!retry.isEnabled() && retry.toolTip().contains(u"no video is selected"_s));
        window->view().selectAll();
        QTRY_VERIFY(retry.isEnabled()); // with one of the two
        QVERIFY(!rename.isEnabled());   // of one at a time
        QVERIFY(rename.toolTip().contains(u"one video"_s));
        select(u"Small video 1"_s);
        QTRY_VERIFY(rename.isEnabled() && !retry.isEnabled());
        QVERIFY(retry.toolTip().contains(u"a finished task"_s));
        QVERIFY(QFile::remove(path("Small video 1.flv")));
        select(u"none"_s);
        QTRY_VERIFY(!rename.isEnabled());
        select(u"Small video 1"_s);
        QTRY_VERIFY(rename.toolTip().contains(u"file is there"_s));
        closeWindow(*window);
    }

    void downloadsFailAndAreTriedAgain()
    {
        auto window = openWindow();
        Misbehaviour refuse;
        refuse.prefix = "/stream/small-2/";
        refuse.answer = SiteAnswer{404, "text/html", {}, "no"};
        m_site.addMisbehaviour(refuse);
        window->addAddresses({page("small-1"), page("small-2")});
        QTRY_COMPARE(stateOf(*window, "small-1"), u"Finished"_s);
        QTRY_VERIFY(stateOf(*window, "small-2").startsWith(u"Failed: the site answered 404"_s));
        QCOMPARE(contents(path("videos/Small video 1.flv")), smallVideo(1, 34));
        endFaults();
        press(*window, TaskAction::Retry);
        QTRY_COMPARE(stateOf(*window, "small-2"), u"Finished"_s);
        press(*window, TaskAction::Remove);
        QTRY_COMPARE(window->model().rowCount(), 0);
        QCOMPARE(files("videos").size(), 2); // only the list has lost them
        closeWindow(*window);
    }

    void pausedStoppedAndResumed()
    {
        haltStreams();
        auto window = openWindow();
        window->addAddresses({page("small-1")});
        QVERIFY(m_site.waitForHeld(1, patience));
        QTRY_COMPARE(stateOf(*window, "small-1"), u"Downloading"_s);
        press(*window, TaskAction::Pause);
        QTRY_COMPARE(stateOf(*window, "small-1"), u"Paused"_s);
        press(*window, TaskAction::Continue);
        QTRY_COMPARE(stateOf(*window, "small-1"), u"Downloading"_s);
        press(*window, TaskAction::Stop);
        QTRY_COMPARE(stateOf(*window, "small-1"), u"Stopped"_s);
        window->addAddresses({page("small-2")});
        QVERIFY(m_site.waitForHeld(2, patience));
        closeWindow(*window); // in the middle of it
        endFaults();
        window = openWindow();
        QTRY_COMPARE(stateOf(*window, "small-2"), u"Interrupted"_s);
        window->findChild<QMessageBox *>()->button(QMessageBox::Yes)->click();
        QTRY_COMPARE(stateOf(*window, "small-2"), u"Finished"_s);
        QCOMPARE(stateOf(*window, "small-1"), u"Stopped"_s);
        press(*window, TaskAction::Resume);
        QTRY_COMPARE(stateOf(*window, "small-1"), u"Finished"_s);
        QCOMPARE(contents(path("videos/Small video 1.flv")), smallVideo(1, 34));
        closeWindow(*window);
    }

    // A program that was killed leaves interrupted downloads, which the next start offers to
    // resume.
    void interruptedDownloadsAreOffered()
    {
        haltStreams();
        QProcess process;
        begin(process, {u"get"_s, u"--history"_s, u"history.xml"_s, page("small-3")});
        QVERIFY(m_site.waitForHeld(1, patience));
        // Meanwhile the window can only read.
        auto reader = openWindow();
        QVERIFY(!reader->findChild<QMessageBox *>());
        QVERIFY(reader->findChild<NoticeBar *>()->text().contains(
            QString::number(process.processId())));
        reader->addAddresses({page("small-4")});
        const auto *refusal = reader->findChild<QMessageBox *>();
        QVERIFY(refusal != nullptr && refusal->informativeText().contains(page("small-4")));
        closeWindow(*reader);
        process.kill();
        end(process);
        endFaults();
        auto window = openWindow();
        auto *question = window->findChild<QMessageBox *>();
        QVERIFY(question != nullptr);
        question->button(QMessageBox::Yes)->click();
        QTRY_COMPARE(stateOf(*window, "small-3"), u"Finished"_s);
        QCOMPARE(window->model().rowCount(), 1);
        closeWindow(*window);
    }

    // It is told once, and neither what the damage took nor what it left gets lost.
    void damagedHistoryIsTold()
    {
        for (const char *video : {"small-1", "small-2"})
            QCOMPARE(run({u"get"_s, u"--history"_s, u"history.xml"_s, page(video)}).code, 0);
        QFile history(path("history.xml"));
        QVERIFY(history.resize(contents(history.fileName()).lastIndexOf("<Info>") + 40));
        for (const bool told : {true, false}) {
            auto window = openWindow();
            const auto *box = window->findChild<QMessageBox *>();
            QCOMPARE(box != nullptr, told);
            const QStringList kept = QDir(m_root->path()).entryList({u"history.xml.damaged-*"_s});
            QCOMPARE(kept.size(), 2);
            QVERIFY(!told || box->text().contains(kept.first()));
            QVERIFY(contents(m_root->filePath(kept.last())).contains("small-1"));
            QCOMPARE(stateOf(*window, "small-1"), u"Finished"_s);
            closeWindow(*window);
        }
    }

    void addressesInTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("addresses");
        QTest::newRow("lines") << u"http://a/1\r\nhttps://b/2\n"_s << u"http://a/1 https://b/2"_s;
        QTest::newRow("sentence") << u"See (http://a/1), or <HTTP://b/2>."_s
                                  << u"http://a/1 HTTP://b/2"_s;
        QTest::newRow("once") << u"http://a/1 http://a/1"_s << u"http://a/1"_s;
        QTest::newRow("others") << u"ftp://a/1 file:///x mailto:a@b"_s << QString();
        QTest::newRow("nothing else") << u"http://..."_s << QString();
    }

    void addressesInTexts()
    {
        QFETCH(QString, text);
        QTEST(AddDialog::addressesIn(text).join(u' '), "addresses");
    }

    void addDialog()
    {
        Settings settings;
        settings.outputFolder = u"/videos"_s;
        AddDialog dialog(settings);
        auto *edit = dialog.findChild<QPlainTextEdit *>();
        const auto buttons = dialog.findChildren<QPushButton *>();
        const auto *download = *std::find_if(buttons.cbegin(), buttons.cend(), [](auto *button) {
            return button->text().contains(u"ownload"_s);
        });
        QVERIFY(!download->isEnabled());
        edit->setPlainText(u"http://a/1\nnonsense"_s);
        QVERIFY(!download->isEnabled());
        edit->setPlainText(u"http://a/1\n\n http://a/2 \nhttp://a/1"_s);
        QVERIFY(download->isEnabled());
        QCOMPARE(dialog.requests().size(), 2);
        QCOMPARE(dialog.requests().last().address, u"http://a/2"_s);
        QCOMPARE(dialog.requests().last().outputFolder, u"/videos"_s);
    }

    void damagedSettings()
    {
        QSettings stored(u"videodown"_s, u"window"_s);
        stored.setValue(u"folders/output"_s, u"relative"_s);
        stored.setValue(u"downloads/limit"_s, u"1000"_s);
        stored.setValue(u"downloads/connections"_s, 9);
        stored.setValue(u"downloads/rateLimit"_s, -1);
        stored.setValue(u"format/width"_s, -5);
        stored.setValue(u"proxy/type"_s, 9);
        stored.setValue(u"proxy/port"_s, u"x"_s);
        Settings settings = Settings::load(stored);
        QVERIFY(QDir::isAbsolutePath(settings.outputFolder));
        QCOMPARE(settings.videoLimit, 3);
        QCOMPARE(settings.connections, 3);
        QCOMPARE(settings.rateLimit, 0);
        QCOMPARE(settings.width, 0);
        QCOMPARE(settings.proxy.type, ProxySettings::Type::None);
        QCOMPARE(settings.proxy.port, 8080);
        settings.videoLimit = 7;
        settings.proxy.password = u"secret"_s;
        settings.save(stored);
        QCOMPARE(Settings::load(stored).videoLimit, 7);
        stored.sync();
        QVERIFY(!contents(stored.fileName()).contains("secret"));
    }

    void secondStart()
    {
        const QString name = u"videodown-test-%1"_s.arg(QCoreApplication::applicationPid());
        const QStringList addresses(1000, u"http://a/1"_s);
        QVERIFY(!InstanceLink(name).sendToFirst(addresses));
        InstanceLink first(name);
        QVERIFY(first.listen());
        QSignalSpy received(&first, &InstanceLink::received);
        QLocalSocket garbage;
        garbage.connectToServer(name);
        garbage.write(QByteArray(100, 'x'));
        bool taken = false;
        std::thread second([&] { taken = InstanceLink(name).sendToFirst(addresses); });
        QVERIFY(!received.isEmpty() || received.wait(int(patience.count())));
        second.join();
        QVERIFY(taken);
        QCOMPARE(received.first().first().toStringList(), addresses);
    }

    void hugeThumbnailIsLeftOut()
    {
        Misbehaviour huge;
        huge.prefix = "/thumbnail/small-6.jpg";
        huge.answer = SiteAnswer{200, "image/jpeg", {}, std::string(100 << 20, 'x')};
        m_site.addMisbehaviour(huge);
        auto window = openWindow();
        window->addAddresses({page("small-6")});
        QTRY_COMPARE(stateOf(*window, "small-6"), u"Finished"_s);
        closeWindow(*window);
        QCOMPARE(QDir(path("videos")).entryList(QDir::Files | QDir::Hidden),
                 QStringList(u"Small video 6.flv"_s));
    }

    void thumbnails()
    {
        QImage image(400, 200, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(path("good.png")));
        QImage(2001, 10, QImage::Format_Mono).save(path("wide.png"));
        QFile broken(path("broken.png"));
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.resize(100));
        QFile large(path("large.png"));
        QVERIFY(QFile::copy(path("good.png"), large.fileName()) && large.resize(9 << 20));
        Thumbnails pictures({64, 36});
        QSignalSpy ready(&pictures, &Thumbnails::ready);
        for (const char *name : {"wide.png", "broken.png", "large.png", "none.png", "good.png"})
            pictures.pixmap(path(name));
        QVERIFY(!ready.isEmpty() || ready.wait(int(patience.count())));
        QCOMPARE(ready.size(), 1);
        QCOMPARE(ready.first().first().toString(), path("good.png"));
        QCOMPARE(pictures.pixmap(path("good.png")).toImage().pixelColor(32, 18), QColor(Qt::red));
    }
};

QTEST_MAIN(WindowTest)
#include "tst_window.moc"
