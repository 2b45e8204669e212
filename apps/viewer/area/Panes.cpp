#include "area/Panes.h"

#include <QPointF>
#include <algorithm>

namespace veloxa::viewer {

namespace {

constexpr int kGap = 2;  // at least

}  // namespace

QSize PaneRoom::size() const {
    if (panes != Panes::kSideBySide) return area;
    return {std::max((area.width() - kGap) / 2, 0), area.height()};
}

QPoint PaneRoom::origin(Pane pane) const {
    const bool right = panes == Panes::kSideBySide && pane == Pane::kSecond;
    return {right ? area.width() - size().width() : 0, 0};
}

int PaneRoom::line() const {
    return std::clamp(qRound(wipe * area.width()), 0, area.width());
}

QRect PaneRoom::seen(Pane pane) const {
    if (panes == Panes::kSideBySide) return {origin(pane), size()};
    const QRect all({0, 0}, area);
    if (panes == Panes::kOne) return pane == Pane::kFirst ? all : QRect();
    return pane == Pane::kFirst ? all.adjusted(0, 0, line() - area.width(), 0)
                                : all.adjusted(line(), 0, 0, 0);
}

Pane PaneRoom::at(QPointF place) const {
    if (panes == Panes::kOne) return Pane::kFirst;
    const double border = panes == Panes::kWipe ? line() : 0.5 * area.width();
    return place.x() < border ? Pane::kFirst : Pane::kSecond;
}

}  // namespace veloxa::viewer
