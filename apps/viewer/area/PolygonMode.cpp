#include "area/PolygonMode.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <utility>

#include "area/MatteOverlay.h"
#include "area/PictureArea.h"

namespace veloxa::viewer {

namespace {

constexpr double kReach = 7.0;  // the screen's points around a point or a line that count as it
constexpr std::size_t kFewest = 3;

QString text(const char* english) {
    return QCoreApplication::translate("PictureArea", english);
}

Point point_of(const std::array<double, 2>& xy) {
    return {xy[0], xy[1]};
}

double distance_to_segment(Point p, Point a, Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length = dx * dx + dy * dy;
    double along = length > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length : 0.0;
    along = std::clamp(along, 0.0, 1.0);
    return std::hypot(p.x - a.x - along * dx, p.y - a.y - along * dy);
}

}  // namespace

QString PolygonMode::help() const {
    return text(
        "Click to set the points of a matte; Enter, a double click or a click on the first point closes it. "
        "Drag a point, or a line to move the whole; Delete removes what is chosen, Escape gives up what is "
        "begun. Arrow keys move a crosshair, with Shift further; Space sets a point there, or takes hold of "
        "what is there and lets it go.");
}

void PolygonMode::set_mattes(DrawnMattes mattes) {
    if (mattes == mattes_) return;
    drag_.reset();
    mattes_ = std::move(mattes);
    if (choice_ && choice_->matte >= mattes_.size()) choice_.reset();
    if (choice_ && choice_->point && *choice_->point >= mattes_[choice_->matte].points.size())
        choice_->point.reset();
    area_.update();
}

bool PolygonMode::near(Point area, Point picture) const {
    const Point there = area_.picture_geometry().to_area(picture);
    return std::hypot(area.x - there.x, area.y - there.y) <= kReach * area_.ratio();
}

std::optional<PolygonMode::Choice> PolygonMode::under(Point area) const {
    for (std::size_t m = mattes_.size(); m-- > 0;) {
        const auto& points = mattes_[m].points;
        for (std::size_t n = points.size(); n-- > 0;) {
            if (near(area, point_of(points[n]))) return Choice{m, n};
        }
    }
    const Geometry& geometry = area_.picture_geometry();
    for (std::size_t m = mattes_.size(); m-- > 0;) {
        const auto& points = mattes_[m].points;
        for (std::size_t n = 0; n < points.size(); ++n) {
            const Point a = geometry.to_area(point_of(points[n]));
            const Point b = geometry.to_area(point_of(points[(n + 1) % points.size()]));
            if (distance_to_segment(area, a, b) <= kReach * area_.ratio()) return Choice{m, std::nullopt};
        }
    }
    return std::nullopt;
}

void PolygonMode::tell(const QString& what, bool dragging) {
    area_.update();
    emit area_.mattesChanged(mattes_, what, dragging);
}

void PolygonMode::press(const PointerAt& at) {
    hover_ = at.picture;
    if (draft_.points.size() >= kFewest && near(at.area, point_of(draft_.points.front()))) {
        close();
        return;
    }
    if (draft_.points.empty()) {
        choice_ = under(at.area);
        area_.update();
        if (choice_) {
            drag_ = Drag{at.picture, mattes_[choice_->matte]};
            return;
        }
        draft_ = like_;
        draft_.points.clear();
    }
    draft_.points.push_back({at.picture.x, at.picture.y});
    area_.update();
}

void PolygonMode::move(const PointerAt& at) {
    hover_ = at.picture;
    if (!draft_.points.empty()) area_.update();
    if (!drag_) return;
    const double dx = at.picture.x - drag_->from.x;
    const double dy = at.picture.y - drag_->from.y;
    if (!drag_->moved && dx == 0.0 && dy == 0.0) return;
    drag_->moved = true;
    DrawnMatte& matte = mattes_[choice_->matte];
    matte = drag_->before;
    for (std::size_t n = 0; n < matte.points.size(); ++n) {
        if (choice_->point && *choice_->point != n) continue;
        matte.points[n][0] += dx;
        matte.points[n][1] += dy;
    }
    tell(choice_->point ? text("Move point") : text("Move matte"), true);
}

void PolygonMode::release(const PointerAt& at) {
    if (!drag_) return;
    // What a listener sets in answer to the move may end the drag.
    move(at);
    if (!drag_) return;
    const bool moved = drag_->moved;
    drag_.reset();
    if (moved) tell(choice_->point ? text("Move point") : text("Move matte"), false);
}

void PolygonMode::double_click(const PointerAt& at) {
    if (draft_.points.size() >= kFewest) {
        close();
    } else if (draft_.points.empty()) {
        press(at);
    }
}

void PolygonMode::leave() {
    hover_.reset();
    area_.update();
}

void PolygonMode::act(const PointerAt& at) {
    if (drag_) {
        release(at);
    } else {
        press(at);
    }
}

void PolygonMode::close() {
    choice_ = Choice{mattes_.size(), std::nullopt};
    mattes_.push_back(std::exchange(draft_, {}));
    tell(mattes_.back().kind == DrawnMatte::Kind::kGarbage ? text("Draw garbage matte")
                                                           : text("Draw holdout matte"),
         false);
}

bool PolygonMode::remove() {
    if (!draft_.points.empty()) {
        draft_.points.pop_back();
        area_.update();
        return true;
    }
    if (!choice_ || drag_) return false;
    const Choice chosen = *std::exchange(choice_, std::nullopt);
    auto& points = mattes_[chosen.matte].points;
    if (chosen.point && points.size() > kFewest) {
        points.erase(points.begin() + static_cast<std::ptrdiff_t>(*chosen.point));
        tell(text("Delete point"), false);
    } else {
        mattes_.erase(mattes_.begin() + static_cast<std::ptrdiff_t>(chosen.matte));
        tell(text("Delete matte"), false);
    }
    return true;
}

bool PolygonMode::key(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (draft_.points.size() < kFewest) return !draft_.points.empty();
            close();
            return true;
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            return remove();
        default:
            return false;
    }
}

bool PolygonMode::cancel() {
    if (drag_) {
        mattes_[choice_->matte] = drag_->before;
        const bool moved = drag_->moved;
        drag_.reset();
        if (moved) tell(text("Give up move"), false);
        return true;
    }
    if (draft_.points.empty()) return false;
    draft_.points.clear();
    area_.update();
    return true;
}

void PolygonMode::paint(QPainter& painter, const Geometry& geometry, double ratio) const {
    for (std::size_t m = 0; m < mattes_.size(); ++m) {
        const bool chosen = choice_ && choice_->matte == m;
        draw_matte(painter, mattes_[m], {chosen, true, chosen ? choice_->point : std::nullopt}, geometry,
                   ratio);
    }
    if (draft_.points.empty()) return;
    DrawnMatte shown = draft_;
    if (hover_) shown.points.push_back({hover_->x, hover_->y});
    draw_matte(painter, shown, {true, false, {}}, geometry, ratio);
}

}  // namespace veloxa::viewer
