#pragma once

#include <QLabel>

#include "MibrelMac/Views/Kit/MibrelDesign.h"

namespace mibrel {

// A short status in a rounded, tinted capsule ("Transcribed", "Needs review"); the tone
// gives its colour, so a glance tells good from needs-attention.
class MibrelKitPill : public QLabel {
    Q_OBJECT

public:
    explicit MibrelKitPill(QWidget* parent = nullptr);

    void setStatus(const QString& text, design::Tone tone);
    design::Tone tone() const { return m_tone; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    design::Tone m_tone = design::Tone::neutral;
};

} // namespace mibrel
