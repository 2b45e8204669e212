// The overlay: pen and key events in, knobs and drawings out.
#include <gmock/gmock.h>

#include "ofx/Sampling.h"

namespace ofxtest {
namespace {

class Overlay : public PenTest {
  protected:
    // With nothing to undo yet.
    void use(const std::string& tool, double shape = 0.0) {
        effect_->press(tool);
        effect_->set("sampling_shape", {shape});
        effect_->params.undo.clear();
    }
    // The dots, which are filled or, in other frames, rings.
    std::vector<Shape> dots() {
        std::vector<Shape> shapes = pen_->draw(true).shapes;
        std::erase_if(shapes, [](const Shape& shape) { return shape.points.size() <= 4; });
        return shapes;
    }
};

constexpr int kControl = 0xFFE3, kDelete = 0xFFFF, kEscape = 0xFF1B;

TEST_F(Overlay, BoxesAndStrokesAreWhatTheNodeItselfMakesOfThem) {
    const std::vector<OfxRectI> dabs{{-4, 6, -1, 9}, {-3, 6, 0, 9}, {-2, 6, 1, 9}, {-1, 6, 2, 9}};
    const struct {
        const char* tool;
        double shape;
        Interact::Points path;
        std::vector<OfxRectI> areas;
    } cases[] = {
        {"toolbar_screen", 0, {{-3.5, 15.5}, {3, 9}, {7.2, 6.4}}, {kBacking}},
        {"toolbar_addoverlay", 0, {{12.5, 6.5}, {23.5, 15.5}}, {kShade}},
        {"toolbar_restorespill", 0, {{30.1, 20.1}, {37.9, 27.9}}, {{30, 20, 38, 28}}},
        {"toolbar_unmixsolid", 0, {{34.5, 24.5}}, {{34, 24, 35, 25}}},
        // What lies beyond the frame is cut off.
        {"toolbar_screen", 0, {{-40, -40}, {-2.5, 6.5}}, {{-7, 3, -2, 7}}},
        {"toolbar_screen", 1, {{-2.5, 7.5}, {0.5, 7.5}}, dabs},
        {"toolbar_addoverlay", 1, {{-2.5, 7.5}, {0.5, 7.5}}, dabs},
    };
    start();
    effect_->set("sampling_brush", {3});
    effect_->set("view", {1});  // whatever is shown, the plate is sampled
    Reference node(two_clips(), {{"screen_color", {0.2, 0.5, 0.2}}});
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.tool) + ' ' + std::to_string(&c - cases));
        use(c.tool, c.shape);
        const Instance::Values before = effect_->saved();
        pen_->drag(c.path);
        sample(node, c.tool, c.areas);
        expect_same(*effect_, node.panel);
        const Instance::Values after = effect_->saved();
        undo_one_step(*effect_, before);
        pen_->drag(c.path);
        EXPECT_EQ(effect_->saved(), after);
    }
    EXPECT_GT(pen_->redraws, 10);
    shown.take();
}

TEST_F(Overlay, SamplesAreDotsThatCanBeRemoved) {
    for (const bool control : {false, true}) {
        start();
        use("toolbar_addoverlay");
        pen_->drag({{12, 6}, {24, 16}});
        pen_->drag({{-4, 6}, {8, 16}});
        pen_->pen(kOfxInteractActionPenMotion, 60, 40);
        const Instance::Values before = effect_->saved();
        const std::string both = effect_->text("us_add_overlay"), plates = effect_->text("us_add_overlay_cp");
        std::vector<Shape> shapes = dots();
        // A disc, and its edge in two colours.
        ASSERT_EQ(shapes.size(), 6U);
        EXPECT_TRUE(shapes[0].filled);
        // In the plate's colour there: backing in half light, then in full.
        EXPECT_NEAR(shapes[0].colour[1], 0.3f, 0.01f);
        EXPECT_NEAR(shapes[3].colour[1], 0.6f, 0.01f);
        const auto& rim = shapes[0].points;
        const auto &one = rim.front(), &opposite = rim[rim.size() / 2];
        EXPECT_NEAR((one[0] + opposite[0]) / 2, 18.0, 1e-6);
        EXPECT_NEAR((one[1] + opposite[1]) / 2, 11.0, 1e-6);
        EXPECT_EQ(pen_->draw(true).shapes, pen_->draw(false).shapes);

        services.time = 7.0;  // where the samples were not taken
        EXPECT_THAT(dots(),
                    testing::AllOf(testing::SizeIs(4), testing::Each(testing::Field(&Shape::filled, false))));
        services.time = 0.0;
        use("toolbar_restorespill");
        EXPECT_EQ(dots().size(), 0U) << "of another tool";
        use("toolbar_addoverlay");

        const auto remove = [&](double at_x, double at_y) {
            if (control) {
                pen_->key(kOfxInteractActionKeyDown, kControl);
                pen_->drag({{at_x, at_y}});
                pen_->key(kOfxInteractActionKeyUp, kControl);
            } else {
                pen_->pen(kOfxInteractActionPenMotion, at_x, at_y);
                pen_->key(kOfxInteractActionKeyDown, kDelete);
            }
        };
        remove(40, 30);
        EXPECT_EQ(effect_->saved(), before) << "no sample is there";
        remove(18.5, 11.5);
        EXPECT_EQ(dots().size(), 3U);
        EXPECT_NE(effect_->text("us_add_overlay"), both);
        EXPECT_TRUE(both.ends_with(effect_->text("us_add_overlay")));
        EXPECT_TRUE(plates.ends_with(effect_->text("us_add_overlay_cp")));
        EXPECT_NE(effect_->text("us_add_overlay_cp"), plates);
        undo_one_step(*effect_, before);
        EXPECT_EQ(dots().size(), 6U);
        // Dots are saved with the project, and go with their samples.
        const auto other = loaded(effect_->saved());
        EXPECT_EQ(other->params.get("sampling_marks").value(), effect_->params.get("sampling_marks").value());
        effect_->press("screen_correct_reset");
        EXPECT_EQ(dots().size(), 0U);
        shown.take();
    }
}

