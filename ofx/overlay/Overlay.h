// One overlay over a host's viewer: the pen marks areas of the plate for the active tool, whose samples are
// shown as dots in their colours.
//
// Dragging marks a box or a stroke, Escape gives it up. Delete and Backspace, or a click with Control, take
// out the sample under the pen. All in canonical coordinates; main thread. Throws Failure.
#pragma once

#include <optional>
#include <vector>

#include "ZoImage/BrushStroke.h"
#include "host/Properties.h"
#include "instance/Instance.h"
#include "overlay/Canvas.h"

namespace veloxa::ofx {

class Overlay {
  public:
    // Of an event: where the pen is, how large a pixel of the screen is, and the frame that is shown.
    struct Event {
        OfxPointD pen{};
        OfxPointD pixel{1.0, 1.0};
        OfxTime time = 0.0;
        RenderScale scale{1.0, 1.0};
        int key = 0;
    };

    // These are true when the event is nobody else's.
    bool press(Instance& instance, const Event& event);
    bool move(Instance& instance, const Event& event);
    bool release(Instance& instance, const Event& event);
    bool key_down(Instance& instance, const Event& event);
    bool key_up(const Event& event);
    // Keys that are held may be let go elsewhere.
    void change_focus();

    void draw(Instance& instance, const Event& event, Canvas& canvas) const;

  private:
    std::vector<Zo::Image::Box> marked(const Instance& instance) const;
    std::optional<SampleMark> under_pen(const std::vector<SampleMark>& marks) const;
    bool remove_under_pen(Instance& instance, std::size_t tool, OfxTime time) const;
    void give_up();

    std::optional<std::size_t> tool_;  // that the stroke which is being drawn is for
    bool brush_ = false;
    OfxPointD from_{}, to_{};  // of a box
    Zo::Image::BrushStroke stroke_;
    std::optional<OfxPointD> pen_;  // where it was seen last
    OfxPointD pixel_{1.0, 1.0};
    bool control_ = false;
};

}  // namespace veloxa::ofx
