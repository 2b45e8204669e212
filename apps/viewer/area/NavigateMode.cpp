#include "area/NavigateMode.h"

#include <QCoreApplication>

namespace veloxa::viewer {

QString NavigateMode::help() const {
    return QCoreApplication::translate("PictureArea",
                                       "Drag or arrow keys move the picture, with Shift further. Wheel, plus "
                                       "and minus zoom, F fits it, 1 shows it pixel for pixel.");
}

}  // namespace veloxa::viewer
