// What the plug-in tells of itself, against the node's own panel.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <set>

#include "ofx/Scene.h"

namespace ofxtest {
namespace {

using Describe = OfxTest;
using testing::Contains;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using Zo::Image::Knob;

TEST_F(Describe, ThePlugin) {
    Host& h = host();
    EXPECT_EQ(h.plugin_count(), 1);
    EXPECT_FALSE(h.has_plugin(1));
    EXPECT_FALSE(h.has_plugin(-1));
    EXPECT_STREQ(h.plugin().pluginApi, kOfxImageEffectPluginApi);
    EXPECT_EQ(h.plugin().apiVersion, kOfxImageEffectPluginApiVersion);
    EXPECT_STREQ(h.plugin().pluginIdentifier, "org.veloxa.Keyer");

    const PropertySet& p = h.descriptor().props;
    ASSERT_GE(p.size(kOfxPropVersion), 2);
    EXPECT_EQ(p.int_at(kOfxPropVersion, 0), static_cast<int>(h.plugin().pluginVersionMajor));
    EXPECT_EQ(p.int_at(kOfxPropVersion, 1), static_cast<int>(h.plugin().pluginVersionMinor));
    EXPECT_EQ(p.string_at(kOfxPropLabel), "Veloxa");
    EXPECT_EQ(p.string_at(kOfxImageEffectPluginRenderThreadSafety), kOfxImageEffectRenderFullySafe);
    EXPECT_EQ(p.int_at(kOfxImageEffectPropSupportsTiles), 1);
    EXPECT_THAT(p.strings(kOfxImageEffectPropSupportedContexts),
                UnorderedElementsAre(kOfxImageEffectContextGeneral, kOfxImageEffectContextFilter));
    EXPECT_THAT(p.strings(kOfxImageEffectPropSupportedPixelDepths),
                UnorderedElementsAre(kOfxBitDepthFloat, kOfxBitDepthShort, kOfxBitDepthByte));
    EXPECT_THAT(p.strings(kOfxImageEffectPropClipPreferencesSlaveParam),
                ElementsAre("output_mode", "overlay_mode"));

    std::ifstream icon(std::string(OFX_BUNDLE_DIR) + "/Contents/Resources/org.veloxa.Keyer.png",
                       std::ios::binary);
    std::string signature(4, ' ');
    icon.read(signature.data(), 4);
    EXPECT_EQ(signature, "\x89PNG");
}

TEST_F(Describe, Clips) {
    Host& h = host();
    const std::vector<std::string> general{"fg", "cp", "bg", "gm", "hm", "Output"};
    std::vector<std::string> names;
    for (const auto& clip : h.descriptor(kOfxImageEffectContextGeneral).clips) {
        const std::string& name = clip->name();
        names.push_back(name);
        const bool matte = name == "gm" || name == "hm";
        EXPECT_EQ(clip->props.int_at(kOfxImageClipPropOptional), name != "fg" && name != "Output") << name;
        EXPECT_EQ(clip->props.int_at(kOfxImageClipPropIsMask), matte) << name;
        const auto components = clip->props.strings(kOfxImageEffectPropSupportedComponents);
        EXPECT_THAT(components, Contains(kOfxImageComponentRGBA)) << name;
        EXPECT_THAT(components, Contains(kOfxImageComponentRGB)) << name;
        if (matte) {
            EXPECT_THAT(components, Contains(kOfxImageComponentAlpha)) << name;
        }
    }
    EXPECT_EQ(names, general);
    const auto& filter = h.descriptor(kOfxImageEffectContextFilter).clips;
    ASSERT_EQ(filter.size(), 2U);
    EXPECT_EQ(filter[0]->name(), "Source");
    EXPECT_EQ(filter[1]->name(), "Output");
}

const char* type_for(Knob::Kind kind) {
    switch (kind) {
        case Knob::Kind::kBool:
            return kOfxParamTypeBoolean;
        case Knob::Kind::kFloat:
            return kOfxParamTypeDouble;
        case Knob::Kind::kMenu:
            return kOfxParamTypeChoice;
        case Knob::Kind::kColor:
            return kOfxParamTypeRGB;
        case Knob::Kind::kColorAlpha:
            return kOfxParamTypeRGBA;
        case Knob::Kind::kWidthHeight:
            return kOfxParamTypeDouble2D;
        case Knob::Kind::kCustom:
            return kOfxParamTypeString;
        case Knob::Kind::kButton:
        case Knob::Kind::kScriptButton:
        case Knob::Kind::kToolButton:
            return kOfxParamTypePushButton;
        default:
            return nullptr;
    }
}

TEST_F(Describe, EveryKnobIsAParameter) {
    Reference node({}, {});
    for (const char* context : {kOfxImageEffectContextGeneral, kOfxImageEffectContextFilter}) {
        const ParamSet& params = host().descriptor(context).params;
        std::size_t buttons = 0;
        for (const auto& knob : node.panel.knobs()) {
            const char* type = type_for(knob->kind());
            if (type == nullptr) continue;
            if (type == std::string(kOfxParamTypePushButton)) ++buttons;
            if (knob->kind() == Knob::Kind::kButton) continue;  // several have one name
            const Param* param = params.find(knob->name());
            ASSERT_NE(param, nullptr) << knob->name();
            SCOPED_TRACE(knob->name());
            EXPECT_EQ(param->type(), type);
            const PropertySet& p = param->props;
            const bool list = knob->kind() == Knob::Kind::kCustom;
            EXPECT_EQ(p.int_at(kOfxParamPropSecret), list ? 1 : 0);
            if (!param->holds_value() || list) continue;
            EXPECT_EQ(p.string_at(kOfxPropLabel), knob->label());
            EXPECT_EQ(p.string_at(kOfxParamPropHint).substr(0, 8), knob->tooltip().substr(0, 8));
            // What the clips are must not change with time.
            const bool fixed = knob->name() == "output_mode" || knob->name() == "overlay_mode";
            EXPECT_EQ(p.int_at(kOfxParamPropAnimates), fixed ? 0 : 1);
            if (knob->kind() == Knob::Kind::kMenu) {
                EXPECT_EQ(p.strings(kOfxParamPropChoiceOption), knob->items());
            }
            for (int i = 0; i < param->dimension(); ++i) {
                const double value = param->is_int() ? p.int_at(kOfxParamPropDefault, i)
                                                     : p.double_at(kOfxParamPropDefault, i);
                EXPECT_EQ(value, shortest(knob->default_value(i)));
                if (!p.has(kOfxParamPropDisplayMin) || !knob->range()) continue;
                EXPECT_EQ(p.double_at(kOfxParamPropDisplayMin, i), knob->range()->low);
                EXPECT_EQ(p.double_at(kOfxParamPropDisplayMax, i), knob->range()->high);
                EXPECT_LE(p.double_at(kOfxParamPropMin, i), knob->range()->low);
            }
        }
        const auto is_button = [](const auto& p) { return p->type() == kOfxParamTypePushButton; };
        EXPECT_EQ(std::count_if(params.all().begin(), params.all().end(), is_button),
                  static_cast<std::ptrdiff_t>(buttons));
    }
}

// What the user sees and uses.
bool is_control(const Param& param) {
    return (param.holds_value() || param.type() == kOfxParamTypePushButton) &&
           param.props.int_at(kOfxParamPropSecret) == 0;
}

TEST_F(Describe, NamesHintsParentsAndPages) {
    const Effect& effect = host().descriptor(kOfxImageEffectContextGeneral);
    std::set<std::string> groups;
    std::vector<std::string> pages;
    for (const auto& param : effect.params.all()) {
        const std::string& name = param->name();
        EXPECT_TRUE(std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < 127; })) << name;
        const std::string& parent = param->props.string_at(kOfxParamPropParent);
        EXPECT_TRUE(parent.empty() || groups.count(parent) == 1) << name << " before its group " << parent;
        if (param->type() == kOfxParamTypeGroup) groups.insert(name);
        if (is_control(*param)) {
            EXPECT_NE(param->props.string_at(kOfxParamPropHint), "") << name;
        }
        if (param->type() == kOfxParamTypePage) pages.push_back(name);
    }
    EXPECT_EQ(effect.props.strings(kOfxPluginPropParamPageOrder), pages);
    EXPECT_EQ(effect.params.get("toolbar_screen").props.string_at(kOfxPropLabel), "screen");
    EXPECT_EQ(effect.params.get("toolbar_addmatte").props.string_at(kOfxPropLabel), "matte: add");
}