// Where a host lends no picture while the pen is used, a button looks at the stroke.
TEST_F(Overlay, AStrokeWaitsForThePicture) {
    start({.images_in_interacts = false});
    EXPECT_FALSE(effect_->params.get("sampling_take").enabled());
    use("toolbar_screen");
    pen_->drag({{-4, 6}, {8, 16}});
    EXPECT_EQ(effect_->number("screen_color", 1), 0.5);
    EXPECT_TRUE(effect_->params.get("sampling_take").enabled());
    EXPECT_EQ(pen_->draw(true).shapes.size(), 2U) << "the box that waits";
    EXPECT_EQ(pen_->key(kOfxInteractActionKeyDown, kEscape), kOfxStatOK);
    EXPECT_EQ(pen_->draw(true).shapes.size(), 0U) << "given up";
    EXPECT_FALSE(effect_->params.get("sampling_take").enabled());
    EXPECT_EQ(pen_->drag({{200, 200}, {210, 210}}), kOfxStatFailed);
    EXPECT_THAT(shown.take(), testing::ElementsAre(testing::HasSubstr("outside of the foreground")));
    EXPECT_FALSE(effect_->params.get("sampling_take").enabled());

    // In the frame where it was drawn; what is animated gets a key there.
    use("toolbar_addoverlay");
    Param& tolerance = effect_->params.get("screen_tolerance");
    tolerance.set_keys({{0.0, {0.6, 0.6, 0.6}}, {8.0, {0.1, 0.1, 0.1}}});
    effect_->go_to(8.0);
    pen_->drag({{12, 6}, {24, 16}});
    effect_->go_to(0.0);
    effect_->press("sampling_take");
    EXPECT_EQ(effect_->params.undo.size(), 1U);
    EXPECT_EQ(tolerance.value(0.0).numbers[0], 0.6);
    effect_->go_to(8.0);
    Reference node(two_clips(), {{"screen_color", {0.2, 0.5, 0.2}}, {"screen_tolerance", {0.1, 0.1, 0.1}}},
                   8.0);
    sample(node, "toolbar_addoverlay", {kShade});
    expect_same(*effect_, node.panel);
    EXPECT_FALSE(effect_->params.get("sampling_take").enabled());
    EXPECT_EQ(dots().size(), 3U);
}

TEST_F(Overlay, GivesUpAndLeavesOtherEventsAlone) {
    start();
    EXPECT_EQ(pen_->pen(kOfxInteractActionPenDown, 0, 8), kOfxStatReplyDefault) << "no tool is active";
    use("toolbar_screen");
    EXPECT_EQ(pen_->pen(kOfxInteractActionPenMotion, 0, 8), kOfxStatReplyDefault);
    EXPECT_EQ(pen_->key(kOfxInteractActionKeyDown, kDelete), kOfxStatReplyDefault);
    EXPECT_EQ(pen_->key(kOfxInteractActionKeyDown, kEscape), kOfxStatReplyDefault);
    const Instance::Values before = effect_->saved();
    for (const bool focus : {false, true}) {
        EXPECT_EQ(pen_->pen(kOfxInteractActionPenDown, 0, 8), kOfxStatOK);
        EXPECT_EQ(pen_->pen(kOfxInteractActionPenMotion, 5, 12), kOfxStatOK);
        EXPECT_EQ(pen_->draw(true).shapes.size(), 2U) << "the box";
        if (focus) {
            pen_->lose_focus();
        } else {
            EXPECT_EQ(pen_->key(kOfxInteractActionKeyDown, kEscape), kOfxStatOK);
        }
        EXPECT_EQ(pen_->pen(kOfxInteractActionPenUp, 5, 12), kOfxStatReplyDefault);
        EXPECT_EQ(pen_->draw(true).shapes.size(), 0U);
    }
    EXPECT_EQ(effect_->saved(), before);
    effect_->set("sampling_tool", {0});
    EXPECT_EQ(pen_->pen(kOfxInteractActionPenDown, 0, 8), kOfxStatReplyDefault);
}

TEST_F(Overlay, HostsHaveEitherThePenOrTheCorners) {
    const std::pair<const char*, bool> secret[] = {
        {"sampling_first_corner", true}, {"sampling_second_corner", true}, {"sampling_tool", false},
        {"sampling_shape", false},       {"sampling_brush", false},        {"sampling_take", false}};
    for (const bool overlays : {true, false}) {
        const Effect& effect = host({.overlays = overlays}).descriptor(kOfxImageEffectContextGeneral);
        for (const auto& [name, with] : secret) {
            EXPECT_EQ(effect.params.get(name).props.int_at(kOfxParamPropSecret) != 0, with == overlays)
                << name;
        }
        EXPECT_EQ(effect.props.pointer_at(kOfxImageEffectPluginPropOverlayInteractV1) != nullptr, overlays);
    }
    start({.missing = {"OfxDrawSuite 1"}});
    use("toolbar_addoverlay");
    pen_->drag({{12, 6}, {24, 16}});
    EXPECT_EQ(pen_->draw(false).shapes.size(), 3U);
    close();
    host({.missing = {"OfxInteractSuite 1"}, .overlays = true});
    EXPECT_EQ(host_->descriptor().props.pointer_at(kOfxImageEffectPluginPropOverlayInteractV1), nullptr);
    shown.take();
}

}  // namespace
}  // namespace ofxtest
