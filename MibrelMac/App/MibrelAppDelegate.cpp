#include "MibrelMac/App/MibrelAppDelegate.h"

#include <utility>

namespace mibrel {

void MibrelAppDelegate::openURLs(const std::vector<QUrl>& urls) {
    if (m_handler) {
        m_handler(urls);
    } else {
        m_pending.insert(m_pending.end(), urls.begin(), urls.end());
    }
}

std::vector<QUrl> MibrelAppDelegate::takePending() { return std::exchange(m_pending, {}); }

} // namespace mibrel
