// All keys in a window, from the list of commands.
#pragma once

class QWidget;

namespace veloxa::viewer {

void show_keys(QWidget& parent);

}  // namespace veloxa::viewer
