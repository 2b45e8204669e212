#include "window/Commands.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStringList>
#include <array>

namespace veloxa::viewer {

namespace {

constexpr CommandRow kCommands[] = {
    {"open", "&File", "&Open Plate or Settings…", "Ctrl+O",
     "Open a plate, a sequence's frame, or saved settings"},
    {"open_cp", "&File/Open &Other", "&Clean Plate…", "", "The backing without the subject"},
    {"open_bg", "&File/Open &Other", "&Background…", "Ctrl+B", "What the subject is put over"},
    {"open_gm", "&File/Open &Other", "&Garbage Matte…", "", "What it covers is dropped"},
    {"open_hm", "&File/Open &Other", "&Holdout Matte…", "", "What it covers is kept"},
    {"close_others", "&File/Open &Other", "Close &All of These", "", "Key the plate alone", false, true},
    {"fit_refuse", "&File/&Inputs of Another Size", "Are &Refused", "", "", true},
    {"fit_resize", "&File/&Inputs of Another Size", "Are &Scaled to the Plate", "", "", true},
    {"fit_crop", "&File/&Inputs of Another Size", "Are &Centred", "", "Edge pixels repeat", true},
    {"fit_none", "&File/&Inputs of Another Size", "&Lie at the Bottom Left", "", "Edge pixels repeat", true},
    {"reload", "&File", "&Reload", "F5", "Read the files of this frame again"},
    {"load_settings", "&File", "&Load Settings…", "", "Take over the knobs of a script; the files stay",
     false, true},
    {"save", "&File", "&Save Settings", "Ctrl+S",
     "Save knobs, drawn mattes and the names of the files as a script"},
    {"save_as", "&File", "Save Settings &As…", "Ctrl+Shift+S", "Save them under another name"},
    {"write_garbage", "&File", "Write &Garbage Matte…", "", "Write what is drawn as an image file", false,
     true},
    {"write_holdout", "&File", "Write &Holdout Matte…", "", "Write what is drawn as an image file"},
    {"render", "&File", "&Render…", "Ctrl+R", "Key the sequence to files, in the background", false, true},
    {"quit", "&File", "&Quit", "Ctrl+Q", "Close the window", false, true},

    {"undo", "&Edit", "&Undo", "Ctrl+Z", "Take back the latest step"},
    {"redo", "&Edit", "&Redo", "Ctrl+Shift+Z;Ctrl+Y", "Do again what was taken back"},
    {"reset_all", "&Edit", "Reset &Everything", "", "Give every knob its default", false, true},
    {"find_knob", "&Edit", "&Find Knob", "Ctrl+F", "Search the panel by name or label"},
    {"give_up", "&Edit", "&Give Up", "Ctrl+.", "Stop the tool or set-up that is at work"},

    {"mode_look", "&Tools", "&Navigate", "V", "Move and zoom the picture", true},
    {"mode_box", "&Tools", "&Measure a Box", "X", "Least, largest and mean values in a box", true},
    {"mode_garbage", "&Tools", "Draw &Garbage Matte", "G", "Draw around what is to be dropped", true},
    {"mode_holdout", "&Tools", "Draw &Holdout Matte", "H", "Draw around what is to be kept", true},
    {"matte_outside", "&Tools", "Chosen Matte &Outside", "O", "What lies outside of the polygon counts", true,
     true},
    {"feather_more", "&Tools", "More &Feather", "Ctrl+Up", "Soften the chosen polygon"},
    {"feather_less", "&Tools", "&Less Feather", "Ctrl+Down", "Harden the chosen polygon"},
    {"brush_larger", "&Tools", "Larger &Brush", "Ctrl+]", "", false, true},
    {"brush_smaller", "&Tools", "&Smaller Brush", "Ctrl+[", ""},

    {"fit", "&View", "&Fit", "F", "The whole frame in the window"},
    {"one_to_one", "&View", "&1:1", "1", "A pixel of the picture on one of the screen"},
    {"zoom_in", "&View", "Zoom &In", "+;=", ""},
    {"zoom_out", "&View", "Zoom O&ut", "-", ""},
    {"channel_colour", "&View/&Channels", "&Colour", "C", "", true},
    {"channel_red", "&View/&Channels", "&Red", "R", "", true},
    {"channel_green", "&View/&Channels", "&Green", "Shift+G", "", true},
    {"channel_blue", "&View/&Channels", "&Blue", "B", "", true},
    {"channel_alpha", "&View/&Channels", "&Alpha", "A", "", true},
    {"channel_luminance", "&View/&Channels", "&Luminance", "Y", "", true},
    {"overlay", "&View", "Alpha as O&verlay", "T", "Tint the picture by its alpha", true, true},
    {"overlay_colour", "&View", "Overlay Colour…", "", "Choose the tint"},
    {"false_colours", "&View", "Mark &Out of Range", "N", "Show values above 1, below 0 and NaN in colours",
     true},
    {"counts", "&View", "Count &Leaks and Holes", "L", "Count pixels of the matte that leak or have holes",
     true},
    {"behind_nothing", "&View/&Behind the Subject", "&Nothing", "", "", true},
    {"behind_black", "&View/&Behind the Subject", "&Black", "", "", true},
    {"behind_checker", "&View/&Behind the Subject", "&Checkerboard", "", "", true},
    {"behind_colour", "&View/&Behind the Subject", "C&olour…", "", "", true},
    {"behind_picture", "&View/&Behind the Subject", "&Background", "",
     "The picture that was opened as background", true},
    {"reset_exposure", "&View", "&Reset Gain and Gamma", "0", "", false, true},
    {"layout_single", "&View/Co&mpare", "&One Picture", "Shift+1", "", true},
    {"layout_wipe", "&View/Co&mpare", "&Wipe", "W", "Two pictures with a line between", true},
    {"layout_side", "&View/Co&mpare", "&Side by Side", "S", "", true},
    {"layout_difference", "&View/Co&mpare", "&Difference", "D", "How far two pictures are apart", true},
    {"keep_a", "&View/Co&mpare", "Keep Settings as &A", "Ctrl+1", "", false, true},
    {"keep_b", "&View/Co&mpare", "Keep Settings as &B", "Ctrl+2", ""},
    {"picture result", "&View/&Picture", "&Result", "Alt+1", "What the output mode says"},
    {"picture subject", "&View/&Picture", "&Subject", "Alt+2", "Cut out, over what is chosen behind it"},
    {"picture matte", "&View/&Picture", "&Matte", "Alt+3", ""},
    {"picture status", "&View/&Picture", "S&tatus", "Alt+4",
     "The matte: black and white where it is exactly 0 and 1, colours between"},
    {"picture plate", "&View/&Picture", "&Plate", "Alt+5", "", false, true},
    {"picture clean plate", "&View/&Picture", "&Clean Plate", "Alt+6", ""},
    {"picture background", "&View/&Picture", "&Background", "Alt+7", ""},
    {"picture_next", "&View", "Next &Picture", "]", "The next of result, matte, inputs and inner stages",
     false, true},
    {"picture_previous", "&View", "Previous Picture", "[", ""},
    {"full_screen", "&View", "Full S&creen", "F11", "", true, true},

    {"play", "&Shot", "&Play", "P", "Play the sequence, or stop it", true},
    {"previous", "&Shot", "P&revious Frame", ",", ""},
    {"next", "&Shot", "&Next Frame", ".", ""},
    {"first", "&Shot", "&First Frame", "Home", ""},
    {"last", "&Shot", "&Last Frame", "End", ""},
    {"worst", "&Shot", "Find &Worst Frames…", "Ctrl+W",
     "Key a thinned-out sequence and list where it leaks or has holes", false, true},
    {"cancel_jobs", "&Shot", "&Cancel Background Work", "", "Give up rendering and searching"},

    {"keys", "&Help", "&Keys", "F1", "All keys and what the pointer does"},
    {"about", "&Help", "&About", "", ""},
};

constexpr GestureRow kGestures[] = {
    {"Wheel, Ctrl+wheel, pinch", "Zoom at the pointer"},
    {"Middle button, Shift+Space and drag, two fingers", "Move the picture"},
    {"Arrow keys in the picture", "Move the picture; with Shift further; with a tool in use its brush"},
    {"Drag with a tool", "Paint a stroke; it looks at the plate, whatever is shown"},
    {"Space or Enter with a tool", "Paint with the brush where it is"},
    {"Esc", "Give a stroke up; leave the tool"},
    {"Shift+wheel", "Size of the brush"},
    {"Click, Enter, drag, Del", "Set, close, move, remove points of a matte"},
    {"Double-click on a label of the panel", "Give a knob its default"},
    {"Drop of files on the window", "Open them"},
};

}  // namespace

std::span<const CommandRow> command_table() {
    return kCommands;
}

std::span<const GestureRow> gesture_table() {
    return kGestures;
}

Commands::Commands(QMainWindow& window) {
    for (const CommandRow& row : kCommands) {
        QMenu*& menu = menus_[row.menu];
        const std::size_t slash = row.menu.find('/');
        const QString title = QString::fromUtf8(
            row.menu.data() + (slash == row.menu.npos ? 0 : slash + 1),
            static_cast<qsizetype>(row.menu.size() - (slash == row.menu.npos ? 0 : slash + 1)));
        if (menu == nullptr) {
            menu = slash == row.menu.npos ? window.menuBar()->addMenu(title)
                                          : menus_.at(row.menu.substr(0, slash))->addMenu(title);
        }
        if (row.line_before) menu->addSeparator();
        auto* const action = menu->addAction(QString::fromUtf8(row.text));
        action->setObjectName(QString::fromUtf8(row.name.data(), static_cast<qsizetype>(row.name.size())));
        QList<QKeySequence> keys;
        for (const QString& key : QString::fromLatin1(row.keys).split(';', Qt::SkipEmptyParts))
            keys.append(QKeySequence(key));
        action->setShortcuts(keys);
        action->setCheckable(row.checkable);
        const QString tip = QString::fromUtf8(row.tip);
        if (!tip.isEmpty()) action->setStatusTip(tip);
        window.addAction(action);  // so that its key works while a picture alone is on the screen
        actions_[row.name] = action;
    }
}

QAction& Commands::operator[](std::string_view name) const {
    return *actions_.at(name);
}

QMenu& Commands::menu(std::string_view path) const {
    return *menus_.at(path);
}

}  // namespace veloxa::viewer
