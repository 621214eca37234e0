#include "MibrelMac/Views/Kit/MibrelDesign.h"

namespace mibrel::design {

QColor toneColor(Tone tone) {
    switch (tone) {
    case Tone::active: return QColor(0x2F, 0x6F, 0xD0);
    case Tone::neutral: return QColor(0x6E, 0x6E, 0x73);
    case Tone::success: return accent();
    case Tone::warning: return QColor(0xB8, 0x6E, 0x00);
    case Tone::error: return QColor(0xC6, 0x28, 0x28);
    }
    return QColor(0x6E, 0x6E, 0x73);
}

QColor toneFill(Tone tone) {
    QColor fill = toneColor(tone);
    fill.setAlpha(0x22);
    return fill;
}

} // namespace mibrel::design
