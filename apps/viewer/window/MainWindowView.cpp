// What the window's commands do to the picture, the tools and the time line.
#include <QActionGroup>
#include <QColorDialog>
#include <QPushButton>
#include <utility>

#include "area/PictureArea.h"
#include "panel/PanelView.h"
#include "panel/ToolBarView.h"
#include "timeline/TimeLine.h"
#include "window/Commands.h"
#include "window/KeysDialog.h"
#include "window/MainWindow.h"
#include "window/Readout.h"
#include "window/ViewBar.h"

#include <QMessageBox>

namespace veloxa::viewer {

namespace {

constexpr std::array<std::pair<const char*, Channels>, 6> kChannels{
    {{"channel_colour", Channels::kColour},
     {"channel_red", Channels::kRed},
     {"channel_green", Channels::kGreen},
     {"channel_blue", Channels::kBlue},
     {"channel_alpha", Channels::kAlpha},
     {"channel_luminance", Channels::kLuminance}}};
constexpr std::array<std::pair<const char*, Behind>, 5> kBehinds{{{"behind_nothing", Behind::kNothing},
                                                                  {"behind_black", Behind::kBlack},
                                                                  {"behind_checker", Behind::kChecker},
                                                                  {"behind_colour", Behind::kColour},
                                                                  {"behind_picture", Behind::kPicture}}};
constexpr std::array<std::pair<const char*, Layout>, 4> kLayouts{
    {{"layout_single", Layout::kSingle},
     {"layout_wipe", Layout::kWipe},
     {"layout_side", Layout::kSideBySide},
     {"layout_difference", Layout::kDifference}}};
constexpr double kFeatherStep = 2.0;

void choose_colour(QWidget* parent, const QColor& colour, const std::function<void(const QColor&)>& use) {
    auto* const dialog = new QColorDialog(colour, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    QObject::connect(dialog, &QColorDialog::currentColorChanged, parent, use);
    dialog->open();
}

}  // namespace

void MainWindow::wire_area() {
    connect(area_, &PictureArea::geometryChanged, this,
            [this] { change_sights([this](Sight& sight) { sight.geometry = area_->picture_geometry(); }); });
    connect(area_, &PictureArea::strokeMoved, this,
            [this](const std::vector<Zo::Image::Box>& areas) { session_->move_stroke(areas); });
    connect(area_, &PictureArea::strokeBegun, this,
            [this](const std::vector<Zo::Image::Box>& areas) { session_->move_stroke(areas); });
    connect(area_, &PictureArea::strokeEnded, this,
            [this](const std::vector<Zo::Image::Box>& areas) { session_->end_stroke(areas); });
    connect(area_, &PictureArea::strokeCancelled, this, [this] { session_->cancel_stroke(); });
    connect(area_, &PictureArea::picked, this, [this](int x, int y) {
        session_->pick({x, y, x + 1, y + 1});
    });
    connect(area_, &PictureArea::boxDragged, this, [this](const Zo::Image::Box& box) { show_box(box); });
    connect(area_, &PictureArea::mattesChanged, this,
            [this](const DrawnMattes& mattes, const QString& what, bool dragging) {
                session_->set_mattes(mattes, what.toStdString(), dragging);
            });
    connect(area_, &PictureArea::hovered, this, [this](QPointF picture) { show_cursor(picture); });
    connect(area_, &PictureArea::left, this, [this] { readout_->clear_values(); });
    connect(area_, &PictureArea::filesDropped, this, &MainWindow::open_files);
}

void MainWindow::change_sights(const std::function<void(Sight&)>& change) {
    std::array<Sight, 2> sights{session_->sight(0), session_->sight(1)};
    for (Sight& sight : sights) change(sight);
    session_->set_sights(std::move(sights));
}

void MainWindow::choose_layout(Layout layout) {
    session_->set_layout(layout);
    constexpr std::array kRooms{Panes::kOne, Panes::kWipe, Panes::kSideBySide, Panes::kOne};
    area_->set_panes(kRooms[static_cast<std::size_t>(layout)]);
    view_->refresh();
    shown_[1] = {};
}

void MainWindow::choose_behind(Behind behind) {
    change_sights([behind](Sight& sight) { sight.view.behind = behind; });
    if (behind != Behind::kColour) return;
    const auto use = [this](const QColor& colour) {
        change_sights([&](Sight& sight) {
            sight.view.behind_colour = {colour.redF(), colour.greenF(), colour.blueF()};
        });
    };
    const auto& now = session_->sight(0).view.behind_colour;
    choose_colour(this, QColor::fromRgbF(now[0], now[1], now[2]), use);
}

void MainWindow::wire_view() {
    Commands& commands = *commands_;
    const auto on = [&](const char* name, auto call) {
        connect(&commands[name], &QAction::triggered, this, call);
    };
    const auto group = [&](const auto& rows, auto choose) {
        auto* const actions = new QActionGroup(this);
        for (const auto& [name, value] : rows) {
            actions->addAction(&commands[name]);
            on(name, [choose, value = value] { choose(value); });
        }
        commands[rows.front().first].setChecked(true);
    };
    group(kChannels, [this](Channels channels) {
        change_sights([=](Sight& sight) { sight.view.channels = channels; });
    });
    group(kBehinds, [this](Behind behind) { choose_behind(behind); });
    group(kLayouts, [this](Layout layout) { choose_layout(layout); });
    on("overlay",
       [this](bool checked) { change_sights([=](Sight& sight) { sight.view.overlay = checked; }); });
    on("false_colours",
       [this](bool checked) { change_sights([=](Sight& sight) { sight.view.false_colours = checked; }); });
    on("overlay_colour", [this] {
        const auto& now = session_->sight(0).view.overlay_colour;
        choose_colour(this, QColor::fromRgbF(now[0], now[1], now[2], now[3]), [this](const QColor& colour) {
            change_sights([&](Sight& sight) {
                sight.view.overlay_colour = {colour.redF(), colour.greenF(), colour.blueF(), colour.alphaF()};
            });
        });
    });
    on("counts", [this](bool checked) {
        session_->set_counts(checked);
        if (!checked) readout_->show_counts({});
    });
    on("reset_exposure", [this] {
        change_sights([](Sight& sight) { sight.view.gain = sight.view.gamma = 1.0f; });
        view_->refresh();
    });
    on("fit", [this] { area_->fit(); });
    on("one_to_one", [this] { area_->show_one_to_one(); });
    on("zoom_in", [this] { area_->zoom_by(2.0); });
    on("zoom_out", [this] { area_->zoom_by(0.5); });
    on("keep_a", [this] { session_->save_as(Against::kA); });
    on("keep_b", [this] { session_->save_as(Against::kB); });
    on("full_screen", [this](bool checked) { checked ? showFullScreen() : showNormal(); });
    on("keys", [this] { show_keys(*this); });
    on("about", [this] {
        auto* const box = new QMessageBox(QMessageBox::Information, QStringLiteral("About"), place_.program,
                                          QMessageBox::Close, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

void MainWindow::wire_tools() {
    Commands& commands = *commands_;
    const auto on = [&](const char* name, auto call) {
        connect(&commands[name], &QAction::triggered, this, call);
    };
    on("undo", [this] { session_->undo(); });
    on("redo", [this] { session_->redo(); });
    on("reset_all", [this] { session_->reset_all(); });
    on("find_knob", [this] { panel_->focus_search(); });
    on("give_up", [this] { session_->give_up(); });
    auto* const modes = new QActionGroup(this);
    modes->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    const auto mode = [&](const char* name, PointerTool pointer,
                          DrawnMatte::Kind kind = DrawnMatte::Kind::kGarbage) {
        modes->addAction(&commands[name]);
        on(name, [this, name, pointer, kind] {
            if (session_->tool() != nullptr) session_->use_tool(nullptr);
            if (session_->picking() != nullptr) session_->pick_colour(nullptr);
            area_->set_new_matte({kind, false, 0.0, {}});
            area_->set_tool(pointer);
            (*commands_)[name].setChecked(true);
            if (pointer != PointerTool::kBox) readout_->clear_box();
        });
    };
    mode("mode_look", PointerTool::kNavigate);
    mode("mode_box", PointerTool::kBox);
    mode("mode_garbage", PointerTool::kPolygon, DrawnMatte::Kind::kGarbage);
    mode("mode_holdout", PointerTool::kPolygon, DrawnMatte::Kind::kHoldout);
    commands["mode_look"].setChecked(true);
    const auto feather = [this](double by) {
        const std::optional<std::size_t> chosen = area_->chosen_matte();
        DrawnMattes mattes = session_->mattes();
        if (!chosen || *chosen >= mattes.size())
            return tell(QStringLiteral("Choose a polygon first: click on its line."));
        mattes[*chosen].feather = std::max(0.0, mattes[*chosen].feather + by);
        session_->set_mattes(std::move(mattes), "feather");
    };
    on("feather_more", [feather] { feather(kFeatherStep); });
    on("feather_less", [feather] { feather(-kFeatherStep); });
    on("matte_outside", [this] {
        const std::optional<std::size_t> chosen = area_->chosen_matte();
        DrawnMattes mattes = session_->mattes();
        if (!chosen || *chosen >= mattes.size())
            return tell(QStringLiteral("Choose a polygon first: click on its line."));
        mattes[*chosen].outside = !mattes[*chosen].outside;
        session_->set_mattes(std::move(mattes), "side of the matte");
    });
    on("brush_larger", [this] { area_->set_brush_size(area_->brush_size() * 5 / 4 + 1); });
    on("brush_smaller", [this] { area_->set_brush_size(area_->brush_size() * 4 / 5); });
}

void MainWindow::wire_time() {
    Commands& commands = *commands_;
    const auto on = [&](const char* name, auto call) {
        connect(&commands[name], &QAction::triggered, this, call);
    };
    connect(time_, &TimeLine::frameWanted, this, [this](int frame) { session_->go_to(frame); });
    on("play", [this](bool checked) { time_->set_playing(checked); });
    connect(time_, &TimeLine::playing_changed, &commands["play"], &QAction::setChecked);
    const auto step = [this](int by) {
        const FrameRange& range = session_->range();
        const int next = session_->frame() + by * range.step;
        if (next >= range.first && next <= range.last) time_->go_to(next);
    };
    on("previous", [step] { step(-1); });
    on("next", [step] { step(1); });
    on("first", [this] { time_->go_to(session_->range().first); });
    on("last", [this] { time_->go_to(session_->range().last); });
}

}  // namespace veloxa::viewer
