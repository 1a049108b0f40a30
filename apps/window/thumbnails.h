/** Pictures for the list, decoded off the window's thread. */
#ifndef VIDEODOWN_WINDOW_THUMBNAILS_H
#define VIDEODOWN_WINDOW_THUMBNAILS_H

#include <QCache>
#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QSize>
#include <QThreadPool>

#include <optional>

/**
 * Decodes and scales thumbnails on threads of its own, a bounded number at a time, and keeps a
 * bounded number of them. Files of more than 8 MB, and images of more than 2,000 x 2,000 pixels,
 * are not decoded; they, and broken ones, show the placeholder.
 *
 * Threads: belongs to the window's thread.
 */
class Thumbnails : public QObject
{
    Q_OBJECT

public:
    /** @param size of the thumbnails, in device-independent pixels */
    explicit Thumbnails(QSize size, QObject *parent = nullptr);
    /** Waits for the images that are being decoded. */
    ~Thumbnails() override;

    /** The thumbnail of a file, or the placeholder; in that case `ready` comes when it is decoded.
     */
    QPixmap pixmap(const QString &path);
    const QPixmap &placeholder() const { return m_placeholder; }

signals:
    void ready(const QString &path);

private:
    void decoded(const QString &path, const std::optional<QImage> &decoded);

    const QSize m_size;
    QPixmap m_placeholder;
    QCache<QString, QPixmap> m_pixmaps;
    QSet<QString> m_decoding;
    QThreadPool m_threads;
};

#endif
