#include "Describe.h"

#include "ZoImage/KnobDisplay.h"
#include "host/Host.h"
#include "host/Properties.h"
#include "parameters/Define.h"
#include "parameters/OwnParameters.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

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

}  // namespace

void describe_parameters(OfxParamSetHandle set, const ParameterList& list,
                         const std::vector<std::string>& stages) {
    bool first = true;
    for (const ParameterList::Group& group : list.groups()) {
        define(set, kOfxParamTypeGroup, group.name, group.label).set(kOfxParamPropGroupOpen, first ? 1 : 0);
        if (first || group.toolbar) describe_own(set, list, stages, group.name, group.toolbar);
        first = false;
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
        if (n == 0 || group.toolbar) {
            for (const std::string& name : own_members(group.toolbar)) show(name);
        }
        for (const std::string& name : group.members) show(name);
        Properties(properties).set(kOfxPluginPropParamPageOrder, group.page, n++);
    }
}

}  // namespace veloxa::ofx
