#include "instance/Instance.h"

#include <memory>

#include "host/Host.h"
#include "host/Properties.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

Properties properties_of(OfxImageEffectHandle effect) {
    OfxPropertySetHandle set = nullptr;
    check(suites().effect->getPropertySet(effect, &set));
    return Properties(set);
}

}  // namespace

void Instance::create(OfxImageEffectHandle effect) {
    std::unique_ptr<Instance> instance(new Instance(effect));
    if (!properties_of(effect).set_pointer(kOfxPropInstanceData, instance.get())) {
        throw Failure(kOfxStatFailed, "the host does not keep the instance");
    }
    static_cast<void>(instance.release());  // the host has it now
}

void Instance::destroy(OfxImageEffectHandle effect) {
    const Properties properties = properties_of(effect);
    const std::unique_ptr<Instance> instance(
        static_cast<Instance*>(properties.pointer(kOfxPropInstanceData)));
    properties.set_pointer(kOfxPropInstanceData, nullptr);
}

Instance& Instance::of(OfxImageEffectHandle effect) {
    auto* const instance = static_cast<Instance*>(properties_of(effect).pointer(kOfxPropInstanceData));
    if (instance == nullptr) throw Failure(kOfxStatErrBadHandle);
    return *instance;
}

Instance::Instance(OfxImageEffectHandle effect)
    : effect_(effect),
      general_(properties_of(effect).text(kOfxImageEffectPropContext) != kOfxImageEffectContextFilter),
      output_(clip(kOfxImageEffectOutputClipName)),
      editor_(effect) {
    for (std::size_t n = 0; n < kInputs && (general_ || n == kForeground); ++n) {
        inputs_[n] = clip(general_ ? kInputClips[n].name : kOfxImageEffectSimpleSourceClipName);
    }
    if (output_.handle == nullptr || inputs_[kForeground].handle == nullptr) {
        throw Failure(kOfxStatFailed, "the host did not make the clips");
    }
    screen_color_ = editor_.parameters().find(kScreenColor).value();
    output_mode_ = editor_.parameters().find(kOutputMode).value();
    editor_.load();
    editor_.own().report("");
    show_start();
    show_pending();
    // What the node knows and renders need is in the parameters already.
    properties_of(effect).set(kOfxPropParamSetNeedsSyncing, 0);
}

Instance::Clip Instance::clip(const char* name) const {
    Clip clip{name};
    if (suites().effect->clipGetHandle(effect_, name, &clip.handle, &clip.properties) != kOfxStatOK) {
        clip.handle = nullptr;
    }
    return clip;
}

bool Instance::connected(std::size_t n) const {
    const Clip& clip = inputs_[n];
    return clip.handle != nullptr && Properties(clip.properties).integer(kOfxImageClipPropConnected) != 0;
}

std::array<bool, kInputs> Instance::connections() const {
    std::array<bool, kInputs> result{};
    for (std::size_t n = 0; n < kInputs; ++n) result[n] = connected(n);
    return result;
}

bool Instance::extent(std::size_t n, OfxTime time, OfxRectD& extent) const {
    if (!connected(n)) return false;
    if (suites().effect->clipGetRegionOfDefinition(inputs_[n].handle, time, &extent) != kOfxStatOK) {
        return false;
    }
    return extent.x1 < extent.x2 && extent.y1 < extent.y2;
}

double Instance::aspect(std::size_t n) const {
    const double aspect = Properties(inputs_[n].properties).number(kOfxImagePropPixelAspectRatio, 1.0);
    return aspect > 0.0 ? aspect : 1.0;
}

void Instance::require_foreground() const {
    if (!connected(kForeground)) throw Failure(kOfxStatFailed, "no foreground is connected");
}

