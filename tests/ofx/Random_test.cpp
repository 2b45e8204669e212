// A user who does anything, with the pen too, while the host renders.
#include <random>
#include <thread>

#include "ofx/Scene.h"
#include "ofx/host/Interact.h"

namespace ofxtest {
namespace {

class Random : public OfxTest {
  protected:
    // Numbers as far as sliders go, and a little beyond.
    void turn_any() {
        std::vector<Param*> all;
        for (const auto& param : effect_->params.all) {
            if (param->holds_value() && !param->is_text()) all.push_back(param.get());
        }
        Param& param = *all[below(all.size())];
        std::vector<double> values;
        for (int i = 0; i < param.dimension; ++i) {
            if (param.type == kOfxParamTypeBoolean) {
                values.push_back(static_cast<double>(below(2)));
            } else if (param.is_int()) {
                values.push_back(
                    static_cast<double>(below(param.props.strings(kOfxParamPropChoiceOption).size())));
            } else {
                const double low = param.props.double_at(kOfxParamPropDisplayMin, i);
                const double high = std::min(param.props.double_at(kOfxParamPropDisplayMax, i), low + 40.0);
                values.push_back(low + (high - low) * (1.1 * part() - 0.05));
            }
        }
        effect_->set(param.name, values);
    }
    void draw_any() {
        Interact::Points path{{-6 + 68 * part(), 4 + 38 * part()}};
        for (std::size_t n = below(4); n > 0; --n) {
            path.push_back({path.back()[0] + 20 * part() - 10, path.back()[1] + 20 * part() - 10});
        }
        pen_->drag(path);
    }
    void key_any() {
        constexpr int kKeys[] = {0xFFFF, 0xFF08, 0xFF1B, 0xFFE3, 'a'};
        pen_->pen(kOfxInteractActionPenMotion, -6 + 68 * part(), 4 + 38 * part());
        const int key = kKeys[below(std::size(kKeys))];
        pen_->key(kOfxInteractActionKeyDown, key);
        if (below(2) == 0) pen_->pen(kOfxInteractActionPenDown, 68 * part(), 44 * part());
        pen_->key(kOfxInteractActionKeyUp, key);
        if (below(3) == 0) pen_->lose_focus();
    }
    void press_any() {
        std::vector<std::string> buttons;
        for (const auto& param : effect_->params.all) {
            if (param->type == kOfxParamTypePushButton) buttons.push_back(param->name);
        }
        effect_->press(buttons[below(buttons.size())]);
    }
    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(dice_); }
    double part() { return std::uniform_real_distribution<>()(dice_); }

    std::mt19937 dice_{16};
    std::unique_ptr<Instance> effect_;
    std::unique_ptr<Interact> pen_;
};

TEST_F(Random, FiveHundredEditsLeaveWhatTheirValuesSay) {
    host({.overlays = true});
    effect_ = instance(all_clips(), look(""));
    pen_ = std::make_unique<Interact>(*host_, *effect_);
    std::jthread renders;
    for (int n = 0; n < 500; ++n) {
        switch (below(8)) {
            case 0:
            case 1:
                turn_any();
                break;
            case 2:
            case 3:
                draw_any();
                break;
            case 4:
                key_any();
                break;
            case 5:
                if (!effect_->params.undo.empty()) effect_->undo();
                break;
            case 6:
                pen_->draw(below(2) == 0);
                break;
            default:
                press_any();
        }
        if (n % 10 != 0) continue;
        renders = std::jthread([this] {
            Frame frame(kFrame);
            EXPECT_EQ(effect_->render(frame, kFrame), kOfxStatOK);
        });
    }
    if (renders.joinable()) renders.join();
    effect_->set("view", {0});
    const auto loaded = instance(all_clips(), {}, kOfxImageEffectContextGeneral, effect_->saved());
    EXPECT_EQ(differences(loaded->render(), effect_->render()), 0);
    pen_.reset();
    effect_.reset();
    shown.take();
    // Tools that find nothing to look at fail, and say so; nothing else may be wrong.
    for (const std::string& fault : faults.take()) {
        EXPECT_TRUE(fault.starts_with("the change of ") && fault.ends_with("gave status 1")) << fault;
    }
}

}  // namespace
}  // namespace ofxtest
