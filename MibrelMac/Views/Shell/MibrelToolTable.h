#pragma once

#include <string_view>

#include "MibrelMac/State/MibrelTool.h"

class QWidget;

namespace mibrel {

class MibrelProjectSession;
class MibrelShellUIState;
class MibrelSourcesState;
class MibrelWorkspaceState;

// What a tool's page and inspector panel are built from.
struct MibrelToolContext {
    MibrelProjectSession& session;
    MibrelSourcesState& sources;
    MibrelWorkspaceState& workspace;
    MibrelShellUIState& shellUI;
    bool playsAudio = false; // the window plays sound; tests and benchmarks need no audio device
};

// One tool's two widgets: its page in the middle column and its panel in the inspector.
struct MibrelToolParts {
    QWidget* page = nullptr;
    QWidget* inspector = nullptr;
};

// Builds the page and the inspector panel of `tool`. The shell only stacks what this
// returns, so a new tool is added here and nowhere else.
MibrelToolParts makeToolParts(MibrelTool tool, const MibrelToolContext& context);

// The name of the inspector panel that shows beside `tool`, which is also the panel's
// object name, so the routing can be checked.
std::string_view inspectorPanelName(MibrelTool tool);

// One sentence on what the tool is for, under its title.
std::string_view toolSummary(MibrelTool tool);

} // namespace mibrel
