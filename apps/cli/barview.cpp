#include "progressview.h"
#include "standardstreams.h"
#include "terminaltext.h"

#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace {

using standardstreams::TerminalSize;

constexpr std::chrono::milliseconds redrawEvery{150};

struct Bar
{
    QString label;
    bool isShown = true; // not while the task waits between its steps
    DownloadProgress progress;
};

// Drawn are the bars' lines with the cursor behind the last one.
class BarView : public ProgressView
{
public:
    BarView()
    {
        m_redraw.setSingleShot(true);
        m_redraw.callOnTimeout([this] { draw(); });
    }

    ~BarView() override { erase(); }

    void started(const QString &key, const QString &label) override
    {
        Bar bar{label, true, {}};
        bar.progress.key = key;
        m_bars.append(bar);
        redrawSoon();
    }

    void converting(const QString &key, const QString &label) override { started(key, label); }

    void renamed(const QString &key, const QString &label) override
    {
        if (Bar *bar = find(key)) {
            bar->label = label;
            bar->isShown = false;
        }
        redrawSoon();
    }

    void progressed(const DownloadProgress &progress) override
    {
        if (Bar *bar = find(progress.key)) {
            bar->progress = progress;
            bar->isShown = true;
        }
        redrawSoon();
    }

    void ended(const QString &key) override
    {
        m_bars.removeIf([&key](const Bar &bar) { return bar.progress.key == key; });
        redrawSoon();
    }

    void uncovered(const std::function<void()> &write) override
    {
        erase();
        write();
        redrawSoon();
    }

private:
    Bar *find(const QString &key)
    {
        const auto at = std::find_if(m_bars.begin(), m_bars.end(),
                                     [&key](const Bar &bar) { return bar.progress.key == key; });
        return at == m_bars.end() ? nullptr : &*at;
    }

    void redrawSoon()
    {
        if (!m_redraw.isActive())
            m_redraw.start(redrawEvery);
    }

    // The last column stays free: some terminals wrap when it is written to.
    QStringList lines(const TerminalSize &size) const
    {
        const int width = size.columns - 1;
        const int most = std::max(size.rows - 1, 1);
        QStringList result;
        for (const Bar &bar : m_bars) {
            if (bar.isShown)
                result << terminaltext::progressLine(standardstreams::shown(bar.label),
                                                     bar.progress, width);
        }
        if (result.size() > most) {
            const qsizetype more = result.size() - most + 1;
            result.resize(most - 1);
            result << terminaltext::cut(QStringLiteral("and %1 more").arg(more), width);
        }
        return result;
    }

    // A terminal that became narrower has broken the lines that were drawn.
    int rowsDrawn(const TerminalSize &size) const
    {
        int rows = 0;
        for (const QString &line : m_drawn)
            rows += 1 + (std::max(terminaltext::columns(line), 1) - 1) / size.columns;
        return rows;
    }

    QByteArray erasing(const TerminalSize &size) const
    {
        const int up = rowsDrawn(size) - 1;
        if (up < 0)
            return {};
        QByteArray bytes("\r");
        if (up > 0)
            bytes += "\x1b[" + QByteArray::number(up) + 'A';
        return bytes + "\x1b[J";
    }

    void erase()
    {
        standardstreams::writeError(erasing(standardstreams::terminalSize()));
        m_drawn.clear();
    }

    void draw()
    {
        const TerminalSize size = standardstreams::terminalSize();
        const QByteArray before = erasing(size);
        m_drawn = lines(size);
        standardstreams::writeError(before + m_drawn.join(u'\n').toUtf8());
    }

    QTimer m_redraw;
    QList<Bar> m_bars;   // in the order of their start
    QStringList m_drawn; // what stands on the terminal
};

} // namespace

std::unique_ptr<ProgressView> makeBarView()
{
    return std::make_unique<BarView>();
}
