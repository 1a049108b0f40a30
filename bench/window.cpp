// What the window costs with a large history: bench_window HISTORY
// Prints lines of row, side, seconds, seconds of CPU and KiB, as scripts/benchmark collects them.
#include "mainwindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

#include <chrono>
#include <cstdio>
#include <ctime>

namespace {

constexpr int runningTasks = 100;
constexpr std::chrono::milliseconds repaintEvery{200};
constexpr std::chrono::seconds watched{4};

void print(const char *row, const char *side, double seconds, double cpu = 0, long kib = 0)
{
    std::printf("%s\t%s\t%.9f\t%.9f\t%ld\n", row, side, seconds, cpu, kib);
}

double secondsOf(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

double cpuSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

long residentKib()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    }
    return 0;
}

void measureLibrary(const QString &history)
{
    CXMLHistory records;
    QElapsedTimer timer;
    timer.start();
    records.LoadFromFile(history);
    print("window", "peer", secondsOf(timer));
}

// Until all rows are there and painted.
std::unique_ptr<MainWindow> measureStart(const QString &history)
{
    QElapsedTimer timer;
    timer.start();
    auto window = std::make_unique<MainWindow>(history);
    QSignalSpy opened(window.get(), &MainWindow::opened);
    window->start();
    window->show();
    opened.wait(60000);
    QApplication::processEvents();
    window->view().grab();
    print("window", "ours", secondsOf(timer));
    return window;
}

template <typename Step>
void measureStep(const char *row, MainWindow &window, Step step)
{
    QElapsedTimer timer;
    timer.start();
    step();
    window.view().grab();
    print(row, "ours", secondsOf(timer));
}

void spin(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

// The rows as they come from a hundred downloads, the newest ones, which are to be seen.
void measureRunning(MainWindow &window)
{
    QList<TaskRow> rows;
    const QAbstractItemModel &shown = *window.view().model();
    for (int number = 0; number < runningTasks && number < shown.rowCount(); ++number) {
        const QString key = shown.index(number, 0).data(TaskModel::KeyRole).toString();
        rows << *window.model().find(key);
        rows.last().activity = TaskActivity::Downloading;
        rows.last().progress.total = 1 << 30;
        rows.last().progress.bytesPerSecond = 1 << 20;
    }
    spin(std::chrono::seconds(1)); // what sorting and filtering left to do
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        for (TaskRow &row : rows) {
            row.progress.received += 1 << 18;
            row.percent = int(double(row.progress.received) / double(row.progress.total) * 100);
        }
        window.model().setRows(rows);
    });
    timer.start(repaintEvery);
    const double before = cpuSeconds();
    QElapsedTimer wall;
    wall.start();
    spin(watched);
    print("window running", "ours", (cpuSeconds() - before) / secondsOf(wall));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: bench_window HISTORY\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    const QApplication application(argc, argv);
    const QString history = folder.filePath(QStringLiteral("history.xml"));
    QFile::copy(QFile::decodeName(argv[1]), history);
    measureLibrary(history);
    const auto window = measureStart(history);
    print("window memory", "ours", 0, 0, residentKib());
    auto *const search = window->findChild<QLineEdit *>();
    measureStep("window filter", *window, [&] { search->setText(QStringLiteral("99")); });
    search->clear();
    measureStep("window sort", *window,
                [&] { window->view().sortByColumn(TaskModel::Title, Qt::AscendingOrder); });
    measureRunning(*window);
    QSignalSpy closed(window.get(), &MainWindow::closed);
    window->close();
    return closed.isEmpty() && !closed.wait(60000) ? 1 : 0;
}
