// What the session tells the window.
#include <QLabel>
#include <algorithm>
#include <utility>

#include "area/PictureArea.h"
#include "panel/PanelView.h"
#include "panel/ToolBarView.h"
#include "timeline/TimeLine.h"
#include "window/Commands.h"
#include "window/JobsView.h"
#include "window/MainWindow.h"
#include "window/Readout.h"
#include "window/ViewBar.h"

namespace veloxa::viewer {

using namespace Zo::Image;

void MainWindow::show_result(ViewResult& result) {
    if (result.counts) return readout_->show_counts(result.counts);
    if (!result.error.empty()) {
        area_->set_message(QString::fromStdString(result.error));
        return time_->set_shown(result.frame);
    }
    area_->set_message({});
    shown_[result.pane] = result.picture;
    if (!result.shaded.pixels.empty())
        area_->set_shaded(static_cast<Pane>(result.pane), std::move(result.shaded), result.geometry);
    time_->set_shown(result.frame);
    if (result.whole) states_timer_.start();
}

void MainWindow::show_settings() {
    states_timer_.start();
    panel_->refresh();
    tools_->refresh();
    view_->refresh();
    Commands& commands = *commands_;
    const auto show_step = [&](const char* name, const QString& verb, const std::string& step) {
        commands[name].setEnabled(!step.empty());
        commands[name].setText(step.empty() ? verb
                                            : verb + QStringLiteral(" ") + QString::fromStdString(step));
    };
    show_step("undo", QStringLiteral("&Undo"), session_->history().undo_name());
    show_step("redo", QStringLiteral("&Redo"), session_->history().redo_name());
    area_->set_mattes(session_->mattes());
    const std::string& document = session_->document();
    const QString name = !document.empty() ? QString::fromStdString(document)
                                           : QString::fromStdString(session_->files().inputs[kFg]);
    setWindowFilePath(name);
    setWindowTitle((name.isEmpty() ? QString() : name + QStringLiteral("[*] – ")) +
                   QStringLiteral("Veloxa[*]").left(name.isEmpty() ? 9 : 6));
    setWindowModified(session_->modified());
}

void MainWindow::show_shot() {
    shown_ = {};
    show_fit();
    time_->set_range(session_->range());
    time_->setVisible(session_->range().count() > 1);
    time_->go_to(session_->frame());
    show_frames();
}

void MainWindow::show_frames() {
    states_timer_.start();
    if (time_->current() != session_->frame()) time_->go_to(session_->frame());
    const FramePtr here = session_->current_frame();
    if (!here || !here->error.empty()) return;
    const Image& plate = *here->inputs[kFg].image;
    colour_->take(plate.header, here->files.front().path);
    area_->set_format(plate.info.format);
}

void MainWindow::show_frame_states() {
    const std::vector<FramePtr> held = session_->held_frames();
    const std::vector<bool> keyed = session_->with_result(held);
    std::set<int> here;
    for (std::size_t n = 0; n < held.size(); ++n) {
        const Frame& frame = *held[n];
        here.insert(frame.number);
        const FrameState state = !frame.error.empty() ? FrameState::kFailed
                                 : keyed[n]           ? FrameState::kResult
                                                      : FrameState::kPlate;
        time_->set_state(frame.number, state, QString::fromStdString(frame.error));
    }
    for (const int frame : frames_here_) {
        if (!here.contains(frame)) time_->set_state(frame, FrameState::kUnknown);
    }
    frames_here_ = std::move(here);
}

void MainWindow::show_modes() {
    Commands& commands = *commands_;
    const bool tool = session_->tool() != nullptr;
    const bool picking = session_->picking() != nullptr;
    if (tool || picking) {
        for (const char* const mode : {"mode_look", "mode_box", "mode_garbage", "mode_holdout"})
            commands[mode].setChecked(false);
        readout_->clear_box();
    }
    if (tool) area_->set_tool(PointerTool::kBrush);
    if (picking) area_->set_tool(PointerTool::kPick);
    const bool left =
        !tool && !picking && (area_->tool() == PointerTool::kBrush || area_->tool() == PointerTool::kPick);
    if (left) commands["mode_look"].trigger();
    tools_->refresh();
    panel_->refresh();
}

void MainWindow::show_busy() {
    busy_->setText(session_->working() ? QStringLiteral("Working… (Ctrl+. gives up)") : QString());
}

void MainWindow::tell(const QString& line) {
    message_->setText(line);
    message_->setVisible(!line.isEmpty());
    if (!line.isEmpty()) jobs_view_->add_line(line);
}

void MainWindow::show_cursor(QPointF picture) {
    CursorValues values;
    values.x = static_cast<int>(std::floor(picture.x()));
    values.y = static_cast<int>(std::floor(picture.y()));
    const FramePtr here = session_->current_frame();
    const auto in_frame = [&](const Image& image) {
        Box all = image.info.box;
        all.merge(image.info.format.box);
        return all.contains({values.x, values.y, values.x + 1, values.y + 1});
    };
    if (here && here->error.empty() && in_frame(*here->inputs[kFg].image)) {
        values.source = value_at(*here->inputs[kFg].image, values.x, values.y);
    }
    const ShownPicture& shown = shown_[static_cast<std::size_t>(area_->pane_under_pointer())];
    if (shown.image && values.source) {
        const int scale = static_cast<int>(shown.scale);
        const auto down = [&](int v) { return static_cast<int>(std::floor(static_cast<double>(v) / scale)); };
        values.result = value_at(*shown.image, down(values.x), down(values.y));
        std::array<float, 4> pixel = *values.result;
        display_.apply(pixel.data(), 1);
        values.displayed = std::array<float, 3>{pixel[0], pixel[1], pixel[2]};
    }
    readout_->show_values(values);
}

void MainWindow::show_box(const Box& box) {
    const FramePtr here = session_->current_frame();
    const ShownPicture& shown = shown_[0];
    if (!here || !here->error.empty() || !shown.image) return readout_->clear_box();
    // A stand-in has fewer pixels than the box names; the whole picture soon takes its place.
    Box of_shown = box;
    if (shown.scale > 1.0) {
        const int scale = static_cast<int>(shown.scale);
        of_shown = {box.x / scale, box.y / scale, (box.r + scale - 1) / scale, (box.t + scale - 1) / scale};
    }
    // A large box takes longer than the window may.
    statistics_.give_up();
    statistics_.add(
        [this, box, of_shown, plate = here->inputs[kFg].image, picture = shown.image](const AbortFlag&) {
            const BoxStatistics of_plate = statistics(*plate, box);
            const BoxStatistics of_picture = statistics(*picture, of_shown);
            inbox_.post([this, box, of_plate, of_picture] {
                if (area_->tool() == PointerTool::kBox) readout_->show_box(box, of_plate, of_picture);
            });
        });
}

}  // namespace veloxa::viewer
