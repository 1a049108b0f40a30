// What "get" would do, found out without doing any of it.
#include "commands.h"

#include "commandhistory.h"
#include "driver/addresscheck.h"
#include "driver/outputname.h"
#include "driver/overwriting.h"
#include "driver/resulttext.h"
#include "jsonline.h"
#include "session.h"
#include "standardstreams.h"
#include "terminaltext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

namespace {

// What a video would become.
struct Plan
{
    ChosenFormat format;
    QString path;
    qint64 bytes = 0; // 0: not known
    bool isThere = false;
    bool isSkipped = false; // something has the path
    bool overwrites = false;
};

class DryRun
{
public:
    explicit DryRun(const CommandLine &line)
        : m_line(line),
          m_output(absolute(line.outputFolder)),
          m_downloads(line.downloadFolder.isEmpty() ? m_output : absolute(line.downloadFolder)),
          m_session(line, QDir::currentPath())
    {
        loadHistory();
        QObject::connect(&m_session, &Session::settled, &m_session,
                         [this](const DownloadResult &result) { report(result); });
    }

    ExitStatus run()
    {
        if (const int code = m_session.openLog())
            return {code, 0};
        for (const QString &folder : {m_output, m_downloads}) {
            if (const auto problem = folderNameProblem(folder)) {
                m_session.say(QLatin1String("videodown: ") + problem->cause);
                return {ExitFolder, 0};
            }
        }
        QList<DownloadRequest> requests;
        for (const QString &address : m_line.arguments) {
            DownloadRequest request;
            request.address = address;
            request.inspectOnly = true;
            requests << request;
        }
        return m_session.run(requests);
    }

private:
    static QString absolute(const QString &folder)
    {
        return QDir::cleanPath(QDir::current().absoluteFilePath(folder));
    }

    // Without its lock and its journal. Tasks whose site was never heard are asked about anew.
    void loadHistory()
    {
        const QString path = commandhistory::pathFor(m_line);
        CDown &controller = m_session.driver().controller();
        if (!QFileInfo(path).isFile())
            return;
        controller.LoadFromFile(path);
        QStringList unheard;
        {
            const ControllerLock lock;
            for (const CXMLInfo *record : std::as_const(controller.m_pHistory->m_InfoList)) {
                if (record->fmt_list.isEmpty())
                    unheard << record->MD5Code;
            }
        }
        for (const QString &key : std::as_const(unheard))
            controller.remove(key, false);
    }

    Plan planFor(const DownloadResult &result)
    {
        const FormatWish wish = result.offer.settled(m_line.profile, m_line.keepSource);
        Plan plan{result.offer.chosen(wish), {}, 0, false, false, false};
        OutputPlace place;
        place.title = result.title;
        place.key = result.key;
        place.extension = plan.format.extension;
        place.downloadFolder = m_downloads;
        place.copyFolder = m_output;
        place.copies = m_line.keepSource;
        place.claimed = m_claimed;
        place.isAwaited = [this, &result](const QString &path) {
            return isAwaited(m_session.driver().controller(), result.key, path,
                             commandhistory::unfinishedFiles);
        };
        const ControllerLock lock;
        if (const CXMLInfo *record = m_session.driver().controller().getXMLInfo(result.key)) {
            plan.bytes = record->FileSize;
            plan.isThere = !m_line.again && taskrecord::isComplete(*record);
            plan.path = plan.isThere ? taskrecord::outputPath(*record) : QString();
            place.ownVideo = record->FileName;
            place.ownCopy = record->SaveAsFileName;
            place.ownSize = record->FileSize;
        }
        if (plan.isThere)
            return plan;
        nameIn(plan, place, result.key);
        return plan;
    }

    void nameIn(Plan &plan, const OutputPlace &place, const QString &key)
    {
        const QString taken =
            m_line.onConflict == OnConflict::Rename ? QString() : conflictWith(place);
        plan.isSkipped = m_line.onConflict == OnConflict::Skip && !taken.isEmpty();
        plan.path = taken;
        if (plan.isSkipped)
            return;
        const QString video = plannedName(place).video;
        m_claimed.insert(video);
        plan.overwrites = !taken.isEmpty() && !m_claimed.contains(plainName(place).video) &&
                          !overwriting::obstacle(m_session.driver().controller(), key, taken,
                                                 commandhistory::unfinishedFiles);
        if (plan.overwrites)
            m_claimed.insert(plainName(place).video);
        else
            plan.path = m_line.keepSource ? m_output + u'/' + QFileInfo(video).fileName() : video;
    }

    void report(const DownloadResult &result)
    {
        if (result.outcome != DownloadOutcome::Finished) {
            if (m_line.json)
                m_session.deliver(jsonline::of(jsonline::headOf(result)));
            return;
        }
        const Plan plan = planFor(result);
        m_session.note(textOf(plan, result));
        if (m_line.json)
            m_session.deliver(jsonline::of(asJson(plan, result)));
        else if (!plan.isSkipped)
            m_session.deliver(QFile::encodeName(plan.path) + '\n');
    }

    static QString textOf(const Plan &plan, const DownloadResult &result)
    {
        if (plan.isThere)
            return QLatin1String("already there: ") + resulttext::nameOf(result);
        if (plan.isSkipped)
            return QStringLiteral("would skip: %1: \"%2\" is there")
                .arg(resulttext::nameOf(result), plan.path);
        const QString size =
            plan.bytes > 0 ? QLatin1String(", ") + terminaltext::size(plan.bytes) : QString();
        return QStringLiteral("would %1: %2: format %3, %4 %5x%6%7")
            .arg(plan.overwrites ? QStringLiteral("overwrite") : QStringLiteral("download"),
                 resulttext::nameOf(result))
            .arg(plan.format.number)
            .arg(plan.format.extension)
            .arg(plan.format.width)
            .arg(plan.format.height)
            .arg(size);
    }

    static QJsonObject asJson(const Plan &plan, const DownloadResult &result)
    {
        QJsonObject object = jsonline::headOf(result);
        object.insert(QStringLiteral("dryRun"), true);
        object.insert(QStringLiteral("path"), plan.path);
        object.insert(QStringLiteral("alreadyThere"), plan.isThere);
        object.insert(QStringLiteral("skipped"), plan.isSkipped);
        object.insert(QStringLiteral("overwrites"), plan.overwrites);
        object.insert(QStringLiteral("bytes"),
                      plan.bytes > 0 ? QJsonValue(plan.bytes) : QJsonValue());
        object.insert(QStringLiteral("format"),
                      QJsonObject{{QStringLiteral("number"), plan.format.number},
                                  {QStringLiteral("extension"), plan.format.extension},
                                  {QStringLiteral("width"), plan.format.width},
                                  {QStringLiteral("height"), plan.format.height}});
        return object;
    }

    const CommandLine m_line;
    const QString m_output;
    const QString m_downloads;
    Session m_session;
    QSet<QString> m_claimed; // paths that earlier videos would get
};

} // namespace

ExitStatus runDryRun(const CommandLine &line)
{
    return DryRun(line).run();
}
