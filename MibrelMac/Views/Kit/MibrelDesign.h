#pragma once

#include <QColor>

// The design constants every tool shares, so that pages line up and colours mean the same
// thing everywhere. Text colours come from the palette; only the accent and the tones of
// status pills are fixed, chosen to read on light and dark themes alike.
namespace mibrel::design {

// Spacing, in device-independent pixels.
inline constexpr int pageMarginX = 32;
inline constexpr int pageMarginTop = 24;
inline constexpr int pageMarginBottom = 16;
inline constexpr int panelMargin = 16;
inline constexpr int sectionSpacing = 14;
inline constexpr int itemSpacing = 8;
inline constexpr int cornerRadius = 8;
inline constexpr int pillRadius = 9;

// Text sizes, as factors of the desktop's font.
inline constexpr double pageTitleScale = 1.5;
inline constexpr double headingScale = 1.15;
inline constexpr double sectionHeaderScale = 0.9;
inline constexpr double captionScale = 0.85;
inline constexpr double tileNumberScale = 1.6;

// What a status pill or a chip says about its subject.
enum class Tone { active, neutral, success, warning, error };

// The program's green: selection marks, the active code, done states.
inline QColor accent() { return QColor(0x2E, 0x8B, 0x57); }

// The colour of a tone's text and outline; its fill is the same colour, faint.
QColor toneColor(Tone tone);
QColor toneFill(Tone tone);

} // namespace mibrel::design