// The labels that a user finds each parameter under, by its name.
using Layout = std::map<std::string, std::vector<std::string>>;
enum class Panel {
    kTabs,    // made of pages: groups with their members, and parameters that are in no group
    kPages,   // parameters alone
    kGroups,  // and no pages
};

Layout layout(const Effect& effect, Panel panel) {
    Layout places;
    const auto show = [&](const Param& param, const std::string& label) {
        if (is_control(param)) places[param.name()].push_back(label);
    };
    const auto show_group = [&](const std::string& group, const std::string& label) {
        for (const auto& param : effect.params.all()) {
            if (param->props.string_at(kOfxParamPropParent) == group) show(*param, label);
        }
    };
    const bool paged = panel != Panel::kGroups;
    if (!paged) show_group("", "");
    for (const auto& param : effect.params.all()) {
        const std::string& label = param->props.string_at(kOfxPropLabel);
        if (!paged && param->type() == kOfxParamTypeGroup) show_group(param->name(), label);
        if (!paged || param->type() != kOfxParamTypePage) continue;
        for (const std::string& name : param->props.strings(kOfxParamPropPageChild)) {
            const Param& child = effect.params.get(name);
            const bool grouped = !child.props.string_at(kOfxParamPropParent).empty();
            if (panel == Panel::kPages || !grouped) show(child, label);
            if (panel == Panel::kTabs && child.type() == kOfxParamTypeGroup) show_group(name, label);
        }
    }
    return places;
}

TEST_F(Describe, WhereUsersFindTheControls) {
    Layout once{{"sampling_first_corner", {"Sampling"}},
                {"sampling_second_corner", {"Sampling"}},
                {"screen_correct_reset", {"Screen Correct"}},
                {"spill_reset", {"Spill"}}};
    Layout with_enables = once;  // a page repeats what switches it on
    Reference node({}, {});
    for (const auto& knob : node.panel.knobs()) {
        const std::string tab = knob->tab() == "veloxa_toolbar" ? "Sampling" : knob->tab();
        const bool link = knob->kind() == Knob::Kind::kLink;
        if (!knob->visible() || knob->kind() == Knob::Kind::kButton) continue;
        if (!link && type_for(knob->kind()) == nullptr) continue;
        if (!link) once[knob->name()].push_back(tab);
        with_enables[knob->target().name()].push_back(tab);
    }
    for (const bool strict : {false, true}) {
        const Effect& effect = host({.strict_pages = strict}).descriptor(kOfxImageEffectContextGeneral);
        EXPECT_EQ(layout(effect, Panel::kPages), with_enables);
        EXPECT_EQ(layout(effect, Panel::kGroups), once);
        if (!strict) {
            EXPECT_EQ(layout(effect, Panel::kTabs), once);
        }
    }
}

}  // namespace
}  // namespace ofxtest
