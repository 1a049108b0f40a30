#include "thumbnails.h"

#include <QApplication>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QPalette>

namespace {

constexpr int mostPixmaps = 2000;
constexpr qint64 mostBytes = 8 << 20;
constexpr int longestSide = 2000;

// Nothing for a file that is still to be written; a null image for what cannot or must not be
// decoded. Runs on the pool's threads.
std::optional<QImage> decode(const QString &path, QSize size)
{
    const qint64 bytes = QFileInfo(path).size();
    if (bytes == 0)
        return std::nullopt;
    if (bytes > mostBytes)
        return QImage();
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize whole = reader.size();
    if (!whole.isValid() || whole.width() > longestSide || whole.height() > longestSide)
        return QImage();
    reader.setScaledSize(whole.scaled(size, Qt::KeepAspectRatio));
    return reader.read();
}

QPixmap drawPlaceholder(QSize size, qreal ratio)
{
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame(0.5, 0.5, size.width() - 1, size.height() - 1);
    painter.setPen(QApplication::palette().color(QPalette::Mid));
    painter.setBrush(QApplication::palette().color(QPalette::AlternateBase));
    painter.drawRoundedRect(frame, 3, 3);
    const QPointF middle = frame.center();
    const qreal unit = size.height() / 6.0;
    painter.setBrush(QApplication::palette().color(QPalette::Mid));
    painter.drawPolygon(
        QPolygonF({middle + QPointF(-unit, -1.2 * unit), middle + QPointF(-unit, 1.2 * unit),
                   middle + QPointF(1.2 * unit, 0)}));
    return pixmap;
}

} // namespace

Thumbnails::Thumbnails(QSize size, QObject *parent)
    : QObject(parent),
      m_size(size),
      m_placeholder(drawPlaceholder(size, qApp->devicePixelRatio())),
      m_pixmaps(mostPixmaps)
{
    m_threads.setMaxThreadCount(2);
}

Thumbnails::~Thumbnails()
{
    m_threads.clear();
    m_threads.waitForDone();
}

QPixmap Thumbnails::pixmap(const QString &path)
{
    if (const QPixmap *known = m_pixmaps.object(path))
        return *known;
    if (path.isEmpty() || m_decoding.contains(path))
        return m_placeholder;
    m_decoding.insert(path);
    const QSize size = m_size * qApp->devicePixelRatio();
    m_threads.start([this, path, size] {
        const std::optional<QImage> image = decode(path, size);
        QMetaObject::invokeMethod(
            this, [this, path, image] { decoded(path, image); }, Qt::QueuedConnection);
    });
    return m_placeholder;
}

// All thumbnails get one size, so that the rows' texts begin in one line.
void Thumbnails::decoded(const QString &path, const std::optional<QImage> &decoded)
{
    m_decoding.remove(path);
    if (!decoded)
        return;
    const QImage &image = *decoded;
    if (image.isNull()) {
        m_pixmaps.insert(path, new QPixmap(m_placeholder));
        return;
    }
    const qreal ratio = qApp->devicePixelRatio();
    auto *framed = new QPixmap(m_size * ratio);
    framed->fill(Qt::transparent);
    QPainter(framed).drawImage((framed->width() - image.width()) / 2,
                               (framed->height() - image.height()) / 2, image);
    framed->setDevicePixelRatio(ratio);
    m_pixmaps.insert(path, framed);
    emit ready(path);
}
