// veloxa-viewer: reads the command line and opens the window.
#include <QApplication>
#include <QDir>
#include <iostream>

#include "Commands.h"
#include "Terminal.h"
#include "Usage.h"
#include "Version.h"
#include "ViewOptions.h"
#include "panel/DarkTheme.h"
#include "shot/Errors.h"
#include "shot/files/ImageLibrary.h"
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

int run(QApplication& application, const veloxa::ViewOptions& options) {
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
    veloxa::silence_library();
    CLI::App app("Interactive keyer for stills and image sequences.", "veloxa-viewer");
    veloxa::ViewOptions options;
    veloxa::add_view_options(app, options);
    app.set_version_flag("--version", [] { return veloxa::version_text(false); });
    try {
        // The toolkit takes its own options, as -platform, off the line.
        QApplication application(argc, argv);
        QApplication::setApplicationName(QStringLiteral("veloxa-viewer"));
        QApplication::setApplicationDisplayName(QStringLiteral("Veloxa"));
        QApplication::setDesktopFileName(QStringLiteral("veloxa-viewer"));
        app.parse(argc, argv);
        return run(application, options);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        veloxa::report(veloxa::usage_message(app, error, argc > 1 ? argv[1] : ""));
        return veloxa::kExitUsage;
    } catch (const std::exception& error) {
        veloxa::report(error.what());
        return veloxa::kExitFailure;
    }
}
