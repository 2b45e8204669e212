// What the plug-in tells of itself, against the node's own panel.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <set>

#include "ofx/Scene.h"

namespace ofxtest {
namespace {

using Describe = OfxTest;
using testing::ElementsAre;
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
    EXPECT_EQ(p.int_at(kOfxImageEffectPropSupportsTiles), 1);
    EXPECT_THAT(p.strings(kOfxImageEffectPropSupportedContexts),
                ElementsAre(kOfxImageEffectContextGeneral, kOfxImageEffectContextFilter));
    EXPECT_EQ(p.string_at(kOfxImageEffectPluginRenderThreadSafety), kOfxImageEffectRenderFullySafe);
    EXPECT_THAT(p.strings(kOfxImageEffectPropSupportedPixelDepths),
                ElementsAre(kOfxBitDepthFloat, kOfxBitDepthShort, kOfxBitDepthByte));
    EXPECT_THAT(p.strings(kOfxImageEffectPropClipPreferencesSlaveParam), ElementsAre("output_mode"));

    std::ifstream icon(std::string(OFX_BUNDLE_DIR) + "/Contents/Resources/org.veloxa.Keyer.png",
                       std::ios::binary);
    std::string signature(4, ' ');
    icon.read(signature.data(), 4);
    EXPECT_EQ(signature, "\x89PNG");
}

TEST_F(Describe, Clips) {
    std::vector<std::string> names;
    for (const auto& clip : host().descriptor(kOfxImageEffectContextGeneral).clips) {
        names.push_back(clip->name());
        const bool matte = clip->name() == "gm" || clip->name() == "hm";
        EXPECT_EQ(clip->props.int_at(kOfxImageClipPropIsMask), matte) << clip->name();
        const bool needed = clip->name() == "fg" || clip->name() == "Output";
        EXPECT_EQ(clip->props.int_at(kOfxImageClipPropOptional), !needed) << clip->name();
    }
    EXPECT_THAT(names, ElementsAre("fg", "cp", "bg", "gm", "hm", "Output"));
    const auto& filter = host_->descriptor(kOfxImageEffectContextFilter).clips;
    ASSERT_EQ(filter.size(), 2U);
    EXPECT_EQ(filter[0]->name(), "Source");
    EXPECT_EQ(filter[1]->name(), "Output");
}

const std::map<Knob::Kind, std::string> kTypes{
    {Knob::Kind::kBool, kOfxParamTypeBoolean},         {Knob::Kind::kFloat, kOfxParamTypeDouble},
    {Knob::Kind::kMenu, kOfxParamTypeChoice},          {Knob::Kind::kColor, kOfxParamTypeRGB},
    {Knob::Kind::kColorAlpha, kOfxParamTypeRGBA},      {Knob::Kind::kWidthHeight, kOfxParamTypeDouble2D},
    {Knob::Kind::kCustom, kOfxParamTypeString},        {Knob::Kind::kScriptButton, kOfxParamTypePushButton},
    {Knob::Kind::kToolButton, kOfxParamTypePushButton}};

TEST_F(Describe, EveryKnobIsAParameter) {
    Reference node({}, {});
    const ParamSet& params = host().descriptor(kOfxImageEffectContextGeneral).params;
    for (const auto& knob : node.panel.knobs()) {
        if (kTypes.count(knob->kind()) == 0) continue;
        SCOPED_TRACE(knob->name());
        const Param& param = params.get(knob->name());
        EXPECT_EQ(param.type(), kTypes.at(knob->kind()));
        const PropertySet& p = param.props;
        const bool list = knob->kind() == Knob::Kind::kCustom;
        EXPECT_EQ(p.int_at(kOfxParamPropSecret), list ? 1 : 0);
        if (!param.holds_value() || list) continue;
        EXPECT_EQ(p.string_at(kOfxPropLabel), knob->label());
        EXPECT_EQ(p.string_at(kOfxParamPropHint).substr(0, 8), knob->tooltip().substr(0, 8));
        // What the clips are must not change with time.
        const bool fixed = knob->name() == "output_mode";
        EXPECT_EQ(p.int_at(kOfxParamPropAnimates), fixed ? 0 : 1);
        if (knob->kind() == Knob::Kind::kMenu) {
            EXPECT_EQ(p.strings(kOfxParamPropChoiceOption), knob->items());
        }
        for (int i = 0; i < param.dimension(); ++i) {
            const double value =
                param.is_int() ? p.int_at(kOfxParamPropDefault, i) : p.double_at(kOfxParamPropDefault, i);
            EXPECT_EQ(value, shortest(knob->default_value(i)));
            if (!p.has(kOfxParamPropDisplayMin) || !knob->range()) continue;
            EXPECT_EQ(p.double_at(kOfxParamPropDisplayMin, i), knob->range()->low);
            EXPECT_EQ(p.double_at(kOfxParamPropDisplayMax, i), knob->range()->high);
            EXPECT_LE(p.double_at(kOfxParamPropMin, i), knob->range()->low);
        }
    }
}

// What the user sees and uses.
bool is_control(const Param& param) {
    return (param.holds_value() || param.type() == kOfxParamTypePushButton) &&
           param.props.int_at(kOfxParamPropSecret) == 0;
}

TEST_F(Describe, NamesHintsAndParents) {
    const Effect& effect = host().descriptor(kOfxImageEffectContextGeneral);
    std::set<std::string> groups;
    for (const auto& param : effect.params.all()) {
        const std::string& name = param->name();
        EXPECT_TRUE(std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < 127; })) << name;
        const std::string& parent = param->props.string_at(kOfxParamPropParent);
        EXPECT_TRUE(parent.empty() || groups.count(parent) == 1) << name << " before its group " << parent;
        if (param->type() == kOfxParamTypeGroup) groups.insert(name);
        EXPECT_NE(param->props.string_at(kOfxParamPropHint).empty(), is_control(*param)) << name;
        for (const std::string& child : param->props.strings(kOfxParamPropPageChild))
            effect.params.get(child);
    }
    EXPECT_EQ(effect.params.get("toolbar_screen").props.string_at(kOfxPropLabel), "screen");
    EXPECT_EQ(effect.params.get("toolbar_addmatte").props.string_at(kOfxPropLabel), "matte: add");
}

