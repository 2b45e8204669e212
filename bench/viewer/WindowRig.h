// The viewer's window over procedural plates on disk, with hands on its controls and an eye on its picture.
#pragma once

#include <QTemporaryDir>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "viewer/WatchedApplication.h"
#include "window/MainWindow.h"

class QSlider;
class QWidget;

namespace bench {

// One request's way from the hand to the eye: to its first picture on the screen, and to that of the whole
// frame. The processor time is that of all threads.
struct Seen {
    Delay first, whole;
};

// What a drag at the hand's own pace gave.
struct Dragged {
    std::vector<double> first;  // of each move, to the first picture that has it
    double whole = 0.0;         // from the last move
    double per_second = 0.0;    // pictures shown while it went on
};

class WindowRig {
  public:
    // Frames 1 to `frames` of plates, each `apart` from the next, with the names between them in use too.
    WindowRig(WatchedApplication& application, int width, int height, int frames, int apart);

    // Errors go to standard error and make this false from then on.
    bool good() const { return good_; }

    std::vector<Seen> slide_and_wait(const std::string& knob, int moves);
    Dragged slide(const std::string& knob, int moves);
    // A menu's choice to and fro; the slider of another knob moves in between, so that no picture is known.
    std::vector<Seen> choose_and_wait(const std::string& menu, const std::string& other, int moves);
    // A stroke of a tool, to the preview of each move.
    std::vector<Seen> paint_and_wait(const std::string& tool, int moves);
    // To frames that were not read.
    std::vector<Seen> scrub_and_wait();

  private:
    struct Painted {
        std::uint64_t number;
        bool whole;
        Stamp at;
    };

    void write_plates(int width, int height) const;
    std::string file(const std::string& name) const;
    void listen();
    void open();
    bool wait(const std::function<bool()>& done, const char* what);
    void settle();
    Seen see(const Stamp& began, std::uint64_t number);
    const Painted* painted(std::uint64_t number, bool whole) const;
    QSlider* slider(const std::string& knob);
    void point(QWidget& widget, QEvent::Type type, QPointF place);

    WatchedApplication& application_;
    int frames_, apart_;
    QTemporaryDir folder_;
    std::unique_ptr<veloxa::viewer::MainWindow> window_;
    std::vector<Painted> arrived_, painted_;
    std::uint64_t whole_ = 0;    // the latest request that was shown whole
    std::uint64_t preview_ = 0;  // the request of the latest preview
    bool good_ = true;
};

}  // namespace bench
