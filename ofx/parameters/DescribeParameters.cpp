#include "Describe.h"

#include "host/Host.h"
#include "parameters/ParameterSet.h"
#include "host/Properties.h"
#include "ZoImage/KnobDisplay.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// Without properties where the host does not know the type.
Properties define(OfxParamSetHandle set, const char* type, const std::string& name,
                  const std::string& label) {
    OfxPropertySetHandle properties = nullptr;
    const OfxStatus status = suites().parameter->paramDefine(set, type, name.c_str(), &properties);
    if (status == kOfxStatErrUnknown || status == kOfxStatErrUnsupported) return Properties(nullptr);
    check(status, "a parameter could not be defined");
    const Properties p(properties);
    p.set(kOfxPropLabel, label);
    p.set(kOfxParamPropScriptName, name);
    return p;
}

bool host_can(const char* property) {
    return Properties(host_properties()).integer(property) != 0;
}

// The knob's range guides sliders and forbids nothing.
void describe_numbers(const Properties& p, const Knob& knob) {
    const KnobRange range = knob.range().value_or(KnobRange{0.0, 1.0});
    constexpr double kLargest = 3.4e38;  // as good as any float
    const int count = knob.value_count();
    for (int i = 0; i < count; ++i) p.set(kOfxParamPropDefault, shown(knob, knob.default_value(i)), i);
    for (int i = 0; i < count; ++i) p.set(kOfxParamPropMin, -kLargest, i);
    for (int i = 0; i < count; ++i) p.set(kOfxParamPropMax, kLargest, i);
    for (int i = 0; i < count; ++i) p.set(kOfxParamPropDisplayMin, range.low, i);
    for (int i = 0; i < count; ++i) p.set(kOfxParamPropDisplayMax, range.high, i);
    const bool fine = range.high - range.low <= 1.0;
    if (knob.kind() == Knob::Kind::kFloat || knob.kind() == Knob::Kind::kWidthHeight) {
        p.set(kOfxParamPropIncrement, fine ? 0.01 : 1.0);
        p.set(kOfxParamPropDigits, fine ? 3 : 2);
    }
    p.set(kOfxParamPropAnimates, 1);
}

void describe_parameter(OfxParamSetHandle set, const Parameter& parameter, const std::string& group) {
    const Knob& knob = *parameter.knob;
    const Properties p = define(set, parameter.type, parameter.name, parameter.label);
    p.set(kOfxParamPropHint, plain_text(knob.tooltip()));
    if (!group.empty()) p.set(kOfxParamPropParent, group);
    if (!knob.visible()) p.set(kOfxParamPropSecret, 1);
    switch (knob.kind()) {
        case Knob::Kind::kBool:
            p.set(kOfxParamPropDefault, knob.default_value() != 0.0 ? 1 : 0);
            p.set(kOfxParamPropAnimates, host_can(kOfxParamHostPropSupportsBooleanAnimation) ? 1 : 0);
            break;
        case Knob::Kind::kMenu: {
            int n = 0;
            for (const std::string& item : knob.items()) p.set(kOfxParamPropChoiceOption, item, n++);
            p.set(kOfxParamPropDefault, static_cast<int>(knob.default_value()));
            // What the clips are must not change with time.
            const bool fixed = knob.name() == kOutputMode;
            const bool animates = !fixed && host_can(kOfxParamHostPropSupportsChoiceAnimation);
            p.set(kOfxParamPropAnimates, animates ? 1 : 0);
            break;
        }
        case Knob::Kind::kWidthHeight:
            p.set(kOfxParamPropDimensionLabel, "w", 0);
            p.set(kOfxParamPropDimensionLabel, "h", 1);
            describe_numbers(p, knob);
            break;
        case Knob::Kind::kCustom:
            p.set(kOfxParamPropDefault, "");
            p.set(kOfxParamPropAnimates, 0);
            break;
        default:
            if (!parameter.is_button()) describe_numbers(p, knob);
            break;
    }
}

void describe_corner(OfxParamSetHandle set, const char* name, const char* label, double place,
                     const std::string& group) {
    const Properties p = define(set, kOfxParamTypeDouble2D, name, label);
    p.set(kOfxParamPropHint, "Corner of the rectangle that the sampling tools look at.");
    p.set(kOfxParamPropParent, group);
    p.set(kOfxParamPropDoubleType, kOfxParamDoubleTypeXYAbsolute);
    p.set(kOfxParamPropDefaultCoordinateSystem, kOfxParamCoordinatesCanonical);
    for (int i = 0; i < 2; ++i) p.set(kOfxParamPropDefault, place, i);
    for (int i = 0; i < 2; ++i) p.set(kOfxParamPropDisplayMin, 0.0, i);
    for (int i = 0; i < 2; ++i) p.set(kOfxParamPropDisplayMax, 4096.0, i);
    p.set(kOfxParamPropUseHostOverlayHandle, 1);
    p.set(kOfxParamPropAnimates, 0);
    p.set(kOfxParamPropEvaluateOnChange, 0);
}

}  // namespace

void describe_parameters(OfxParamSetHandle set, const ParameterList& list) {
    bool first = true;
    for (const ParameterList::Group& group : list.groups()) {
        define(set, kOfxParamTypeGroup, group.name, group.label).set(kOfxParamPropGroupOpen, first ? 1 : 0);
        first = false;
        if (!group.toolbar) continue;
        describe_corner(set, kFirstCorner, "first corner", 0.0, group.name);
        describe_corner(set, kSecondCorner, "second corner", 100.0, group.name);
    }
    for (const Parameter& parameter : list.parameters()) {
        const bool grouped = parameter.group != Parameter::kNoGroup;
        describe_parameter(set, parameter, grouped ? list.groups()[parameter.group].name : "");
    }

    // A page names its group and the group's members: hosts that make tabs of pages show groups there, and
    // no parameter whose group is not there; those that know parameters alone on a page skip the group.
    OfxPropertySetHandle properties = nullptr;
    check(suites().parameter->paramSetGetPropertySet(set, &properties));
    int n = 0;
    for (const ParameterList::Group& group : list.groups()) {
        const Properties page = define(set, kOfxParamTypePage, group.page, group.label);
        int child = 0;
        // A name that is refused leaves no gap.
        const auto show = [&](const std::string& name) {
            if (page.set(kOfxParamPropPageChild, name, child)) ++child;
        };
        show(group.name);
        if (group.toolbar) {
            show(kFirstCorner);
            show(kSecondCorner);
        }
        for (const std::string& name : group.members) show(name);
        Properties(properties).set(kOfxPluginPropParamPageOrder, group.page, n++);
    }
}

}  // namespace veloxa::ofx