Pictures Instance::fetch(OfxTime time, const RenderScale& scale, bool whole) const {
    Pictures pictures;
    for (std::size_t n = 0; n < kInputs; ++n) {
        if (!connected(n)) continue;
        OfxRectD region;
        const auto finite = [&](std::size_t of) {
            return extent(of, time, region) && !is_endless(PixelGrid{}.pixels(region));
        };
        const bool all = whole && (finite(n) || finite(kForeground));
        pictures[n].emplace(inputs_[n].handle, time, all ? &region : nullptr, scale);
    }
    return pictures;
}

// A composite over a background is a finished picture: its colour is not multiplied by the alpha beside it,
// the key's. Unpremultiplied would say so too, but then hosts multiply where they show, filter and write
// pictures, and the background goes black. As opaque it is left as it is; and so is what a view shows.
const char* Instance::premultiplication() const {
    const int mode = static_cast<int>(editor_.parameters().value(output_mode_, std::nullopt).numbers[0]);
    const bool finished = mode == kComposite && connected(kBackground);
    if (finished || editor_.own().view(std::nullopt) != kResultView) return kOfxImageOpaque;
    return mode == kUnpremultiplied ? kOfxImageUnPreMultiplied : kOfxImagePreMultiplied;
}

Box Instance::full_frame(OfxTime time) const {
    OfxRectD region;
    if (!extent(kForeground, time, region)) return {-kFarAway, -kFarAway, kFarAway, kFarAway};
    return PixelGrid{{1.0, 1.0}, aspect(kForeground)}.pixels(region);
}

OfxStatus Instance::clip_preferences(OfxPropertySetHandle /*in*/, OfxPropertySetHandle out) {
    const Properties results(out);
    if (general_) results.set("OfxImageClipPropComponents_Output", kOfxImageComponentRGBA);
    results.set(kOfxImageEffectPropPreMultiplication, premultiplication());
    return kOfxStatOK;
}

OfxStatus Instance::changed(OfxPropertySetHandle in, OfxPropertySetHandle /*out*/) {
    const Properties arguments(in);
    if (arguments.text(kOfxPropType) != kOfxTypeParameter) return kOfxStatReplyDefault;
    const std::string reason = arguments.text(kOfxPropChangeReason);
    // The editor's own changes: it knows of them.
    if (reason == kOfxChangePluginEdited) return kOfxStatReplyDefault;
    const std::string name = arguments.text(kOfxPropName);
    const OfxTime time = arguments.number(kOfxPropTime);
    const auto n = editor_.parameters().find(name);
    if (!n) {
        if (reason == kOfxChangeUserEdited) press_own(name, time, arguments.scale());
        return kOfxStatOK;
    }
    if (!editor_.list().parameters()[*n].is_button()) {
        editor_.follow(*n);
        if (*n == screen_color_) show_start();
        return kOfxStatOK;
    }
    if (reason != kOfxChangeUserEdited) return kOfxStatReplyDefault;
    if (editor_.is_tool(*n)) {
        press_tool(*n, time, arguments.scale());
    } else {
        editor_.press(*n, time);
    }
    return kOfxStatOK;
}

void Instance::press_own(const std::string& button, OfxTime time, const RenderScale& scale) {
    if (button == kTakeSample) take_pending(scale);
    if (button == kLoadSettings) load_settings(time);
    if (button == kSaveSettings) save_settings();
}

void Instance::show_start() const {
    static const std::string kStart =
        "No screen colour is chosen yet. Under Sampling press Find Screen or Set Up Automatically, or sample "
        "the backing with the tool screen.";
    const OwnParameters& own = editor_.own();
    const bool chosen = !is_black(editor_.parameters().value(screen_color_, std::nullopt));
    if (!chosen) {
        own.report(kStart);
    } else if (own.text(kReport) == kStart) {
        own.report("");
    }
}

OfxStatus Instance::purge_caches(OfxPropertySetHandle /*in*/, OfxPropertySetHandle /*out*/) {
    renderers_.purge();
    planners_.purge();
    return kOfxStatOK;
}

}  // namespace veloxa::ofx
