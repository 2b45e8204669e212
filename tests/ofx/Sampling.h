// Tools used on areas of the plate: as the user does in a host, by the corners or with the pen, and as the
// node itself is asked to.
#pragma once

#include "ofx/Scene.h"
#include "ofx/host/Interact.h"

namespace ofxtest {

// As the user samples a rectangle, by any two opposite corners.
inline void sample(Instance& instance, const std::string& tool, const OfxRectI& r) {
    instance.set("sampling_first_corner", {static_cast<double>(r.x1), static_cast<double>(r.y2)});
    instance.set("sampling_second_corner", {static_cast<double>(r.x2), static_cast<double>(r.y1)});
    instance.params.undo.clear();
    instance.press(tool);
}

inline void sample(Reference& node, const std::string& tool, const std::vector<OfxRectI>& areas) {
    Zo::Image::Knob& button = node.panel.get(tool);
    std::vector<Zo::Image::Box> boxes;
    for (const OfxRectI& r : areas) boxes.push_back({r.x1, r.y1, r.x2, r.y2});
    button.stroke(boxes);
    button.activate();
    button.changed();
}

// The decimal of the fewest digits that is read as the same float.
inline double shortest(double value) {
    double read = 0.0;
    for (int digits = 1; static_cast<float>(read) != static_cast<float>(value); ++digits) {
        char text[32];
        std::snprintf(text, sizeof text, "%.*g", digits, value);
        read = std::stod(text);
    }
    return read;
}

// Every parameter of a knob has its value in the frame that is shown.
inline void expect_same(const Instance& instance, const Zo::Image::KnobPanel& panel) {
    for (const auto& param : instance.params.all) {
        const Zo::Image::Knob* const knob = panel.find(param->name);
        if (knob == nullptr || !param->holds_value()) continue;
        const Param::Content content = param->value(services.time);
        if (param->is_text()) {
            const bool empty = content.text.empty() && !knob->differs_from_default();
            EXPECT_TRUE(empty || content.text == knob->text()) << param->name << ": " << content.text;
        }
        for (std::size_t i = 0; i < content.numbers.size(); ++i)
            EXPECT_EQ(content.numbers[i], shortest(knob->get_value(static_cast<int>(i)))) << param->name;
    }
}

// One step to undo brings back what was.
inline void undo_one_step(Instance& instance, const Instance::Values& before) {
    EXPECT_NE(instance.saved(), before);
    ASSERT_EQ(instance.params.undo.size(), 1U);
    instance.undo();
    EXPECT_EQ(instance.saved(), before);
}

// An instance whose user has a pen in the viewer.
class PenTest : public OfxTest {
  protected:
    void start(HostOptions options = {}, const Clips& clips = two_clips()) {
        close();
        options.overlays = true;
        host(options);
        effect_ = instance(clips, {{"screen_color", {0.2, 0.5, 0.2}}});
        pen_ = std::make_unique<Interact>(*host_, *effect_);
    }
    void close() {
        pen_.reset();
        effect_.reset();
    }
    void TearDown() override {
        close();
        OfxTest::TearDown();
    }

    std::unique_ptr<Instance> effect_;
    std::unique_ptr<Interact> pen_;
};

}  // namespace ofxtest
