#include "parameters/OwnParameters.h"

#include <algorithm>

#include "parameters/Define.h"

namespace veloxa::ofx {

namespace {

// Defines parameters of one group that change no picture by themselves.
class Definer {
  public:
    Definer(OfxParamSetHandle set, std::string group) : set_(set), group_(std::move(group)) {}

    Properties add(const char* type, const char* name, const char* label, const char* hint) const {
        const Properties p = define(set_, type, name, label);
        p.set(kOfxParamPropHint, hint);
        p.set(kOfxParamPropParent, group_);
        return p;
    }
    Properties value(const char* type, const char* name, const char* label, const char* hint) const {
        const Properties p = add(type, name, label, hint);
        p.set(kOfxParamPropAnimates, 0);
        p.set(kOfxParamPropEvaluateOnChange, 0);
        return p;
    }
    Properties text(const char* name, const char* label, const char* hint, const char* mode) const {
        const Properties p = value(kOfxParamTypeString, name, label, hint);
        if (mode != nullptr) p.set(kOfxParamPropStringMode, mode);
        p.set(kOfxParamPropDefault, "");
        return p;
    }
    Properties hidden_text(const char* name) const {
        const Properties p = text(name, name, "", nullptr);
        p.set(kOfxParamPropSecret, 1);
        return p;
    }
    Properties choice(const char* name, const char* label, const char* hint,
                      const std::vector<std::string>& items) const {
        const Properties p = value(kOfxParamTypeChoice, name, label, hint);
        int n = 0;
        for (const std::string& item : items) p.set(kOfxParamPropChoiceOption, item, n++);
        p.set(kOfxParamPropDefault, 0);
        return p;
    }

  private:
    OfxParamSetHandle set_;
    std::string group_;
};

void describe_general(const Definer& definer, std::vector<std::string> stages) {
    const Properties report = definer.text(
        kReport, "report", "What the latest tool did, and what is missing.", kOfxParamStringIsLabel);
    report.set(kOfxParamPropPersistant, 0);
    report.set(kOfxParamPropCanUndo, 0);

    stages.insert(stages.begin(), {"result", "matte", "status"});
    const Properties view = definer.choice(
        kView, "view",
        "What is shown in place of the result: the matte; its status, black where it is exactly 0, "
        "white where it is exactly 1, colours between; or what a stage within makes. It is not "
        "saved.",
        stages);
    view.set(kOfxParamPropEvaluateOnChange, 1);
    view.set(kOfxParamPropPersistant, 0);

    definer
        .text(kSettingsFile, "settings file",
              "A script of settings, as the program veloxa reads and writes them.", kOfxParamStringIsFilePath)
        .set(kOfxParamPropStringFilePathExists, 0);
    definer.add(
        kOfxParamTypePushButton, kLoadSettings, "Load Settings…",
        "Sets all parameters as the settings file says; those that it does not name get their defaults.");
    definer.add(
        kOfxParamTypePushButton, kSaveSettings, "Save Settings…",
        "Writes the parameters that differ from their defaults, as they are at this frame, to the settings "
        "file.");
}

void describe_corner(const Definer& definer, const char* name, const char* label, double place, bool shown) {
    const Properties p = definer.value(kOfxParamTypeDouble2D, name, label,
                                       "Corner of the rectangle that the sampling tools look at.");
    p.set(kOfxParamPropDoubleType, kOfxParamDoubleTypeXYAbsolute);
    p.set(kOfxParamPropDefaultCoordinateSystem, kOfxParamCoordinatesCanonical);
    for (int i = 0; i < 2; ++i) p.set(kOfxParamPropDefault, place, i);
    for (int i = 0; i < 2; ++i) p.set(kOfxParamPropDisplayMin, 0.0, i);
    for (int i = 0; i < 2; ++i) p.set(kOfxParamPropDisplayMax, 4096.0, i);
    p.set(kOfxParamPropUseHostOverlayHandle, shown ? 1 : 0);
    p.set(kOfxParamPropSecret, shown ? 0 : 1);
}

void describe_sampling(const Definer& definer, const ParameterList& list) {
    const bool overlays = host_has_overlays();
    describe_corner(definer, kFirstCorner, "first corner", 0.0, !overlays);
    describe_corner(definer, kSecondCorner, "second corner", 100.0, !overlays);

    std::vector<std::string> tools{"none"};
    for (const std::size_t n : list.tools()) tools.push_back(list.parameters()[n].label);
    const Properties brush = definer.value(kOfxParamTypeDouble, kBrush, "brush",
                                           "Width and height of a stroke, in pixels of the full frame.");
    brush.set(kOfxParamPropDefault, 15.0);
    brush.set(kOfxParamPropMin, 1.0);
    brush.set(kOfxParamPropMax, 999.0);
    brush.set(kOfxParamPropDisplayMin, 1.0);
    brush.set(kOfxParamPropDisplayMax, 100.0);
    const Properties pen[] = {
        definer.choice(
            kActiveTool, "tool in the viewer",
            "The tool that dragging in the viewer uses. Dots show the samples that it has taken; Delete, "
            "or a click with Control, removes the one under the pointer.",
            tools),
        definer.choice(kShape, "drag", "What dragging in the viewer marks.", {"box", "stroke"}), brush,
        definer.add(
            kOfxParamTypePushButton, kTakeSample, "Take Sample",
            "Looks at what the latest stroke marks, where the host lent no picture while it was drawn.")};
    for (const Properties& p : pen) p.set(kOfxParamPropSecret, overlays ? 0 : 1);
    // Which tool is at hand and what waits for it are no work of the user's.
    pen[0].set(kOfxParamPropCanUndo, 0);
    definer.hidden_text(kPendingStroke).set(kOfxParamPropCanUndo, 0);
    definer.hidden_text(kMarks);
}

}  // namespace

std::vector<std::string> own_members(bool toolbar) {
    if (!toolbar) return {kReport, kView, kSettingsFile, kLoadSettings, kSaveSettings};
    return {kFirstCorner, kSecondCorner, kActiveTool, kShape, kBrush, kTakeSample};
}

void describe_own(OfxParamSetHandle set, const ParameterList& list, const std::vector<std::string>& stages,
                  const std::string& group, bool toolbar) {
    const Definer definer(set, group);
    if (toolbar) {
        describe_sampling(definer, list);
    } else {
        describe_general(definer, stages);
    }
}

OwnParameters::OwnParameters(OfxImageEffectHandle effect) {
    check(suites().effect->getParamSet(effect, &set_), "the effect has no parameters");
    view_ = named(kView);
}

double OwnParameters::number(const char* name, double fallback) const {
    double value = fallback;
    return named(name).get(std::nullopt, &value) ? value : fallback;
}

void OwnParameters::report(const std::string& text) const try {
    set_text(kReport, text);
} catch (const Failure&) {
    return;
}

OfxRectD OwnParameters::sampling_rectangle(OfxTime time) const {
    OfxPointD a{};
    OfxPointD b{};
    named(kFirstCorner).get(time, &a.x, &a.y);
    named(kSecondCorner).get(time, &b.x, &b.y);
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

}  // namespace veloxa::ofx
