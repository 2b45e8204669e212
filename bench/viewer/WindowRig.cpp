#include "viewer/WindowRig.h"

#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollArea>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <utility>

#include "area/PictureArea.h"
#include "panel/KnobSlider.h"
#include "panel/PanelView.h"
#include "plates/Set.h"
#include "shot/files/ImageFile.h"
#include "timeline/TimeLine.h"

namespace bench {

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;

namespace {

constexpr auto kPace = std::chrono::microseconds(16667);  // of a hand that drags, as mice report it
constexpr double kMostSeconds = 120.0;

Delay delay(const Stamp& from, const Stamp& to) {
    return {milliseconds(to.clock - from.clock), to.processor - from.processor};
}

}  // namespace

WindowRig::WindowRig(WatchedApplication& application, int width, int height, int frames, int apart)
    : application_(application), frames_(frames), apart_(apart) {
    write_plates(width, height);
    WindowPlace place;
    place.settings_file = folder_.filePath("layout.ini");
    place.rescue_folder = folder_.filePath("rescue");
    window_ = std::make_unique<MainWindow>(place);
    window_->resize(1500, 940);
    window_->show();
    listen();
    open();
}

std::string WindowRig::file(const std::string& name) const {
    return folder_.filePath(QString::fromStdString(name)).toStdString();
}

void WindowRig::write_plates(int width, int height) const {
    plate::Options options;
    options.width = width;
    options.height = height;
    const WriteOptions how{.depth = Depth::HALF};
    plate::Set set = plate::render_set(options, 1, 0);
    write_image(file("cp.exr"), set[plate::kCleanPlate], how);
    write_image(file("bg.exr"), set[plate::kBackground], how);
    Image& fg = set[plate::kForeground];
    for (int n = 0; n < frames_; ++n) {
        const int frame = 1 + n * apart_;
        const std::string name = file("fg." + std::to_string(frame) + ".exr");
        write_image(name, fg, how);
        // Read ahead they take as long as any.
        for (int between = frame + 1; between < frame + apart_; ++between)
            std::filesystem::create_hard_link(name, file("fg." + std::to_string(between) + ".exr"));
        // Another picture, in a little more light.
        for (const Channel c : kMaskRgb) {
            float* const values = fg.plane(c).get();
            std::for_each_n(values, fg.width() * fg.height(), [](float& value) { value *= 1.01f; });
        }
    }
}

void WindowRig::listen() {
    SessionEvents& events = window_->session().events;
    events.shown = [this, show = events.shown](auto& result) {
        show(result);
        if (!result.counts && result.picture.image) arrived_.push_back({result.number, result.whole, {}});
    };
    events.tool = [this, show = events.tool](const auto& reports, bool preview) {
        show(reports, preview);
        if (preview) preview_ = window_->session().latest_request() + 1;  // that is made next
    };
    application_.after_paint(&window_->area(), [this] {
        const Stamp now = Stamp::now();
        for (const Painted& one : arrived_) {
            painted_.push_back({one.number, one.whole, now});
            if (one.whole) whole_ = std::max(whole_, one.number);
        }
        arrived_.clear();
    });
}

void WindowRig::open() {
    SetupOptions options;
    options.inputs[kFg] = file("fg.#.exr");
    options.inputs[kCp] = file("cp.exr");
    options.inputs[kBg] = file("bg.exr");
    options.frames = "1-" + std::to_string(frames_ * apart_);
    window_->session().open(options);
    settle();
}

bool WindowRig::wait(const std::function<bool()>& done, const char* what) {
    if (good_ && application_.until(done, kMostSeconds)) return true;
    if (good_) std::cerr << "bench_window: no " << what << " within " << kMostSeconds << " s\n";
    good_ = false;
    return false;
}

const WindowRig::Painted* WindowRig::painted(std::uint64_t number, bool whole) const {
    const auto found = std::ranges::find_if(
        painted_, [&](const Painted& p) { return p.number >= number && (p.whole || !whole); });
    return found == painted_.end() ? nullptr : &*found;
}

void WindowRig::settle() {
    Session& session = window_->session();
    wait([&] { return !session.working() && session.current_frame() && whole_ >= session.latest_request(); },
         "whole picture");
    painted_.clear();
}

Seen WindowRig::see(const Stamp& began, std::uint64_t number) {
    Seen seen;
    if (!wait([&] { return painted(number, true) != nullptr; }, "picture")) return seen;
    seen.first = delay(began, painted(number, false)->at);
    seen.whole = delay(began, painted(number, true)->at);
    painted_.clear();
    return seen;
}

QSlider* WindowRig::slider(const std::string& knob) {
    auto* const control = window_->panel().findChild<QWidget*>(QString::fromStdString(knob));
    auto* const found = control == nullptr ? nullptr : control->findChild<KnobSlider*>();
    if (found == nullptr) {
        std::cerr << "bench_window: no slider for " << knob << '\n';
        good_ = false;
        return nullptr;
    }
    window_->panel().findChild<QScrollArea*>()->ensureWidgetVisible(found);
    settle();
    return found;
}

void WindowRig::point(QWidget& widget, QEvent::Type type, QPointF place) {
    const bool up = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, place, widget.mapToGlobal(place),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

std::vector<Seen> WindowRig::slide_and_wait(const std::string& knob, int moves) {
    std::vector<Seen> seen;
    QSlider* const hand = slider(knob);
    if (hand == nullptr) return seen;
    const double y = 0.5 * hand->height();
    point(*hand, QEvent::MouseButtonPress, {0.1 * hand->width(), y});
    settle();
    for (int n = 1; n <= moves && good_; ++n) {
        const Stamp began = Stamp::now();
        point(*hand, QEvent::MouseMove, {0.1 * hand->width() + n, y});
        seen.push_back(see(began, window_->session().latest_request()));
    }
    point(*hand, QEvent::MouseButtonRelease, {0.1 * hand->width() + moves, y});
    settle();
    return seen;
}

Dragged WindowRig::slide(const std::string& knob, int moves) {
    Dragged dragged;
    QSlider* const hand = slider(knob);
    if (hand == nullptr) return dragged;
    const double y = 0.5 * hand->height();
    point(*hand, QEvent::MouseButtonPress, {0.55 * hand->width(), y});
    settle();
    std::vector<std::pair<Clock::time_point, std::uint64_t>> made;
    const auto began = Clock::now();
    for (int n = 1; n <= moves && good_; ++n) {
        application_.until([&] { return Clock::now() >= began + n * kPace; });
        made.emplace_back(Clock::now(), 0);
        point(*hand, QEvent::MouseMove, {0.55 * hand->width() + n, y});
        made.back().second = window_->session().latest_request();
    }
    const auto ended = Clock::now();
    const auto shown = static_cast<double>(painted_.size());
    dragged.per_second = shown / milliseconds(ended - began) * 1e3;
    if (!wait([&] { return painted(made.back().second, true) != nullptr; }, "picture")) return dragged;
    for (const auto& [at, number] : made) {
        dragged.first.push_back(milliseconds(painted(number, false)->at.clock - at));
    }
    dragged.whole = milliseconds(painted(made.back().second, true)->at.clock - made.back().first);
    point(*hand, QEvent::MouseButtonRelease, {0.55 * hand->width() + moves, y});
    settle();
    return dragged;
}

std::vector<Seen> WindowRig::choose_and_wait(const std::string& menu, const std::string& other, int moves) {
    std::vector<Seen> seen;
    auto* const control = window_->panel().findChild<QWidget*>(QString::fromStdString(menu));
    auto* const box = control == nullptr ? nullptr : control->findChild<QComboBox*>();
    QSlider* const between = slider(other);
    if (box == nullptr || between == nullptr) return seen;
    for (int n = 0; n < moves && good_; ++n) {
        between->setValue(between->value() + 1);
        settle();
        QKeyEvent key(QEvent::KeyPress, box->currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up, {});
        const Stamp began = Stamp::now();
        QApplication::sendEvent(box, &key);
        seen.push_back(see(began, window_->session().latest_request()));
    }
    return seen;
}

std::vector<Seen> WindowRig::paint_and_wait(const std::string& tool, int moves) {
    std::vector<Seen> seen;
    auto* const action = window_->findChild<QAction*>(QString::fromStdString(tool));
    if (action == nullptr) {
        std::cerr << "bench_window: no tool " << tool << '\n';
        good_ = false;
        return seen;
    }
    action->trigger();
    PictureArea& area = window_->area();
    const QPointF from{0.42 * area.width(), 0.6 * area.height()};
    point(area, QEvent::MouseButtonPress, from);
    settle();
    for (int n = 1; n <= moves && good_; ++n) {
        preview_ = 0;
        const Stamp began = Stamp::now();
        point(area, QEvent::MouseMove, from + QPointF(6.0 * n, 0.0));
        if (!wait([&] { return preview_ != 0; }, "preview")) return seen;
        seen.push_back(see(began, preview_));
    }
    point(area, QEvent::MouseButtonRelease, from + QPointF(6.0 * moves, 0.0));
    wait([&] { return !window_->session().working(); }, "end of the stroke");
    settle();
    action->trigger();
    return seen;
}

std::vector<Seen> WindowRig::scrub_and_wait() {
    std::vector<Seen> seen;
    for (int n = 1; n < frames_ && good_; ++n) {
        const Stamp began = Stamp::now();
        window_->time_line().go_to(1 + n * apart_);
        const std::uint64_t number = window_->session().latest_request();
        if (window_->session().current_frame()) {
            std::cerr << "bench_window: frame " << 1 + n * apart_ << " was read already\n";
            good_ = false;
        }
        seen.push_back(see(began, number + 1));
    }
    return seen;
}

}  // namespace bench
