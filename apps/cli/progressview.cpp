#include "progressview.h"

#include "standardstreams.h"

void ProgressView::started(const QString & /*key*/, const QString & /*label*/) {}

void ProgressView::converting(const QString & /*key*/, const QString & /*label*/) {}

void ProgressView::renamed(const QString & /*key*/, const QString & /*label*/) {}

void ProgressView::progressed(const DownloadProgress & /*progress*/) {}

void ProgressView::ended(const QString & /*key*/) {}

void ProgressView::uncovered(const std::function<void()> &write)
{
    write();
}

void ProgressView::say(const QString &line)
{
    uncovered([&line] { standardstreams::writeMessage(line); });
}

std::unique_ptr<ProgressView> makeProgressView(ProgressMode mode)
{
    if (mode == ProgressMode::Never)
        return std::make_unique<ProgressView>();
    const bool canDraw =
        standardstreams::errorIsTerminal() && qgetenv("TERM") != QByteArrayLiteral("dumb");
    return mode == ProgressMode::Always || canDraw ? makeBarView() : makeLineView();
}
