// veloxa-viewer: reads the command line and opens the window.
#include <QApplication>
#include <QDir>
#include <QIcon>
#include <exception>
#include <string>

#include "Commands.h"
#include "Terminal.h"
#include "Usage.h"
#include "Version.h"
#include "ViewOptions.h"
#include "panel/DarkTheme.h"
#include "window/MainWindow.h"

namespace {

// A whole sequence that the shell has spelled out is opened by its first frame.
void open(veloxa::viewer::MainWindow& window, const veloxa::ViewOptions& options) {
    veloxa::SetupOptions setup = options.setup;
    const bool plain = setup.inputs[veloxa::kFg].empty() && !options.plates.empty();
    if (plain) setup.inputs[veloxa::kFg] = options.plates.front();
    if (!setup.inputs[veloxa::kFg].empty()) window.session().open_as_named(setup);
}

// As the desktop's base directories have it; Qt 6.4 does not know this one.
QString state_folder() {
    const QString named = qEnvironmentVariable("XDG_STATE_HOME");
    return named.startsWith('/') ? named : QDir::homePath() + QStringLiteral("/.local/state");
}

// The toolkit ends the program where it finds none.
bool has_display() {
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!qEnvironmentVariableIsEmpty(name)) return true;
    }
    return false;
}

QIcon icon() {
    QIcon icon;
    for (const int size : {16, 32, 64, 256}) icon.addFile(QStringLiteral(":/icon/%1.png").arg(size));
    return icon;
}

int run(char** argv, const veloxa::ViewOptions& options) {
    int arguments = 1;  // names of files are none of the toolkit's options
    QApplication application(arguments, argv);
    QApplication::setApplicationName(QStringLiteral("veloxa-viewer"));
    QApplication::setApplicationDisplayName(QStringLiteral("Veloxa"));
    QApplication::setDesktopFileName(QStringLiteral("org.veloxa.Viewer"));
    QApplication::setWindowIcon(icon());
    veloxa::viewer::use_dark_theme(application);
    veloxa::viewer::WindowPlace place;
    place.budgets = veloxa::viewer::place_on_this_machine();
    place.program = QString::fromStdString(veloxa::version_text(false));
    place.rescue_folder = state_folder() + QStringLiteral("/veloxa/rescue");
    veloxa::viewer::MainWindow window(place);
    window.show();
    open(window, options);
    window.offer_rescue();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app;
    veloxa::ViewOptions options;
    veloxa::add_viewer(app, options);
    try {
        app.parse(argc, argv);
        if (has_display()) return run(argv, options);
        veloxa::report("there is no screen: neither DISPLAY nor WAYLAND_DISPLAY is set");
        return veloxa::kExitFailure;
    } catch (const CLI::ParseError& error) {
        // --help and --version arrive here too, as errors of status 0.
        if (error.get_exit_code() == 0) return app.exit(error);
        veloxa::report(veloxa::usage_message(app, error, argc > 1 ? argv[1] : ""));
        return veloxa::kExitUsage;
    } catch (const std::exception& error) {
        veloxa::report(error.what());
        return veloxa::kExitFailure;
    }
}
