// Saving and loading the history beside a plain program that builds, writes and walks the same DOM.
#include "driver/historykeeper.h"
#include "history/historyfile.h"
#include "samplehistory.h"

#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <benchmark/benchmark.h>

namespace {

using benchmark::State;

QDomElement groupOf(CXMLHistory &history, QDomDocument &document, const QDomElement &parent,
                    const QString &name, int id)
{
    const QString attribute = name + QLatin1String("id");
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.toElement().attribute(attribute).toInt() == id)
            return node.toElement();
    }
    return history.CreateAttributeNode(document, parent, name, attribute, QString::number(id));
}

void saveThroughDom(CXMLHistory &history, const QString &path)
{
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(
        QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = document.createElement(QStringLiteral("DownloadInfos_History"));
    document.appendChild(root);
    for (CXMLInfo *task : std::as_const(history.m_InfoList)) {
        const QDate date = task->DownLoadDate.date();
        const QDomElement year =
            groupOf(history, document, root, QStringLiteral("year"), date.year());
        const QDomElement month =
            groupOf(history, document, year, QStringLiteral("month"), date.month());
        QDomElement day = groupOf(history, document, month, QStringLiteral("day"), date.day());
        QDomElement info = document.createElement(QStringLiteral("Info"));
        day.appendChild(info);
        task->toDomNode(document, info);
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    QTextStream stream(&file);
    document.save(stream, 3, QDomNode::EncodingFromTextStream);
}

qsizetype walk(const QDomNode &parent)
{
    qsizetype size = 0;
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling())
        size += node.nodeValue().size() + walk(node);
    return size;
}

qsizetype loadThroughDom(const QString &path)
{
    QFile file(path);
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, true))
        return 0;
    return walk(document);
}

// A history of as many tasks as the benchmark's argument says, and a file for it.
struct Sample
{
    explicit Sample(const State &state) { addTasks(history, int(state.range(0))); }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("history.xml"));
    CXMLHistory history;
};

void saveOurs(State &state)
{
    Sample sample(state);
    while (state.KeepRunning())
        sample.history.SaveToFile(sample.path);
}

void savePeer(State &state)
{
    Sample sample(state);
    while (state.KeepRunning())
        saveThroughDom(sample.history, sample.path);
}

void loadOurs(State &state)
{
    Sample sample(state);
    sample.history.SaveToFile(sample.path);
    while (state.KeepRunning())
        CXMLHistory().LoadFromFile(sample.path);
}

void loadPeer(State &state)
{
    Sample sample(state);
    sample.history.SaveToFile(sample.path);
    while (state.KeepRunning())
        benchmark::DoNotOptimize(loadThroughDom(sample.path));
}

// On tmpfs: what a disk takes to sync is not the keeper's.
void saveByKeeper(State &state)
{
    const QTemporaryDir folder(QStringLiteral("/dev/shm/videodown-keeper-XXXXXX"));
    CDown controller(nullptr);
    HistoryKeeper keeper(controller, folder.filePath(QStringLiteral("history.xml")));
    QString problem = keeper.open();
    {
        const ControllerLock lock;
        addTasks(*controller.m_pHistory, int(state.range(0)));
    }
    while (state.KeepRunning() && problem.isEmpty())
        problem = keeper.save();
    if (!problem.isEmpty())
        state.SkipWithError(problem.toUtf8().constData());
}

void serializeOnly(State &state)
{
    const Sample sample(state);
    while (state.KeepRunning())
        benchmark::DoNotOptimize(historyfile::serialize(sample.history));
}

constexpr auto unit = benchmark::kMillisecond;

BENCHMARK(saveOurs)->Name("save/ours")->Arg(10000)->Unit(unit);
BENCHMARK(savePeer)->Name("save/peer")->Arg(10000)->Unit(unit);
BENCHMARK(saveByKeeper)->Name("keeper/ours")->Arg(10000)->Unit(unit);
BENCHMARK(serializeOnly)->Name("keeper/peer")->Arg(10000)->Unit(unit);
BENCHMARK(loadOurs)->Name("load/ours")->Arg(10000)->Unit(unit);
BENCHMARK(loadPeer)->Name("load/peer")->Arg(10000)->Unit(unit);

} // namespace
