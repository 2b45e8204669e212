// How the area is divided between one picture and another. Device pixels throughout.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace veloxa::viewer {

enum class Pane { kFirst, kSecond };

enum class Panes {
    kOne,         // the first alone
    kWipe,        // the first to the left of a line, the second to the right, both in the same place
    kSideBySide,  // both with the same zoom and the same point in the middle
};

struct PaneRoom {
    Panes panes = Panes::kOne;
    QSize area;
    double wipe = 0.5;  // where the line is, of the area's width

    // What each pane's geometry is for.
    QSize size() const;
    // Where a pane's own (0, 0) lies.
    QPoint origin(Pane pane) const;
    // What is seen of it; empty for none.
    QRect seen(Pane pane) const;
    Pane at(QPointF place) const;
    int line() const;  // the wipe's first column to the right
};

}  // namespace veloxa::viewer
