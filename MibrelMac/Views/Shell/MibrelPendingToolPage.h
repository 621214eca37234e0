#pragma once

#include <string_view>

#include <QWidget>

#include "MibrelMac/State/MibrelTool.h"

namespace mibrel {

// The page of a tool that is still being built: its title and what it is for.
class MibrelPendingToolPage : public QWidget {
    Q_OBJECT

public:
    MibrelPendingToolPage(MibrelTool tool, std::string_view summary, QWidget* parent = nullptr);
};

// The inspector panel of such a tool: its name and what it will show.
class MibrelPendingInspectorPanel : public QWidget {
    Q_OBJECT

public:
    MibrelPendingInspectorPanel(MibrelTool tool, std::string_view promise, QWidget* parent = nullptr);
};

} // namespace mibrel
