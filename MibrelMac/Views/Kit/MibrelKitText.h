#pragma once

#include <string_view>

#include <QString>

// Text between the state objects (UTF-8 strings) and the widgets.
namespace mibrel::kit {

QString qtText(std::string_view text);

// A title for a menu or a button whose "&" must show as itself, not mark a shortcut
// letter: "Read & Code" stays "Read & Code", as do names the researcher typed.
QString menuText(const QString& title);

} // namespace mibrel::kit
