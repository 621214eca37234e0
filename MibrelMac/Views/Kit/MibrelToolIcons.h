#pragma once

#include <string_view>

#include <QIcon>

namespace mibrel {

// The desktop theme's icon for one of the program's symbolic icon names ("doc.text",
// "highlighter", …), with a built-in fallback when the theme has none.
QIcon iconForSymbol(std::string_view symbol);

} // namespace mibrel
