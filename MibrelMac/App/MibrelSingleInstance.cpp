#include "MibrelMac/App/MibrelSingleInstance.h"

#include <unistd.h>

#include <QLocalSocket>

namespace mibrel {
namespace {

constexpr int kConnectTimeoutMs = 500;

// Per user and per display, so a program on another display (a test's virtual screen)
// is a separate instance.
QString serverName() {
    QString display = qEnvironmentVariable("WAYLAND_DISPLAY", qEnvironmentVariable("DISPLAY"));
    display.replace(QLatin1Char('/'), QLatin1Char('_'));
    return QStringLiteral("merivante-mibrel-%1-%2").arg(::getuid()).arg(display);
}

} // namespace

bool MibrelSingleInstance::forwardToRunning(const std::vector<QUrl>& requests) {
    QLocalSocket socket;
    socket.connectToServer(serverName());
    if (!socket.waitForConnected(kConnectTimeoutMs)) return false;
    for (const QUrl& url : requests) socket.write(url.toEncoded() + '\n');
    socket.flush();
    socket.waitForBytesWritten(kConnectTimeoutMs);
    socket.disconnectFromServer();
    return true;
}

void MibrelSingleInstance::listen(Receiver receiver) {
    m_receiver = std::move(receiver);
    QLocalServer::removeServer(serverName()); // a socket left behind by a crash
    m_server.listen(serverName());
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, this, [this, socket] { readConnection(socket); });
        }
    });
}

void MibrelSingleInstance::readConnection(QLocalSocket* socket) {
    std::vector<QUrl> requests;
    for (const QByteArray& line : socket->readAll().split('\n')) {
        if (!line.isEmpty()) requests.push_back(QUrl::fromEncoded(line));
    }
    socket->deleteLater();
    m_receiver(requests);
}

} // namespace mibrel
