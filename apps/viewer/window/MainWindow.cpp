// The making of the window.
#include "window/MainWindow.h"

#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStandardPaths>
#include <QStatusBar>
#include <QVBoxLayout>

#include "area/PictureArea.h"
#include "panel/ChangesView.h"
#include "panel/PanelView.h"
#include "panel/ToolBarView.h"
#include "timeline/TimeLine.h"
#include "window/Commands.h"
#include "window/JobsView.h"
#include "window/Readout.h"
#include "window/ViewBar.h"

namespace veloxa::viewer {

namespace {

// Milliseconds.
constexpr int kLookAtFiles = 1000;
constexpr int kStatesLater = 150;

}  // namespace

MainWindow::MainWindow(WindowPlace place) : place_(std::move(place)) {
    kept_ = place_.settings_file.isEmpty()
                ? std::make_unique<QSettings>(QStringLiteral("veloxa"), QStringLiteral("viewer"))
                : std::make_unique<QSettings>(place_.settings_file, QSettings::IniFormat);
    setObjectName(QStringLiteral("veloxa_viewer"));
    setDockNestingEnabled(true);
    states_timer_.setSingleShot(true);
    states_timer_.setInterval(kStatesLater);
    connect(&states_timer_, &QTimer::timeout, this, &MainWindow::show_frame_states);
    make_session();
    commands_ = std::make_unique<Commands>(*this);
    make_widgets();
    wire_session();
    wire_area();
    wire_files();
    wire_view();
    wire_tools();
    wire_time();
    load_layout();
    show_settings();
    show_modes();
    connect(&files_timer_, &QTimer::timeout, this, [this] { session_->recheck(); });
    files_timer_.start(kLookAtFiles);
}

// What shows the session ends before it does: a field that loses the focus may still have something to set.
MainWindow::~MainWindow() {
    hide();
    session_->events = {};
    disconnect(area_, nullptr, this, nullptr);
    delete takeCentralWidget();
    delete panel_;
    delete tools_;
    delete view_;
}

void MainWindow::make_session() {
    const auto post = [this](std::function<void()> call) { inbox_.post(std::move(call)); };
    SessionPlace place = place_.budgets;
    place.post = post;
    place.rescue_folder = place_.rescue_folder.toStdString();
    session_ = std::make_unique<Session>(std::move(place));
    jobs_ = std::make_unique<Jobs>(post);
    colour_ = std::make_unique<ViewColour>(
        post, ViewColour::Calls{.ready =
                                    [this](DisplayTransform display) {
                                        display_ = display;
                                        session_->set_display(std::move(display));
                                        readout_->show_colour(QString::fromStdString(colour_->account()));
                                    },
                                .told =
                                    [this](const std::string& line) {
                                        const QString text = QString::fromStdString(line);
                                        QMetaObject::invokeMethod(
                                            this, [this, text] { tell(text); }, Qt::QueuedConnection);
                                    }});
    colour_->choose(kept_->value(QStringLiteral("display")).toString().toStdString());
}

QDockWidget* MainWindow::add_dock(const QString& title, const QString& name, QWidget* widget,
                                  Qt::DockWidgetArea where) {
    auto* const dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setWidget(widget);
    addDockWidget(where, dock);
    commands_->menu("&View").addAction(dock->toggleViewAction());
    return dock;
}

void MainWindow::make_widgets() {
    tools_ = new ToolBarView(*session_, this);
    tools_->setObjectName(QStringLiteral("tool_bar"));
    addToolBar(Qt::TopToolBarArea, tools_);
    addToolBarBreak();
    view_ = new ViewBar(*session_, *colour_, *commands_, this);
    addToolBar(Qt::TopToolBarArea, view_);
    addToolBar(Qt::TopToolBarArea, &tools_->buttons());

    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    area_ = new PictureArea(middle);
    message_ = new QLabel(middle);
    message_->setObjectName(QStringLiteral("message"));
    message_->setAccessibleName(QStringLiteral("Message"));
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    message_->setFocusPolicy(Qt::NoFocus);
    message_->setWordWrap(true);
    message_->setMargin(4);
    message_->hide();
    time_ = new TimeLine(middle);
    time_->hide();  // until there is more than one frame
    column->addWidget(area_, 1);
    column->addWidget(message_);
    column->addWidget(time_);
    setCentralWidget(middle);

    panel_ = new PanelView(*session_, this);
    changes_ = new ChangesView(this);
    jobs_view_ = new JobsView(this);
    commands_->menu("&View").addSeparator();
    add_dock(QStringLiteral("Knobs"), QStringLiteral("knobs_dock"), panel_, Qt::RightDockWidgetArea);
    add_dock(QStringLiteral("Changes"), QStringLiteral("changes_dock"), changes_, Qt::BottomDockWidgetArea);
    jobs_dock_ = add_dock(QStringLiteral("Background work"), QStringLiteral("jobs_dock"), jobs_view_,
                          Qt::BottomDockWidgetArea);
    tabifyDockWidget(findChild<QDockWidget*>(QStringLiteral("changes_dock")), jobs_dock_);
    for (const char* const name : {"changes_dock", "jobs_dock"})
        findChild<QDockWidget*>(QLatin1String(name))->hide();
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);

    readout_ = new Readout(this);
    readout_->show_colour(QString::fromStdString(colour_->account()));
    statusBar()->addWidget(readout_, 1);
    busy_ = new QLabel(this);
    busy_->setObjectName(QStringLiteral("busy"));
    busy_->setAccessibleName(QStringLiteral("What works in the background"));
    statusBar()->addPermanentWidget(busy_);
    recent_ = new QMenu(QStringLiteral("Open Re&cent"), this);
    commands_->menu("&File").insertMenu(commands_->menu("&File/Open &Other").menuAction(), recent_);
    resize(1500, 940);
}

void MainWindow::wire_session() {
    session_->events = {.settings = [this] { show_settings(); },
                        .shot = [this] { show_shot(); },
                        .frames = [this] { show_frames(); },
                        .modes = [this] { show_modes(); },
                        .busy = [this] { show_busy(); },
                        .shown = [this](ViewResult& result) { show_result(result); },
                        .tool =
                            [this](const std::vector<Zo::Image::ToolReport>& reports, bool preview) {
                                if (preview) return;
                                changes_->show_reports(reports);
                                findChild<QDockWidget*>(QStringLiteral("changes_dock"))->show();
                            },
                        .message = [this](const std::string& line) { tell(QString::fromStdString(line)); }};
}

void MainWindow::load_layout() {
    restoreGeometry(kept_->value(QStringLiteral("geometry")).toByteArray());
    restoreState(kept_->value(QStringLiteral("layout")).toByteArray());
    panel_->set_folded(kept_->value(QStringLiteral("folded")).toStringList());
    show_recent();
}

void MainWindow::save_layout() {
    kept_->setValue(QStringLiteral("geometry"), saveGeometry());
    kept_->setValue(QStringLiteral("layout"), saveState());
    kept_->setValue(QStringLiteral("folded"), panel_->folded());
    if (!colour_->choices().empty()) {
        kept_->setValue(QStringLiteral("display"),
                        QString::fromStdString(colour_->choices()[colour_->choice()].label));
    }
    kept_->sync();
}

}  // namespace veloxa::viewer
