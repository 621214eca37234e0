#pragma once

#include <functional>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

namespace mibrel::testing {

// Runs the event loop until `done` holds, so background work can report back; gives up
// after `limitMs` (a guard against a hang, not a timing check) and says whether it held.
inline bool processEventsUntil(const std::function<bool()>& done, int limitMs = 120'000) {
    QDeadlineTimer deadline(limitMs);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return done();
}

} // namespace mibrel::testing
