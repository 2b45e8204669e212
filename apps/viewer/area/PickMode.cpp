#include "area/PickMode.h"

#include <QCoreApplication>

#include "area/Marks.h"
#include "area/PictureArea.h"

namespace veloxa::viewer {

QString PickMode::help() const {
    return QCoreApplication::translate("PictureArea",
                                       "Click to take a colour. Arrow keys move a crosshair, with Shift "
                                       "further; Space or Enter takes the colour there.");
}

void PickMode::press(const PointerAt& at) {
    const PixelAt pixel = pixel_at(at.picture);
    emit area_.picked(pixel.x, pixel.y);
}

}  // namespace veloxa::viewer
