#include "MibrelMac/Views/Kit/MibrelKitText.h"

namespace mibrel::kit {

QString qtText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString menuText(const QString& title) {
    QString escaped = title;
    return escaped.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace mibrel::kit
