#include "instancelink.h"

#include <QDataStream>
#include <QLocalSocket>
#include <QTimer>

namespace {

constexpr int patience = 2000; // milliseconds
constexpr qint64 longestMessage = 1 << 20;
constexpr char acknowledgement = '+';

} // namespace

InstanceLink::InstanceLink(const QString &name, QObject *parent) : QObject(parent), m_name(name)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &InstanceLink::accept);
}

bool InstanceLink::sendToFirst(const QStringList &addresses)
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(patience))
        return false;
    QByteArray message;
    QDataStream content(&message, QIODevice::WriteOnly);
    content << addresses;
    QDataStream stream(&socket);
    stream << message;
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(patience))
            return false;
    }
    return socket.waitForReadyRead(patience) && socket.read(1) == QByteArray(1, acknowledgement);
}

bool InstanceLink::listen()
{
    if (m_server.listen(m_name))
        return true;
    QLocalServer::removeServer(m_name); // nobody answered there
    return m_server.listen(m_name);
}

void InstanceLink::accept()
{
    QLocalSocket *socket = m_server.nextPendingConnection();
    if (socket == nullptr)
        return;
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(*socket); });
    QTimer::singleShot(patience, socket, [socket] { socket->abort(); });
}

// One message: its length, then the addresses.
void InstanceLink::read(QLocalSocket &socket)
{
    if (socket.bytesAvailable() > longestMessage)
        return socket.abort();
    QDataStream stream(&socket);
    QByteArray message;
    stream.startTransaction();
    stream >> message;
    if (!stream.commitTransaction())
        return;
    QStringList addresses;
    QDataStream content(message);
    content >> addresses;
    if (content.status() != QDataStream::Ok)
        return socket.abort();
    socket.write(&acknowledgement, 1);
    socket.flush();
    emit received(addresses);
}
