// Saving and loading the history beside a plain program that builds, writes and walks the same DOM.
#include "history/cxmlhistory.h"

#include <QDomDocument>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

int rounds = 11;

void fill(CXMLHistory &history, int tasks)
{
    for (int i = 0; i < tasks; ++i) {
        CXMLInfo *task = history.Add(nullptr);
        task->MD5Code = QStringLiteral("%1").arg(i, 32, 16, QLatin1Char('0')).toUpper();
        task->Title = QStringLiteral("A title of usual length & with an é, number %1").arg(i);
        task->OrgWebSite = QStringLiteral("http://host/watch?v=%1").arg(i);
        task->fmt_list = QStringLiteral("35/854x480/9/0/115,34/640x360/9/0/115,18/640x360/9/0/115");
        task->fmt_stream_map = QStringLiteral("34|http://host/stream?id=1&key=2,").repeated(4);
        task->DownLoadDate = QDateTime(QDate(2012, 3, 1 + i % 28), QTime(9, 5, 3));
    }
}

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

double milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Interleaved, so that whatever else the machine does falls on both.
void compare(const char *what, const std::function<void()> &ours, const std::function<void()> &peer)
{
    std::vector<double> own;
    std::vector<double> other;
    for (int round = 0; round < rounds; ++round) {
        own.push_back(milliseconds(ours));
        other.push_back(milliseconds(peer));
    }
    std::printf("%-24s %8.1f ms   plain DOM %8.1f ms   ratio %.2f\n", what, median(own),
                median(other), median(own) / median(other));
}

} // namespace

// An argument is the number of rounds, for a quick look.
int main(int argc, char **argv)
{
    if (argc > 1)
        rounds = std::max(1, std::atoi(argv[1]));
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("history.xml"));
    const QString domPath = folder.filePath(QStringLiteral("dom.xml"));
    CXMLHistory history;
    fill(history, 10000);
    compare(
        "saving 10,000 tasks", [&] { history.SaveToFile(path); },
        [&] { saveThroughDom(history, domPath); });
    compare(
        "loading 10,000 tasks", [&] { CXMLHistory().LoadFromFile(path); },
        [&] { loadThroughDom(domPath); });
    return 0;
}
