// Icons that are drawn when they are needed, at any size and pixel ratio, in the palette's colours.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace veloxa::viewer {

// By the words in the name: brush, eraser, picker, lock, play, pause, back, forward, loop; a ring for any
// other. With a valid colour a bar of it stands below.
QIcon tool_icon(const QString& name, const QColor& colour = {});

// All of one colour, over a check where it is see-through.
QIcon swatch_icon(const QColor& colour);

}  // namespace veloxa::viewer
