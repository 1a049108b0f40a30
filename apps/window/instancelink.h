/** One window per user: a second start hands its addresses to the first. */
#ifndef VIDEODOWN_WINDOW_INSTANCELINK_H
#define VIDEODOWN_WINDOW_INSTANCELINK_H

#include <QLocalServer>
#include <QObject>
#include <QStringList>

class QLocalSocket;

/** Threads: belongs to the window's thread. */
class InstanceLink : public QObject
{
    Q_OBJECT

public:
    /** @param name identifies the instances of one user and history */
    explicit InstanceLink(const QString &name, QObject *parent = nullptr);

    /** Hands the addresses over. @return false when there is no other instance that takes them */
    bool sendToFirst(const QStringList &addresses);
    /** Becomes the first instance; a socket that a crashed one left is replaced. @return whether */
    bool listen();
    /** Lets another become the first instance. */
    void close() { m_server.close(); }

signals:
    /** A second start has handed over its addresses, perhaps none: raise the window. */
    void received(const QStringList &addresses);

private:
    void accept();
    void read(QLocalSocket &socket);

    const QString m_name;
    QLocalServer m_server;
};

#endif
