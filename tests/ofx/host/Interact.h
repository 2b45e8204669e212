// The overlay's instance over a test host's viewer: sends it pen and key events, and keeps what it draws.
#pragma once

#include <array>

#include "ofx/host/Host.h"

namespace ofxtest {

// In the order of drawing, by whichever way.
struct Shape {
    bool filled = false;
    std::array<float, 3> colour{};
    std::vector<std::array<double, 2>> points{};
    friend bool operator==(const Shape&, const Shape&) = default;
};
struct Drawing {
    std::vector<Shape> shapes;
    int attributes_pushed = 0;  // and not popped
};
inline Drawing drawing;
// False, and a fault, outside of a draw action.
inline bool may_draw() {
    if (!Call::now().may_draw) note_fault("draws at the wrong time");
    return Call::now().may_draw;
}

class Interact {
  public:
    Interact(Host& host, Instance& effect)
        : effect_(effect),
          entry_(reinterpret_cast<OfxPluginEntryPoint*>(
              host.descriptor().props.pointer_at(kOfxImageEffectPluginPropOverlayInteractV1))) {
        if (entry_ == nullptr) throw std::runtime_error("the plug-in has no overlay");
        props.add(kOfxPropEffectInstance, {static_cast<void*>(&effect_)});
        props.add(kOfxPropInstanceData, {static_cast<void*>(nullptr)}, true);
        props.add_lists({kOfxInteractPropSlaveToParam}, kText);
        send(kOfxActionDescribe, nullptr);
        send(kOfxActionCreateInstance, nullptr);
    }
    ~Interact() { send(kOfxActionDestroyInstance, nullptr); }
    Interact(const Interact&) = delete;
    Interact& operator=(const Interact&) = delete;

    using Points = std::vector<std::array<double, 2>>;
    OfxStatus pen(const char* action, double x, double y) {
        PropertySet in = arguments();
        in.add(kOfxInteractPropPenPosition, {x, y});
        return send(action, &in);
    }
    // Down at the first, up at the last, which may be the same.
    OfxStatus drag(const Points& points) {
        pen(kOfxInteractActionPenMotion, points.front()[0], points.front()[1]);
        pen(kOfxInteractActionPenDown, points.front()[0], points.front()[1]);
        for (const auto& p : points) pen(kOfxInteractActionPenMotion, p[0], p[1]);
        return pen(kOfxInteractActionPenUp, points.back()[0], points.back()[1]);
    }
    OfxStatus key(const char* action, int symbol) {
        PropertySet in = arguments();
        in.add(kOfxPropKeySym, {symbol});
        return send(action, &in);
    }
    OfxStatus lose_focus() {
        PropertySet in = arguments();
        return send(kOfxInteractActionLoseFocus, &in);
    }
    // With the draw suite, or for OpenGL.
    Drawing draw(bool suite) {
        drawing = {};
        PropertySet in = arguments();
        if (suite) in.add(kOfxInteractPropDrawContext, {static_cast<void*>(&drawing)});
        send(kOfxInteractActionDraw, &in);
        if (drawing.attributes_pushed != 0) note_fault("leaves attributes of OpenGL changed");
        return drawing;
    }

    PropertySet props;
    int redraws = 0;
    double pixel = 0.5;  // of the screen

  private:
    PropertySet arguments() const {
        PropertySet in = frame_arguments(services.time, effect_.viewer_scale);
        in.add(kOfxPropEffectInstance, {static_cast<void*>(&effect_)});
        in.add(kOfxInteractPropPixelScale, {pixel, pixel});
        return in;
    }
    OfxStatus send(const char* action, PropertySet* in) {
        const bool draws = action == std::string(kOfxInteractActionDraw);
        const bool lends = effect_.params.options.images_in_interacts;
        const Call call{.may_set_params = !draws,
                        .may_fetch = lends && !draws,
                        .refuses_images = !lends && !draws,
                        .may_draw = draws,
                        .scale = effect_.viewer_scale};
        const Call* outer = std::exchange(Call::current, &call);
        const OfxStatus status = entry_(action, this, in != nullptr ? in->handle() : nullptr, nullptr);
        Call::current = outer;
        begin_call();
        return status;
    }

    Instance& effect_;
    OfxPluginEntryPoint* entry_;
};

}  // namespace ofxtest
