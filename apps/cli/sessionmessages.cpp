// What a session tells of its tasks, to people and to the log.
#include "session.h"

#include "commandhistory.h"
#include "driver/resulttext.h"
#include "driver/videoanswer.h"

#include <QFileInfo>

namespace {

QString answeredBy(AnswerSource source, const QString &name)
{
    return QStringLiteral("the %1 has answered: %2").arg(answerSourceName(source), name);
}

} // namespace

void Session::followSteps()
{
    connect(&driver(), &DownloadDriver::started, this, [this](const QString &key) {
        QString address;
        {
            const ControllerLock lock;
            CXMLInfo *record = m_session.controller().getXMLInfo(key);
            if (record == nullptr)
                return;
            address = record->OrgWebSite;
            const QString part = commandhistory::unfinishedFiles(record->FileName).constFirst();
            if (!record->FileName.isEmpty() && QFileInfo(part).size() > 0)
                m_begun.insert(key);
        }
        m_chosen.remove(key);
        m_view->started(key, address);
        log(QStringLiteral("asking the site: ") + address);
    });
    connect(&driver(), &DownloadDriver::described, this, &Session::describe);
    connect(&driver(), &DownloadDriver::retrying, this, [this](const QString &key, int attempt) {
        choose(key);
        const QString line =
            QStringLiteral("trying again: %1, try %2").arg(labelOf(key)).arg(attempt);
        if (m_line.progress == ProgressMode::Never)
            tell(line);
        else
            note(line);
    });
}

QString Session::labelOf(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_session.controller().getXMLInfo(key);
    return record == nullptr ? key : commandhistory::titleOf(*record);
}

void Session::describe(const QString &key, const QString &title)
{
    auto source = AnswerSource::Unknown;
    QString name;
    {
        const ControllerLock lock;
        const CXMLInfo *record = m_session.controller().getXMLInfo(key);
        if (record == nullptr) // of an inspection
            return;
        source = answerSourceOf(*record);
        name = QStringLiteral("%1 (%2)").arg(title, record->OrgWebSite);
    }
    if (source != AnswerSource::Unknown) // else its failure says why
        tell(answeredBy(source, name));
}

// When the transfer begins, the record has the format and the name.
void Session::choose(const QString &key)
{
    if (m_chosen.contains(key))
        return;
    m_chosen.insert(key);
    QString line;
    {
        const ControllerLock lock;
        const CXMLInfo *record = m_session.controller().getXMLInfo(key);
        if (record == nullptr)
            return;
        const VideoOffer offer(record->fmt_list, record->fmt_stream_map);
        const bool keepsSource = record->IsOrgVideo == 1;
        const ChosenFormat format =
            offer.chosen(offer.settled(*record->Profile->m_pDesc, keepsSource));
        line = QStringLiteral("chosen: format %1, %2 %3x%4, for \"%5\"")
                   .arg(format.number)
                   .arg(format.extension)
                   .arg(format.width)
                   .arg(format.height)
                   .arg(record->FileName);
    }
    if (m_begun.contains(key))
        line += QStringLiteral(", of which a part is there");
    tell(line);
}

void Session::log(const QString &line)
{
    const QString problem = m_log.append(line);
    if (!problem.isEmpty())
        m_view->say(QStringLiteral("videodown: the log cannot be written: ") + problem);
}

void Session::say(const QString &line)
{
    m_view->say(line);
    log(line);
}

void Session::note(const QString &line)
{
    if (!m_line.quiet)
        m_view->say(line);
    log(line);
}

void Session::tell(const QString &line)
{
    if (m_line.verbose)
        m_view->say(runlog::withoutUsers(line));
    log(line);
}

void Session::count(const DownloadResult &result)
{
    m_view->ended(result.key);
    m_finished += int(result.outcome == DownloadOutcome::Finished);
    m_failed += int(result.outcome == DownloadOutcome::Failed);
    m_stopped += int(result.outcome == DownloadOutcome::Stopped);
    m_skipped += int(result.outcome == DownloadOutcome::Skipped);
    const QString summary = resulttext::summaryOf(result);
    if (isInspection() && result.outcome == DownloadOutcome::Finished)
        tell(answeredBy(answerSourceOf(result.offer.fmtList()), resulttext::nameOf(result)));
    else if (summary.isEmpty())
        tell(QStringLiteral("finished: ") + resulttext::nameOf(result));
    else if (result.outcome == DownloadOutcome::Failed)
        say(summary);
    else
        note(summary);
}

void Session::announceSummary()
{
    QString summary = QStringLiteral("%1 finished, %2 failed").arg(m_finished).arg(m_failed);
    if (m_stopped > 0)
        summary += QStringLiteral(", %1 stopped").arg(m_stopped);
    if (m_skipped > 0)
        summary += QStringLiteral(", %1 skipped").arg(m_skipped);
    note(summary);
}
