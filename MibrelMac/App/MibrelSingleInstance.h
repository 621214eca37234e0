#pragma once

#include <functional>
#include <vector>

#include <QLocalServer>
#include <QUrl>

namespace mibrel {

// One window per desktop session: a second launch hands its open requests to the
// running program and ends.
class MibrelSingleInstance : public QObject {
    Q_OBJECT

public:
    using Receiver = std::function<void(const std::vector<QUrl>&)>;

    // True when a running program took the requests (an empty list just brings it forward).
    static bool forwardToRunning(const std::vector<QUrl>& requests);

    // Starts taking requests from later launches.
    void listen(Receiver receiver);

private:
    void readConnection(QLocalSocket* socket);

    QLocalServer m_server;
    Receiver m_receiver;
};

} // namespace mibrel
