// What becomes of the parameters when the user changes, presses, samples, undoes and saves.
#include <gmock/gmock.h>

#include "ofx/Sampling.h"

namespace ofxtest {
namespace {

using Edit = OfxTest;

constexpr OfxRectI kFigure{30, 20, 38, 28};

TEST_F(Edit, ToolsSetParametersInOneUndoableStep) {
    const std::pair<const char*, OfxRectI> strokes[] = {{"toolbar_screen", kBacking},
                                                        {"toolbar_addoverlay", kShade},
                                                        {"toolbar_removeoverlay", kFigure},
                                                        {"toolbar_addmatte", {32, 22, 36, 26}},
                                                        {"toolbar_removenoise", {-4, 30, 4, 38}},
                                                        {"toolbar_restorespill", kFigure},
                                                        {"toolbar_matchcolor", kFigure},
                                                        {"toolbar_matchshadow", kShade},
                                                        {"toolbar_holdShadow", kShade}};
    const Settings settings{{"screen_color", {0.2, 0.5, 0.2}}};
    const auto effect = instance(two_clips(), settings);
    Reference node(two_clips(), settings);
    Instance::Values before = effect->saved();
    int steps = 0;
    for (const auto& [tool, box] : strokes) {
        SCOPED_TRACE(tool);
        sample(*effect, tool, box);
        EXPECT_EQ(Image::held, 0);
        sample(node, tool, {box});
        expect_same(*effect, node.panel);
        for (const char* corner : {"sampling_first_corner", "sampling_second_corner"})
            before[corner] = effect->params.get(corner).content();
        const Instance::Values after = effect->saved();
        for (const auto& [name, content] : after) EXPECT_TRUE(content.keys.empty()) << name;
        EXPECT_EQ(effect->params.undo.empty(), after == before);
        if (after != before) {
            ++steps;
            undo_one_step(*effect, before);
            // Again, so that the node in the plug-in has to have followed the undo.
            effect->press(tool);
            EXPECT_EQ(effect->saved(), after);
        }
        before = after;
    }
    EXPECT_GE(steps, 6) << "the others find nothing to turn here";
    node.node.invalidate();
    EXPECT_EQ(differences(effect->render(), node.render()), 0);
    shown.take();  // remarks on samples
}

TEST_F(Edit, ToolsOnAProxyOfOblongPixels) {
    Clips clips = two_clips();
    for (auto& [name, source] : clips) source.aspect = 2.0;
    const auto effect = instance(clips, {{"edge_kernel", {5}}});
    effect->viewer_scale = 0.5;
    Reference node(clips, {{"edge_kernel", {2.5}}, {"screen_shrink", {1, 1}}, {"film_shrink", {1, 1}}}, 0.0,
                   0.5);
    sample(*effect, "toolbar_screen", {-12, 4, 16, 16});
    sample(node, "toolbar_screen", {{-3, 2, 4, 8}});
    sample(*effect, "toolbar_addoverlay", {kShade.x1 * 4, kShade.y1 * 2, kShade.x2 * 4, kShade.y2 * 2});
    sample(node, "toolbar_addoverlay", {kShade});
    node.panel.set_from_text("edge_kernel", "5");
    for (const char* size : {"screen_shrink", "film_shrink"}) node.panel.set_from_text(size, "2,2");
    expect_same(*effect, node.panel);
    shown.take();
}

// As the program does: one reference presses the buttons of the node itself.
TEST_F(Edit, FindsTheScreenAndSetsItselfUp) {
    services.threads = 1;  // one alone polls, so let it have all rows
    for (const char* button : {"find_screen", "set_up"}) {
        SCOPED_TRACE(button);
        const auto effect = instance(two_clips(), {{"cleanup_recover", {0.1}}});
        Reference node(two_clips(), {{"cleanup_recover", {0.1}}});
        const Instance::Values before = effect->saved();
        effect->params.undo.clear();
        effect->polls = 0;
        effect->press(button);
        const int polls = effect->polls;
        node.panel.get(button).changed();
        expect_same(*effect, node.panel);
        EXPECT_NEAR(effect->number("screen_color", 1), 0.6, 0.05);
        EXPECT_EQ(effect->number("unmix_method"), button == std::string("set_up") ? 1.0 : 0.0);
        EXPECT_THAT(effect->text("report"), testing::HasSubstr("green screen"));
        undo_one_step(*effect, before);
        // Given up half way, it leaves nothing behind.
        effect->abort_after = effect->polls + polls / 2;
        effect->press(button);
        EXPECT_EQ(effect->saved(), before);
        EXPECT_FALSE(faults.take().empty()) << "the action should fail";
        effect->abort_after = -1;
        effect->press(button);
        expect_same(*effect, node.panel);
        shown.take();
    }
}

TEST_F(Edit, ToolsNeedPixels) {
    for (const char* tool : {"toolbar_screen", "find_screen", "set_up"}) {
        Clips clips = two_clips();
        const auto effect = instance(clips, {{"screen_color", kScreen}});
        const Instance::Values before = effect->saved();
        clips["fg"].fails = true;
        effect->connect("fg", &clips["fg"]);
        effect->press(tool);
        effect->connect("fg", nullptr);
        effect->press(tool);
        EXPECT_EQ(effect->saved(), before);
        EXPECT_EQ(shown.take().size(), 2U);
        EXPECT_FALSE(faults.take().empty()) << "the action should fail";
    }
    const auto effect = instance(two_clips(), look(""));
    sample(*effect, "toolbar_screen", {-30, 5, -8, 20});
    EXPECT_EQ(effect->number("screen_color", 1), kScreen[1]);
    EXPECT_THAT(shown.take(), testing::ElementsAre(
                                  testing::HasSubstr("outside of the foreground, which is -7,3 to 64,44")));
    EXPECT_FALSE(faults.take().empty()) << "the action should fail";
}

TEST_F(Edit, EnablesGreyOut) {
    const auto effect = instance(two_clips(), {});
    Reference node(two_clips(), {});
    const std::pair<const char*, double> changes[] = {{"overlay_mode", 0},      {"shadow", 1},
                                                      {"screen_correct", 0},    {"film", 1},
                                                      {"spill_suppression", 0}, {"cleanup", 1}};
    EXPECT_FALSE(effect->params.get("shadows_blur").enabled());
    for (const auto& [name, value] : changes) {
        effect->set(name, {value});
        node.panel.get(name).set_value(value);
        node.panel.get(name).changed();
        // As values come from a project, so do the states.
        const auto other = loaded(effect->saved());
        for (const auto& param : effect->params.all) {
            const Zo::Image::Knob* knob = node.panel.find(param->name);
            if (knob == nullptr) continue;
            EXPECT_EQ(param->enabled(), knob->enabled()) << name << ": " << param->name;
            EXPECT_EQ(other->params.get(param->name).enabled(), knob->enabled()) << param->name;
        }
    }
    // States follow the time line.
    effect->params.get("cleanup").set_keys({{0, {1}}, {5, {0}}});
    for (const double time : {5.0, 0.0}) {
        effect->go_to(time);
        EXPECT_EQ(effect->params.get("cleanup_shrink").enabled(), time < 5.0);
    }
}

TEST_F(Edit, ValuesAloneBringAnInstanceBack) {
    auto effect = instance(two_clips(), {{"cleanup", {1}}, {"cleanup_shrink", {2, 1}}});
    sample(*effect, "toolbar_screen", kBacking);
    sample(*effect, "toolbar_addoverlay", kShade);
    sample(*effect, "toolbar_restorespill", kFigure);
    const Instance::Values saved = effect->saved();
    const Frame frame = effect->render();
    effect.reset();
    host();  // another process, as it were
    const auto other = loaded(saved);
    EXPECT_EQ(differences(other->render(), frame), 0);
    EXPECT_EQ(other->saved(), saved);
    // The sample lists are there: the reset finds them, and is one step.
    EXPECT_NE(other->text("us_add_overlay"), "");
    other->press("screen_correct_reset");
    EXPECT_NE(other->params.get("us_add_overlay").value(), saved.at("us_add_overlay"));
    EXPECT_EQ(other->params.get("us_restore_spill").value(), saved.at("us_restore_spill"));
    undo_one_step(*other, saved);
    other->press("invert");
    EXPECT_EQ(other->number("overlay_mono"), 1.0);
    shown.take();
}

// Sample lists that the picture depends on reach the nodes that render.
TEST_F(Edit, WhatUnmixWasTaughtIsRendered) {
    const Settings settings = look("unmix_method 1");
    const auto effect = instance(two_clips(), settings);
    const Frame before = effect->render();
    sample(*effect, "toolbar_unmixbacking", kFigure);
    Reference node(two_clips(), settings);
    node.panel.set_from_text("us_unmix_backing", effect->text("us_unmix_backing"));
    node.node.invalidate();
    const Frame taught = effect->render();
    EXPECT_EQ(differences(taught, node.render()), 0);
    EXPECT_GT(differences(taught, before), 100);
    effect->press("unmix_reset");
    effect->set("unmix_method", {1});
    EXPECT_EQ(differences(effect->render(), before), 0);
    shown.take();
}

TEST_F(Edit, PreferencesSayWhetherColourIsMultiplied) {
    const char *pre = kOfxImagePreMultiplied, *un = kOfxImageUnPreMultiplied, *finished = kOfxImageOpaque;
    const struct {
        const char *settings, *over_background, *without;
    } cases[] = {{"output_mode 0", finished, pre}, {"output_mode 1", pre, pre}, {"output_mode 2", un, un}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        const auto effect = instance(all_clips(), look(c.settings));
        EXPECT_EQ(effect->preferences.string_at(kOfxImageEffectPropPreMultiplication), c.over_background);
        effect->connect("bg", nullptr);
        EXPECT_EQ(effect->preferences.string_at(kOfxImageEffectPropPreMultiplication), c.without);
        const auto filter = instance(two_clips(), look(c.settings), kOfxImageEffectContextFilter);
        EXPECT_EQ(filter->preferences.string_at(kOfxImageEffectPropPreMultiplication), c.without);
    }
}

TEST_F(Edit, IdentityAndComponents) {
    const auto effect = instance(two_clips(), {{"output_mode", {1}}});
    EXPECT_EQ(effect->preferences.string_at("OfxImageClipPropComponents_Output"), kOfxImageComponentRGBA);
    effect->params.get("screen_color").set_keys({{0, {0, 0, 0}}, {4, {0, 0.5, 0}}});
    EXPECT_EQ(effect->identity(0.0), "fg");
    EXPECT_EQ(effect->identity(1.0), "none");
    EXPECT_EQ(instance(two_clips(), {}, kOfxImageEffectContextFilter)->identity(), "Source");
    // A view is no way to pass pictures on: it is not saved, and the state is that of a finished picture.
    effect->set("view", {1});
    EXPECT_EQ(effect->identity(0.0), "none");
    EXPECT_EQ(effect->preferences.string_at(kOfxImageEffectPropPreMultiplication), kOfxImageOpaque);
    EXPECT_EQ(effect->saved().count("view"), 0U);
    EXPECT_EQ(effect->params.get("view").props.int_at(kOfxParamPropAnimates), 0);
}

}  // namespace
}  // namespace ofxtest
