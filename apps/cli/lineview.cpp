#include "progressview.h"
#include "terminaltext.h"

#include <QHash>

namespace {

struct Line
{
    QString label;
    int quarters = -1; // shown so far; -1: not even the beginning
    QString work = QStringLiteral("downloading");
};

class LineView : public ProgressView
{
public:
    void started(const QString &key, const QString &label) override
    {
        m_lines[key].label = label;
        say(QStringLiteral("asking the site: %1").arg(label));
    }

    void converting(const QString &key, const QString &label) override
    {
        Line line;
        line.label = label;
        line.quarters = 0;
        line.work = QStringLiteral("converting");
        m_lines.insert(key, line);
        say(QStringLiteral("converting: %1").arg(label));
    }

    void renamed(const QString &key, const QString &label) override { m_lines[key].label = label; }

    void progressed(const DownloadProgress &progress) override
    {
        Line &line = m_lines[progress.key];
        const int quarters =
            progress.total > 0 ? int(4 * double(progress.received) / double(progress.total)) : 0;
        if (quarters <= line.quarters || (quarters == 0 && progress.total == 0))
            return;
        line.quarters = quarters;
        say(QStringLiteral("%1: %2, %3% of %4")
                .arg(line.work, line.label)
                .arg(25 * quarters)
                .arg(terminaltext::size(progress.total)));
    }

    void ended(const QString &key) override { m_lines.remove(key); }

private:
    QHash<QString, Line> m_lines; // by task key
};

} // namespace

std::unique_ptr<ProgressView> makeLineView()
{
    return std::make_unique<LineView>();
}
