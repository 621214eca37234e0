#pragma once

#include <array>

#include <QStackedWidget>

#include "MibrelMac/State/MibrelTool.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace mibrel {

class MibrelShellUIState;

// The right-hand column: the panel of the selected tool, shown while the inspector is open.
class MibrelInspectorView : public QStackedWidget {
    Q_OBJECT

public:
    static constexpr std::size_t toolCount = platform::allCases<MibrelTool>().size();

    // `panels` in tool order; the view takes them over.
    MibrelInspectorView(MibrelShellUIState& shellUI, const std::array<QWidget*, toolCount>& panels,
                        QWidget* parent = nullptr);

    QWidget* panel(MibrelTool tool) const { return widget(static_cast<int>(tool)); }

private:
    void follow();

    MibrelShellUIState& m_shellUI;
};

} // namespace mibrel
