#pragma once

#include <functional>
#include <vector>

#include <QUrl>

namespace mibrel {

// Receives open requests from outside (command line, file manager, a second launch).
// Requests that arrive before the window is ready wait in `pending` until a handler is set.
class MibrelAppDelegate {
public:
    using Handler = std::function<void(const std::vector<QUrl>&)>;

    void openURLs(const std::vector<QUrl>& urls);

    void setHandler(Handler handler) { m_handler = std::move(handler); }
    // The waiting requests, in arrival order; the list is empty afterwards.
    std::vector<QUrl> takePending();

private:
    Handler m_handler;
    std::vector<QUrl> m_pending;
};

} // namespace mibrel
