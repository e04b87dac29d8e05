#include "singleinstance.h"

#include <QDir>
#include <QLocalSocket>

#include <unistd.h>

namespace zifora::gui {

QString SingleInstance::serverName() {
    return QStringLiteral("zifora-%1").arg(static_cast<qulonglong>(::getuid()));
}

bool SingleInstance::sendToRunning(const QString& message) {
    QLocalSocket socket;
    socket.connectToServer(serverName());
    if (!socket.waitForConnected(500)) return false;
    socket.write(message.toUtf8() + '\n');
    socket.flush();
    socket.waitForBytesWritten(1000);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen(std::function<void(const QString&)> onMessage) {
    m_onMessage = std::move(onMessage);
    // A server left behind by a crashed run would block the name.
    QLocalServer::removeServer(serverName());
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server.listen(serverName())) return false;
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                while (socket->canReadLine()) {
                    QString line = QString::fromUtf8(socket->readLine()).trimmed();
                    if (m_onMessage) m_onMessage(line);
                }
            });
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    return true;
}

} // namespace zifora::gui
