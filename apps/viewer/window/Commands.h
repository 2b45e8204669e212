// Every command of the window with its key: one list, of which menus are made and which F1 shows.
#pragma once

#include <QAction>
#include <QKeySequence>
#include <QString>
#include <map>
#include <span>
#include <string_view>

class QMainWindow;
class QMenu;

namespace veloxa::viewer {

struct CommandRow {
    std::string_view name;  // by which code finds it
    std::string_view menu;  // that it stands in; with a submenu behind a '/'
    const char* text;
    const char* keys;  // as QKeySequence reads them, several with ';' between; empty for none
    const char* tip;
    bool checkable = false;
    bool line_before = false;
};

std::span<const CommandRow> command_table();

// What the picture's own keys and the pointer do, for F1; no commands.
struct GestureRow {
    const char* keys;
    const char* what;
};
std::span<const GestureRow> gesture_table();

// The commands as actions in the window's menus.
class Commands {
  public:
    explicit Commands(QMainWindow& window);

    QAction& operator[](std::string_view name) const;
    QMenu& menu(std::string_view path) const;  // as rows name it

  private:
    std::map<std::string_view, QAction*> actions_;
    std::map<std::string_view, QMenu*> menus_;
};

}  // namespace veloxa::viewer
