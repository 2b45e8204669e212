#include "overlay/OverlayEntry.h"

#include <memory>
#include <string_view>

#include "host/Answer.h"
#include "overlay/Overlay.h"

namespace veloxa::ofx {

namespace {

Properties properties_of(OfxInteractHandle interact) {
    OfxPropertySetHandle set = nullptr;
    check(suites().interact->interactGetPropertySet(interact, &set));
    return Properties(set);
}

OfxImageEffectHandle effect_of(const Properties& interact, const Properties& arguments) {
    void* effect = arguments.pointer(kOfxPropEffectInstance);
    if (effect == nullptr) effect = interact.pointer(kOfxPropEffectInstance);
    return static_cast<OfxImageEffectHandle>(effect);
}

Overlay::Event event_of(const Properties& arguments) {
    Overlay::Event event;
    event.pen = {arguments.number(kOfxInteractPropPenPosition, 0.0, 0),
                 arguments.number(kOfxInteractPropPenPosition, 0.0, 1)};
    event.pixel = {arguments.number(kOfxInteractPropPixelScale, 1.0, 0),
                   arguments.number(kOfxInteractPropPixelScale, 1.0, 1)};
    event.time = arguments.number(kOfxPropTime);
    event.scale = arguments.scale();
    event.key = arguments.integer(kOfxPropKeySym);
    return event;
}

// Hosts draw anew when one of these changes.
void create(const Properties& interact) {
    auto overlay = std::make_unique<Overlay>();
    if (!interact.set_pointer(kOfxPropInstanceData, overlay.get())) throw Failure(kOfxStatFailed);
    static_cast<void>(overlay.release());  // the host has it now
    interact.set_all<const char*>(kOfxInteractPropSlaveToParam, {kActiveTool, kMarks, kPendingStroke});
}

void draw(Overlay& overlay, Instance& instance, const Properties& arguments) {
    auto* const context = static_cast<OfxDrawContextHandle>(arguments.pointer(kOfxInteractPropDrawContext));
    const bool suite = context != nullptr && suites().draw != nullptr;
    const std::unique_ptr<Canvas> canvas = suite ? suite_canvas(context) : opengl_canvas();
    if (canvas) overlay.draw(instance, event_of(arguments), *canvas);
}

// Asks for a redraw when it goes.
struct Redraw {
    OfxInteractHandle interact;
    bool wanted;

    ~Redraw() {
        const auto ask = suites().interact->interactRedraw;
        if (wanted && ask != nullptr) ask(interact);
    }
};

bool handle_event(std::string_view action, Overlay& overlay, Instance& instance,
                  const Overlay::Event& event) {
    if (action == kOfxInteractActionPenDown) return overlay.press(instance, event);
    if (action == kOfxInteractActionPenMotion) return overlay.move(instance, event);
    if (action == kOfxInteractActionPenUp) return overlay.release(instance, event);
    if (action == kOfxInteractActionKeyDown || action == kOfxInteractActionKeyRepeat) {
        return overlay.key_down(instance, event);
    }
    if (action == kOfxInteractActionKeyUp) return overlay.key_up(event);
    if (action == kOfxInteractActionGainFocus || action == kOfxInteractActionLoseFocus)
        overlay.change_focus();
    return false;
}

OfxStatus dispatch(std::string_view action, OfxInteractHandle interact, const Properties& arguments,
                   OfxImageEffectHandle& effect) {
    if (action == kOfxActionDescribe) return kOfxStatOK;
    const Properties properties = properties_of(interact);
    if (action == kOfxActionCreateInstance) {
        create(properties);
        return kOfxStatOK;
    }
    const auto overlay = static_cast<Overlay*>(properties.pointer(kOfxPropInstanceData));
    if (action == kOfxActionDestroyInstance) {
        properties.set_pointer(kOfxPropInstanceData, nullptr);
        const std::unique_ptr<Overlay> last(overlay);
        return kOfxStatOK;
    }
    effect = effect_of(properties, arguments);
    if (overlay == nullptr || effect == nullptr) return kOfxStatErrBadHandle;
    Instance& instance = Instance::of(effect);
    if (action == kOfxInteractActionDraw) {
        draw(*overlay, instance, arguments);
        return kOfxStatOK;
    }
    // Dots stand out when the pen comes near; failures end strokes, and Escape what waits.
    const bool shows = instance.editor().active_tool() || !instance.pending_areas().empty();
    const Redraw redraw{interact, shows};
    return handle_event(action, *overlay, instance, event_of(arguments)) ? kOfxStatOK : kOfxStatReplyDefault;
}

}  // namespace

OfxStatus overlay_entry(const char* action, const void* handle, OfxPropertySetHandle in,
                        OfxPropertySetHandle /*out*/) noexcept {
    // The interface hands interacts over as const.
    const auto interact = static_cast<OfxInteractHandle>(const_cast<void*>(handle));
    OfxImageEffectHandle effect = nullptr;
    return answer([&] { return dispatch(action, interact, Properties(in), effect); },
                  [&](const char* text) { tell(effect, kOfxMessageError, text); });
}

}  // namespace veloxa::ofx
