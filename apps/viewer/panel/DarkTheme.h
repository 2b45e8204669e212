// The window's look: dark and neutral, so that it does not colour what the eye makes of a picture.
#pragma once

class QApplication;

namespace veloxa::viewer {

// The Fusion style with a dark palette. Every text on every background that it stands on has a contrast of at
// least 4.5 to 1, disabled ones of at least 3.
void use_dark_theme(QApplication& application);

}  // namespace veloxa::viewer
