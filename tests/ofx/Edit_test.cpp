// What becomes of the parameters when the user changes, presses, samples, undoes and saves.
#include <gmock/gmock.h>

#include <sstream>

#include "ofx/Scene.h"
#include "ofx/host/Services.h"

namespace ofxtest {
namespace {

using Edit = OfxTest;
using Zo::Image::Knob;

// Every parameter that holds a value has that of its knob.
void expect_same(const Instance& instance, const Zo::Image::KnobPanel& panel) {
    for (const auto& knob : panel.knobs()) {
        if (!knob->takes_value() || knob->kind() == Knob::Kind::kLink) continue;
        const Param* param = instance.params.find(knob->name());
        if (param == nullptr || !param->holds_value()) continue;
        const Param::Content content = param->value();
        if (param->is_text()) {
            std::ostringstream text;
            knob->to_script(text, false);
            const bool empty = content.text.empty() && !knob->differs_from_default();
            EXPECT_TRUE(empty || content.text == text.str()) << knob->name() << ": " << content.text;
            continue;
        }
        for (int i = 0; i < param->dimension(); ++i)
            EXPECT_EQ(content.numbers[static_cast<std::size_t>(i)], shortest(knob->get_value(i)))
                << knob->name();
    }
}

void point(Instance& instance, const OfxRectI& r) {
    // Any two opposite corners.
    instance.set("sampling_first_corner", {static_cast<double>(r.x1), static_cast<double>(r.y2)});
    instance.set("sampling_second_corner", {static_cast<double>(r.x2), static_cast<double>(r.y1)});
}

void stroke(Reference& node, const char* tool, const OfxRectI& r) {
    Knob& button = node.panel.get(tool);
    button.set_value(r.x1, 4);
    button.set_value(r.y1, 5);
    button.set_value(r.x2, 6);
    button.set_value(r.y2, 7);
    button.activate();
    button.changed();
}

TEST_F(Edit, ToolsSetParametersInOneUndoableStep) {
    const struct {
        const char* tool;
        OfxRectI box;
        const char* sets;
    } strokes[] = {
        {"toolbar_screen", kBacking, "screen_color"},
        {"toolbar_addoverlay", kShade, "us_add_overlay"},
        {"toolbar_removeoverlay", {30, 20, 38, 28}, "us_remove_ovelray"},
        {"toolbar_addmatte", {32, 22, 36, 26}, nullptr},
        {"toolbar_removenoise", {-4, 30, 4, 38}, "cleanup"},
        {"toolbar_restorespill", {30, 20, 38, 28}, "us_restore_spill"},
        {"toolbar_matchcolor", {30, 20, 38, 28}, nullptr},
        {"toolbar_matchshadow", kShade, "shadows_tint"},
        {"toolbar_holdShadow", kShade, nullptr},
    };
    const Settings settings{{"screen_color", {0.2, 0.5, 0.2}}};
    const auto effect = instance(two_clips(), settings);
    Reference node(two_clips(), settings);
    for (const auto& s : strokes) {
        SCOPED_TRACE(s.tool);
        point(*effect, s.box);
        const Host::Values before = effect->saved();
        effect->params.undo.clear();
        effect->press(s.tool);
        EXPECT_EQ(Image::held, 0);
        stroke(node, s.tool, s.box);
        expect_same(*effect, node.panel);
        EXPECT_LE(effect->params.undo.size(), 1U);
        if (s.sets == nullptr) continue;
        const Host::Values after = effect->saved();
        EXPECT_NE(after.at(s.sets), before.at(s.sets));
        ASSERT_EQ(effect->params.undo.size(), 1U);
        effect->undo();
        EXPECT_EQ(effect->saved(), before);
        // Again, so that the node in the plug-in has to have followed the undo.
        effect->press(s.tool);
        EXPECT_EQ(effect->saved(), after);
    }
    node.node.invalidate();
    EXPECT_EQ(differences(effect->render(), node.render()), 0);
    services().take_messages();  // remarks on samples
}

TEST_F(Edit, Buttons) {
    const auto effect = instance(two_clips(), {{"screen_color", kScreen}});
    effect->press("invert");
    EXPECT_EQ(effect->params.get("overlay_mono").value().numbers[0], 1.0);
    effect->press("invert");
    EXPECT_EQ(effect->params.get("overlay_mono").value().numbers[0], 0.0);

    effect->set("screen_darks_red_larger", {20});
    effect->set("spill_strength", {10});
    point(*effect, kShade);
    effect->press("toolbar_addoverlay");
    effect->params.undo.clear();
    effect->press("screen_correct_reset");
    EXPECT_EQ(effect->params.get("screen_darks_red_larger").value().numbers[0], 0.0);
    EXPECT_EQ(effect->params.get("us_add_overlay").value().text.find("us"), std::string::npos);
    EXPECT_EQ(effect->params.get("spill_strength").value().numbers[0], 10.0);
    EXPECT_EQ(effect->params.undo.size(), 1U);
    effect->press("spill_reset");
    EXPECT_EQ(effect->params.get("spill_strength").value().numbers[0], 40.0);
    services().take_messages();
}

TEST_F(Edit, ToolsKeyWhatIsAnimated) {
    const auto effect = instance(two_clips(), {});
    Param& color = effect->params.get("screen_color");
    color.set_key(0, {0.1, 0.5, 0.1});
    color.set_key(8, {0.3, 0.8, 0.3});
    const Host::Values before = effect->saved();
    services().time = 3.0;
    point(*effect, kBacking);
    effect->params.undo.clear();
    effect->press("toolbar_screen");
    Reference node(two_clips(), {}, 3.0);
    stroke(node, "toolbar_screen", kBacking);
    auto keys = before.at("screen_color").keys;
    for (int i = 0; i < 3; ++i) keys[3.0].push_back(shortest(node.panel.get("screen_color").get_value(i)));
    EXPECT_EQ(color.content().keys, keys);
    const Frame frame = effect->render(6.0);
    const auto loaded = instance(two_clips(), {}, kOfxImageEffectContextGeneral, effect->saved());
    EXPECT_EQ(differences(loaded->render(6.0), frame), 0);
    effect->undo();
    EXPECT_EQ(color.content().keys, before.at("screen_color").keys);
}

TEST_F(Edit, ToolsOnAProxyOfOblongPixels) {
    Clips clips = two_clips();
    for (auto& [name, source] : clips) source.aspect = 2.0;
    const auto effect = instance(clips, {{"edge_kernel", {5}}});
    const Host::Values before = effect->saved();
    effect->viewer_scale = 0.5;
    Reference node(clips, {}, 0.0, 0.5);
    for (const char* tool : {"toolbar_screen", "toolbar_addoverlay"}) {
        const OfxRectI box = tool == std::string("toolbar_screen") ? OfxRectI{-3, 2, 4, 8} : kShade;
        point(*effect, {box.x1 * 4, box.y1 * 2, box.x2 * 4, box.y2 * 2});
        effect->press(tool);
        stroke(node, tool, box);
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(effect->params.get("screen_color").value().numbers[static_cast<std::size_t>(i)],
                  shortest(node.panel.get("screen_color").get_value(i)));
    }
    std::ostringstream samples;
    node.panel.get("us_add_overlay").to_script(samples, false);
    const Host::Values after = effect->saved();
    EXPECT_EQ(after.at("us_add_overlay").text, samples.str());
    for (const char* size : {"edge_kernel", "screen_shrink", "cleanup_shrink", "cleanup_blur"})
        EXPECT_EQ(after.at(size), before.at(size)) << size;
    services().take_messages();
}

// As the program does: one reference presses the buttons of the node itself.
TEST_F(Edit, FindsTheScreenAndSetsItselfUp) {
    for (const char* button : {"find_screen", "set_up"}) {
        SCOPED_TRACE(button);
        const auto effect = instance(two_clips(), {{"cleanup_recover", {0.1}}});
        Reference node(two_clips(), {{"cleanup_recover", {0.1}}});
        const Host::Values before = effect->saved();
        effect->params.undo.clear();
        effect->polls = 0;
        effect->press(button);
        const int polls = effect->polls;
        node.panel.get(button).changed();
        expect_same(*effect, node.panel);
        EXPECT_NEAR(effect->params.get("screen_color").value().numbers[1], 0.6, 0.05);
        EXPECT_EQ(effect->params.get("merge").value().numbers[0],
                  button == std::string("set_up") ? 1.0 : 0.0);
        EXPECT_THAT(services().take_messages(), testing::Contains(testing::HasSubstr("green screen")));
        ASSERT_EQ(effect->params.undo.size(), 1U);
        effect->undo();
        EXPECT_EQ(effect->saved(), before);
        // Given up half way, it leaves nothing behind. One thread alone polls, so let it have all rows.
        services().threads = 1;
        effect->abort_after = effect->polls + polls / 2;
        effect->press(button);
        EXPECT_EQ(effect->saved(), before);
        EXPECT_NE(take_faults(), "") << "the action should fail";
        effect->abort_after = -1;
        services().threads = 2;
        effect->press(button);
        expect_same(*effect, node.panel);
        services().take_messages();
    }
}

TEST_F(Edit, ToolsNeedPixels) {
    for (const char* tool : {"toolbar_screen", "find_screen", "set_up"}) {
        Clips clips = two_clips();
        const auto effect = instance(clips, {{"screen_color", kScreen}});
        const Host::Values before = effect->saved();
        clips["fg"].fails = true;
        effect->connect("fg", &clips["fg"]);
        effect->press(tool);
        effect->connect("fg", nullptr);
        effect->press(tool);
        EXPECT_EQ(effect->saved(), before);
        EXPECT_EQ(services().take_messages().size(), 2U);
        EXPECT_NE(take_faults(), "") << "the action should fail";
    }
}

TEST_F(Edit, EnablesGreyOut) {
    const auto effect = instance(two_clips(), {});
    Reference node(two_clips(), {});
    const auto compare = [&] {
        for (const auto& param : effect->params.all()) {
            const Knob* knob = node.panel.find(param->name());
            if (knob != nullptr) {
                EXPECT_EQ(param->enabled(), knob->enabled()) << param->name();
            }
        }
    };
    EXPECT_FALSE(effect->params.get("shadows_blur").enabled());
    EXPECT_TRUE(effect->params.get("screen_shrink").enabled());
    compare();
    for (const auto& [name, value] : std::vector<std::pair<const char*, double>>{
             {"shadow", 1}, {"screen_correct", 0}, {"film", 1}, {"spill_suppression", 0}, {"cleanup", 1}}) {
        SCOPED_TRACE(name);
        effect->set(name, {value});
        node.panel.get(name).set_value(value);
        node.panel.get(name).changed();
        compare();
    }
    EXPECT_FALSE(effect->params.get("screen_shrink").enabled());
    // States follow the time line.
    effect->params.get("cleanup").set_key(0, {1});
    effect->params.get("cleanup").set_key(5, {0});
    for (const double time : {5.0, 0.0}) {
        effect->go_to(time);
        EXPECT_EQ(effect->params.get("cleanup_shrink").enabled(), time < 5.0);
    }
    // As values come from a project, so do the states.
    const auto loaded = instance(two_clips(), {}, kOfxImageEffectContextGeneral, effect->saved());
    for (const auto& param : loaded->params.all())
        EXPECT_EQ(param->enabled(), effect->params.get(param->name()).enabled()) << param->name();
}

TEST_F(Edit, ValuesAloneBringAnInstanceBack) {
    Host::Values saved, after;
    Frame frame;
    {
        const auto effect = instance(two_clips(), {{"cleanup", {1}}, {"cleanup_shrink", {2, 1}}});
        for (const auto& [tool, box] :
             std::vector<std::pair<const char*, OfxRectI>>{{"toolbar_screen", kBacking},
                                                           {"toolbar_addoverlay", kShade},
                                                           {"toolbar_restorespill", {30, 20, 38, 28}}}) {
            point(*effect, box);
            effect->press(tool);
        }
        saved = effect->saved();
        frame = effect->render();
    }
    host();  // another process, as it were
    const auto loaded = instance(two_clips(), {}, kOfxImageEffectContextGeneral, saved);
    EXPECT_EQ(differences(loaded->render(), frame), 0);
    EXPECT_EQ(loaded->saved(), saved);
    // The sample lists are there: the reset finds them.
    EXPECT_NE(loaded->params.get("us_add_overlay").value().text, "");
    loaded->press("screen_correct_reset");
    EXPECT_NE(loaded->params.get("us_add_overlay").value(), saved.at("us_add_overlay"));
    EXPECT_EQ(loaded->params.get("us_restore_spill").value(), saved.at("us_restore_spill"));

    // The context does not matter to them.
    const auto filter = instance(two_clips(), {}, kOfxImageEffectContextFilter, saved);
    EXPECT_EQ(filter->saved(), saved);
    services().take_messages();
}

TEST_F(Edit, PreferencesSayWhetherColourIsMultiplied) {
    const char *pre = kOfxImagePreMultiplied, *un = kOfxImageUnPreMultiplied, *finished = kOfxImageOpaque;
    const struct {
        double mode, merge;
        const char *over_background, *without;
    } cases[] = {{0, 0, finished, pre}, {0, 1, finished, pre}, {1, 0, pre, pre}, {2, 0, un, un}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const Settings settings{{"output_mode", {c.mode}}, {"merge", {c.merge}}};
        const auto state = [](const std::unique_ptr<Instance>& effect) {
            return effect->preferences.string_at(kOfxImageEffectPropPreMultiplication);
        };
        for (const Clips& clips : {two_clips(), all_clips()}) {
            const auto effect = instance(clips, settings);
            EXPECT_EQ(state(effect), c.over_background);
            effect->connect("bg", nullptr);
            EXPECT_EQ(state(effect), c.without);
        }
        EXPECT_EQ(state(instance(two_clips(), settings, kOfxImageEffectContextFilter)), c.without);
    }
}

TEST_F(Edit, IdentityAndComponents) {
    const auto effect = instance(two_clips(), {});
    EXPECT_EQ(effect->identity(kFrame), "fg");
    EXPECT_EQ(effect->preferences.string_at("OfxImageClipPropComponents_Output"), kOfxImageComponentRGBA);
    Param& color = effect->params.get("screen_color");
    color.set_key(0, {0, 0, 0});
    color.set_key(4, {0, 0.5, 0});
    EXPECT_EQ(effect->identity(kFrame, 0.0), "fg");
    EXPECT_EQ(effect->identity(kFrame, 1.0), std::nullopt);

    const auto filter = instance(two_clips(), {}, kOfxImageEffectContextFilter);
    EXPECT_EQ(filter->identity(kFrame), "Source");
    filter->set("screen_color", kScreen);
    EXPECT_EQ(filter->identity(kFrame), std::nullopt);
}

}  // namespace
}  // namespace ofxtest