// The labels that a user finds each control under, by its name, in a host of a kind: one that makes tabs of
// pages, each with the groups that it names and what it names that is in none; one whose pages hold
// parameters alone; one that has groups and no pages.
using Layout = std::map<std::string, std::vector<std::string>>;
enum Kind { kTabs, kPages, kGroups };

Layout layout(const Effect& effect, Kind kind) {
    Layout places;
    for (const auto& param : effect.params.all()) {
        if (!is_control(*param)) continue;
        const std::string& group = param->props.string_at(kOfxParamPropParent);
        std::vector<std::string>& labels = places[param->name()];
        if (kind == kGroups) labels.push_back(effect.params.get(group).props.string_at(kOfxPropLabel));
        for (const std::string& name : effect.props.strings(kOfxPluginPropParamPageOrder)) {
            const PropertySet& page = effect.params.get(name).props;
            const auto children = page.strings(kOfxParamPropPageChild);
            const bool alone = kind == kPages || group.empty();
            const auto times = std::count(children.begin(), children.end(), alone ? param->name() : group);
            if (kind != kGroups) labels.insert(labels.end(), times, page.string_at(kOfxPropLabel));
        }
    }
    return places;
}

TEST_F(Describe, WhereUsersFindTheControls) {
    Layout once{{"sampling_first_corner", {"Sampling"}},
                {"sampling_second_corner", {"Sampling"}},
                {"screen_correct_reset", {"Screen Correct"}},
                {"spill_reset", {"Spill"}},
                {"find_screen", {"Sampling"}},
                {"set_up", {"Sampling"}}};
    Layout with_enables = once;  // a page repeats what switches it on
    Reference node({}, {});
    for (const auto& knob : node.panel.knobs()) {
        const std::string tab = knob->tab() == "veloxa_toolbar" ? "Sampling" : knob->tab();
        if (!knob->visible() || kTypes.count(knob->target().kind()) == 0) continue;
        if (knob->kind() != Knob::Kind::kLink) once[knob->name()].push_back(tab);
        with_enables[knob->target().name()].push_back(tab);
    }
    const Effect& effect = host().descriptor(kOfxImageEffectContextGeneral);
    EXPECT_EQ(layout(effect, kTabs), once);
    EXPECT_EQ(layout(effect, kPages), with_enables);
    EXPECT_EQ(layout(effect, kGroups), once);
    const Effect& strict = host({.refused_children = {"group_density", "group_output"}})
                               .descriptor(kOfxImageEffectContextGeneral);
    EXPECT_EQ(layout(strict, kPages), with_enables);
}

}  // namespace
}  // namespace ofxtest
