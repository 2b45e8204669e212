// The viewer's window: menus, bars and docks around the picture, wired to one session. Window thread.
//
// It holds no state of the work itself; that is the session's. Layout of the window, recent files and the
// display are kept between runs.
#pragma once

#include <QMainWindow>
#include <QSettings>
#include <QTimer>
#include <array>
#include <functional>
#include <memory>
#include <set>

#include "render/Errands.h"
#include "session/Jobs.h"
#include "session/Session.h"
#include "session/ViewColour.h"
#include "window/Inbox.h"

class QDockWidget;
class QLabel;

namespace veloxa::viewer {

class ChangesView;
class Commands;
class JobsView;
class PanelView;
class PictureArea;
class Readout;
class TimeLine;
class ToolBarView;
class ViewBar;

struct WindowPlace {
    QString rescue_folder;  // empty to keep nothing
    QString settings_file;  // of the window's layout; empty for the user's own
    SessionPlace budgets{};
    QString program;  // for provenance and the box about the program
};

class MainWindow final : public QMainWindow {
    Q_OBJECT

  public:
    explicit MainWindow(WindowPlace place);
    ~MainWindow() override;

    Session& session() { return *session_; }
    PictureArea& area() { return *area_; }
    PanelView& panel() { return *panel_; }
    TimeLine& time_line() { return *time_; }
    ViewColour& colour() { return *colour_; }
    Jobs& jobs() { return *jobs_; }
    Commands& commands() { return *commands_; }
    // Looks for what a killed session left, and asks whether it is to be restored, if there is any.
    void offer_rescue();
    // The picture that a pane shows; null before there is one.
    const ShownPicture& shown(std::size_t pane) const { return shown_[pane]; }

  public slots:
    void open_files(const QStringList& files);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    // Making of the window.
    void make_session();
    void make_widgets();
    QDockWidget* add_dock(const QString& title, const QString& name, QWidget* widget,
                          Qt::DockWidgetArea where);
    void wire_session();
    void wire_area();
    void wire_files();
    void wire_view();
    void wire_tools();
    void wire_time();
    void load_layout();
    void save_layout();

    // What the session tells.
    void show_result(ViewResult& result);
    void show_settings();
    void show_shot();
    void show_frames();
    void show_frame_states();
    void show_modes();
    void show_busy();
    void tell(const QString& line);

    // What commands do.
    void ask_for_file(const QString& title, const std::function<void(const QString&)>& use,
                      bool save = false);
    void save(const std::function<void()>& then = {});
    void save_as(const std::function<void()>& then = {});
    // Asks what becomes of changes, then goes on, or not.
    void with_changes_kept(const std::function<void()>& then);
    void offer(const Rescued& rescued);
    void write_matte(DrawnMatte::Kind kind);
    void render();
    void start(RenderPlan plan);
    void find_worst();
    void look_for_worst(int most);
    void change_sights(const std::function<void(Sight&)>& change);
    void choose_layout(Layout layout);
    void choose_behind(Behind behind);
    void show_cursor(QPointF picture);
    void show_box(const Zo::Image::Box& box);
    void remember(const QString& file);
    void show_recent();
    void show_fit();

    WindowPlace place_;
    Inbox inbox_;
    std::unique_ptr<QSettings> kept_;
    std::unique_ptr<Session> session_;
    std::unique_ptr<ViewColour> colour_;
    std::unique_ptr<Jobs> jobs_;
    std::unique_ptr<Commands> commands_;
    PictureArea* area_ = nullptr;
    PanelView* panel_ = nullptr;
    ToolBarView* tools_ = nullptr;
    ViewBar* view_ = nullptr;
    Readout* readout_ = nullptr;
    TimeLine* time_ = nullptr;
    ChangesView* changes_ = nullptr;
    JobsView* jobs_view_ = nullptr;
    QDockWidget* jobs_dock_ = nullptr;
    QLabel* message_ = nullptr;
    QLabel* busy_ = nullptr;
    QMenu* recent_ = nullptr;
    QTimer files_timer_;
    QTimer states_timer_;  // brings the time line up to date, a moment after what may have changed it
    std::array<ShownPicture, 2> shown_;
    DisplayTransform display_;
    Errands statistics_;         // of boxes
    std::set<int> frames_here_;  // as the time line has it
    bool closing_ = false;
};

}  // namespace veloxa::viewer
