#pragma once

#include <QCoreApplication>
#include <QPointer>

namespace mibrel {

// Hands background work's result to the main thread, where it runs only if `owner` still
// exists; without an application object there is no event loop to hand it to.
template <class Owner, class Work>
void onMainThread(const QPointer<Owner>& owner, Work work) {
    if (!QCoreApplication::instance()) return;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [owner, work = std::move(work)]() mutable {
            if (owner) work(*owner);
        },
        Qt::QueuedConnection);
}

} // namespace mibrel
