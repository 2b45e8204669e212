// What the plug-in tells of itself.
#include <gmock/gmock.h>

#include <fstream>

#include "ofx/Scene.h"

namespace ofxtest {
namespace {

using Describe = OfxTest;
using testing::Contains;
using testing::ElementsAre;
using Strings = std::vector<std::string>;

TEST_F(Describe, ThePlugin) {
    Host& h = host();
    EXPECT_EQ(h.count(), 1);
    EXPECT_EQ(h.plugin(1), nullptr);
    EXPECT_EQ(h.plugin(-1), nullptr);
    EXPECT_STREQ(h.plugin(0)->pluginApi, kOfxImageEffectPluginApi);
    EXPECT_EQ(h.plugin(0)->apiVersion, kOfxImageEffectPluginApiVersion);
    EXPECT_STREQ(h.plugin(0)->pluginIdentifier, "org.veloxa.Keyer");

    const PropertySet& p = h.descriptor().props;
    EXPECT_EQ(p.int_at(kOfxPropVersion, 0), static_cast<int>(h.plugin(0)->pluginVersionMajor));
    EXPECT_EQ(p.int_at(kOfxPropVersion, 1), static_cast<int>(h.plugin(0)->pluginVersionMinor));
    EXPECT_EQ(p.int_at(kOfxImageEffectPropSupportsTiles), 1);
    EXPECT_EQ(p.string_at(kOfxPropLabel), "Veloxa");
    EXPECT_EQ(p.string_at(kOfxImageEffectPluginRenderThreadSafety), kOfxImageEffectRenderFullySafe);
    EXPECT_THAT(p.strings(kOfxImageEffectPropSupportedPixelDepths),
                ElementsAre(kOfxBitDepthFloat, kOfxBitDepthShort, kOfxBitDepthByte, kOfxBitDepthHalf));

    std::ifstream icon(OFX_BUNDLE_DIR "/Contents/Resources/org.veloxa.Keyer.png", std::ios::binary);
    std::string signature(4, ' ');
    icon.read(signature.data(), 4);
    EXPECT_EQ(signature, "\x89PNG");
}

TEST_F(Describe, Clips) {
    const auto clips = [&](const char* context) {
        Strings told;
        for (const auto& clip : host_->descriptor(context).clips) {
            const bool optional = clip->props.int_at(kOfxImageClipPropOptional) != 0;
            const bool mask = clip->props.int_at(kOfxImageClipPropIsMask) != 0;
            told.push_back(clip->name + (optional ? " optional" : "") + (mask ? " mask" : ""));
        }
        return told;
    };
    host();
    EXPECT_THAT(
        clips(kOfxImageEffectContextGeneral),
        ElementsAre("fg", "cp optional", "bg optional", "gm optional mask", "hm optional mask", "Output"));
    EXPECT_THAT(clips(kOfxImageEffectContextFilter), ElementsAre("Source", "Output"));
}

// The labels that a user finds a control under in a host whose pages hold parameters alone; or in one that
// makes tabs of pages, each with the groups that it names and what it names that is in none.
Strings places(const Effect& effect, const Param& param, bool tabs = false) {
    Strings labels;
    const std::string& group = param.props.string_at(kOfxParamPropParent);
    for (const std::string& name : effect.props.strings(kOfxPluginPropParamPageOrder)) {
        const PropertySet& page = effect.params.get(name).props;
        const auto children = page.strings(kOfxParamPropPageChild);
        for (const std::string& child : children) effect.params.get(child);
        const bool alone = !tabs || group.empty();
        const auto times = std::count(children.begin(), children.end(), alone ? param.name : group);
        labels.insert(labels.end(), times, page.string_at(kOfxPropLabel));
    }
    return labels;
}

// A parameter in a line: type, label, default, the slider's range, options, pages, whether it animates.
std::string line_of(const Effect& effect, const Param& param) {
    const PropertySet& p = param.props;
    std::ostringstream line;
    line << param.type.substr(12) << " '" << p.string_at(kOfxPropLabel) << "'";
    for (int i = 0; i < param.dimension && !param.is_text(); ++i)
        line << ' '
             << (param.is_int() ? p.int_at(kOfxParamPropDefault) : p.double_at(kOfxParamPropDefault, i));
    for (int i = 0; p.has(kOfxParamPropDisplayMin) && i < param.dimension; ++i) {
        const double low = p.double_at(kOfxParamPropDisplayMin, i);
        line << ' ' << low << ".." << p.double_at(kOfxParamPropDisplayMax, i);
        EXPECT_LE(p.double_at(kOfxParamPropMin, i), low);
    }
    for (const std::string& option : p.strings(kOfxParamPropChoiceOption)) line << ' ' << option;
    for (const std::string& page : places(effect, param)) line << ", " << page;
    if (param.holds_value() && p.int_at(kOfxParamPropAnimates) != 0) line << ", animates";
    return line.str() + (p.int_at(kOfxParamPropSecret) != 0 ? " hidden" : "");
}

// One of each kind and peculiarity. What the clips are must not change with time.
TEST_F(Describe, Parameters) {
    const std::pair<const char*, const char*> lines[] = {
        {"screen_color", "RGB 'screen color' 0 0 0 0..1 0..1 0..1, Veloxa, animates"},
        {"overlay_color", "RGBA 'overlay color' 0.58 0.07 0.22 0.5 0..1 0..1 0..1 0..1, Veloxa, animates"},
        {"screen_correct", "Boolean 'screen correct' 1, Veloxa, Screen Correct, animates"},
        {"overlay_mode", "Choice 'overlay' 0 off screen subject, Veloxa, Sampling, animates"},
        {"output_mode", "Choice 'output mode' 0 composite premultiplied unpremultiplied, Veloxa"},
        {"edge_kernel", "Double 'edge kernel' 0 0..21, Density, animates"},
        {"shadows_high", "Double 'high' 1 0..1, Shadows, animates"},
        {"warm", "Double 'warm' 0 -1000..1000, Density, animates"},
        {"film_shrink", "Double2D 'shrink' 2 2 0..21 0..21, Film, animates"},
        {"sampling_second_corner", "Double2D 'second corner' 100 100 0..4096 0..4096, Sampling"},
        {"screen_correct_reset", "PushButton 'reset', Screen Correct"},
        {"spill_reset", "PushButton 'reset', Spill"},
        {"toolbar_screen", "PushButton 'screen', Sampling"},
        {"toolbar_addmatte", "PushButton 'matte: add', Sampling"},
        {"us_add_overlay", "String 'us_add_overlay' hidden"}};
    const Effect& effect = host().descriptor(kOfxImageEffectContextGeneral);
    for (const auto& [name, line] : lines) EXPECT_EQ(line_of(effect, effect.params.get(name)), line) << name;
    Reference node({}, {});
    for (const auto& knob : node.panel.knobs()) {
        if (knob->takes_value() && knob->kind() != Zo::Image::Knob::Kind::kLink)
            effect.params.get(knob->name());
    }
}

TEST_F(Describe, WhereUsersFindTheControls) {
    std::map<std::string, Strings> pages;
    Strings groups;
    const Effect& effect = host().descriptor(kOfxImageEffectContextGeneral);
    for (const auto& param : effect.params.all) {
        const std::string& name = param->name;
        SCOPED_TRACE(name);
        EXPECT_TRUE(std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < 127; }));
        if (param->type == kOfxParamTypeGroup) groups.push_back(name);
        // What the user neither sees nor uses has no place.
        const bool used = param->holds_value() || param->type == kOfxParamTypePushButton;
        if (!used || param->props.int_at(kOfxParamPropSecret) != 0) continue;
        EXPECT_NE(param->props.string_at(kOfxParamPropHint), "");
        const std::string& group = param->props.string_at(kOfxParamPropParent);
        EXPECT_EQ(std::count(groups.begin(), groups.end(), group), 1) << "comes before its group";
        const std::string label = effect.params.get(group).props.string_at(kOfxPropLabel);
        EXPECT_THAT(places(effect, *param, true), ElementsAre(label));
        pages[name] = places(effect, *param);
        EXPECT_THAT(pages[name], Contains(label));
    }
    for (const char* button : {"find_screen", "set_up"}) EXPECT_THAT(pages[button], ElementsAre("Sampling"));
    const HostOptions strict{.refused_children = {"group_density", "group_output"}};
    const Effect& other = host(strict).descriptor(kOfxImageEffectContextGeneral);
    for (const auto& [name, labels] : pages) EXPECT_EQ(places(other, other.params.get(name)), labels) << name;
}

}  // namespace
}  // namespace ofxtest
