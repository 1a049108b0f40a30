#include "driver/converter.h"

#include "driver/leftovers.h"
#include "driver/plaintext.h"
#include "driver/texts.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>
#include <utility>

namespace {

QString lastLine(const QByteArray &text)
{
    const QString line = QString::fromUtf8(text).trimmed().section(u'\n', -1);
    return plaintext::withoutControls(line).trimmed();
}

// Out of the terminal's foreground group, so that Ctrl-C reaches it through this program only; and
// gone with this program, however that ends.
void detachFromTerminal()
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

} // namespace

Converter::Converter(QObject *parent) : QObject(parent) {}

Converter::~Converter()
{
    if (!m_process)
        return;
    m_process->disconnect(this);
    m_process->kill();
    m_process->waitForFinished();
}

bool Converter::isAvailable()
{
    return !QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty();
}

void Converter::add(const Conversion &conversion)
{
    m_waiting.append(conversion);
    if (!m_process)
        startNext();
}

void Converter::stop(const QString &key)
{
    if (m_process && m_current.result.key == key)
        endCurrent();
    for (const Conversion &conversion : QList<Conversion>(m_waiting)) {
        if (conversion.result.key != key)
            continue;
        m_waiting.removeIf([&key](const Conversion &each) { return each.result.key == key; });
        DownloadResult result = conversion.result;
        result.outcome = DownloadOutcome::Stopped;
        emit ended(result);
    }
}

void Converter::stopAll()
{
    for (const Conversion &conversion : QList<Conversion>(m_waiting))
        stop(conversion.result.key);
    if (m_process)
        endCurrent();
}

void Converter::endCurrent()
{
    m_stopping = true;
    m_process->kill();
}

void Converter::startNext()
{
    m_current = m_waiting.takeFirst();
    const QFileInfo target(m_current.target);
    m_file = std::make_unique<QTemporaryFile>(target.path() + u'/' +
                                              leftovers::conversionPrefix(m_current.result.key) +
                                              QLatin1String("XXXXXX.") + target.suffix());
    m_process = std::make_unique<QProcess>();
    m_process->setChildProcessModifier(detachFromTerminal);
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &Converter::readProgress);
    connect(m_process.get(), &QProcess::finished, this, [this](int code, QProcess::ExitStatus how) {
        processEnded(how == QProcess::NormalExit && code == 0);
    });
    connect(m_process.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(DownloadOutcome::Failed, Texts::tr("ffmpeg cannot be started"));
    });
    emit started(m_current.result);
    if (m_file->open())
        m_process->start(QStringLiteral("ffmpeg"), arguments());
    else
        end(DownloadOutcome::Failed, Texts::tr("\"%1\" cannot be written to").arg(target.path()));
}

// The temporary file exists already, so ffmpeg has to overwrite it.
QStringList Converter::arguments() const
{
    QStringList words{QStringLiteral("-nostdin"),
                      QStringLiteral("-hide_banner"),
                      QStringLiteral("-loglevel"),
                      QStringLiteral("error"),
                      QStringLiteral("-y"),
                      QStringLiteral("-progress"),
                      QStringLiteral("pipe:1"),
                      QStringLiteral("-i"),
                      QLatin1String("file:") + m_current.source};
    const Profile_Desc &profile = m_current.profile;
    if (profile.vSize_Width > 0 && profile.vSize_Height > 0)
        words << QStringLiteral("-vf")
              << QStringLiteral("scale=%1:%2").arg(profile.vSize_Width).arg(profile.vSize_Height);
    return words << QLatin1String("file:") + m_file->fileName();
}

void Converter::readProgress()
{
    const QByteArray key("out_time_us=");
    while (m_process->canReadLine()) {
        const QByteArray line = m_process->readLine().trimmed();
        if (!line.startsWith(key) || m_current.seconds <= 0)
            continue;
        const double part = line.mid(key.size()).toDouble() / (1e6 * m_current.seconds);
        DownloadProgress progress;
        progress.key = m_current.result.key;
        progress.title = m_current.result.title;
        progress.total = QFileInfo(m_current.source).size();
        progress.received = qint64(qBound(0.0, part, 1.0) * double(progress.total));
        emit progressed(progress);
    }
}

void Converter::processEnded(bool succeeded)
{
    const QString said = lastLine(m_process->readAllStandardError());
    QString path;
    if (m_stopping)
        end(DownloadOutcome::Stopped, {});
    else if (!succeeded || m_file->size() == 0)
        end(DownloadOutcome::Failed,
            said.isEmpty() ? Texts::tr("ffmpeg was ended") : QLatin1String("ffmpeg: ") + said);
    else if (!moveToTarget(path))
        end(DownloadOutcome::Failed, Texts::tr("\"%1\" cannot be written").arg(path));
    else {
        m_current.result.path = path;
        end(DownloadOutcome::Finished, {});
    }
}

// Qt renames over nothing.
bool Converter::moveToTarget(QString &path)
{
    const QFileInfo target(m_current.target);
    const QString base = target.path() + u'/' + target.completeBaseName();
    path = m_current.target;
    for (int n = 0; !QFile::rename(m_file->fileName(), path); ++n) {
        const QFileInfo there(path);
        if (!there.exists() && !there.isSymLink())
            return false;
        path = QStringLiteral("%1_%2.%3").arg(base).arg(n).arg(target.suffix());
    }
    QFile::setPermissions(path, QFile::permissions(m_current.source));
    return true;
}

void Converter::end(DownloadOutcome outcome, const QString &cause)
{
    DownloadResult result = m_current.result;
    result.outcome = outcome;
    if (outcome != DownloadOutcome::Finished)
        result.path.clear();
    if (outcome == DownloadOutcome::Failed)
        result.failure = {
            Texts::tr("the conversion failed, %1; the downloaded file is safe: \"%2\"")
                .arg(cause, m_current.source),
            {}};
    m_file.reset();                     // removes what is there still under its name
    m_process.release()->deleteLater(); // it may be what calls this
    m_stopping = false;
    emit ended(result);
    if (!m_process && !m_waiting.isEmpty())
        startNext();
    else if (isIdle())
        emit idle();
}
