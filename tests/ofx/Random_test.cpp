// A user who does anything, with the pen too, while the host renders.
#include <random>
#include <thread>

#include "ofx/Sampling.h"

namespace ofxtest {
namespace {

class Random : public PenTest {
  protected:
    template <class Wanted>
    const Param& any(const Wanted& wanted) {
        std::vector<const Param*> all;
        for (const auto& param : effect_->params.all) {
            if (wanted(*param)) all.push_back(param.get());
        }
        return *all[below(all.size())];
    }
    // Numbers as far as sliders go, and a little beyond.
    void turn_any() {
        const Param& param = any([](const Param& p) { return p.holds_value() && !p.is_text(); });
        const std::size_t options = param.props.strings(kOfxParamPropChoiceOption).size();
        std::vector<double> values;
        for (int i = 0; i < param.dimension; ++i) {
            if (param.is_int()) {
                values.push_back(static_cast<double>(below(options != 0 ? options : 2)));
                continue;
            }
            const double low = param.props.double_at(kOfxParamPropDisplayMin, i);
            const double high = std::min(param.props.double_at(kOfxParamPropDisplayMax, i), low + 40.0);
            values.push_back(low + (high - low) * (1.1 * part() - 0.05));
        }
        effect_->set(param.name, values);
    }
    void press_any() {
        effect_->press(any([](const Param& p) { return p.type == kOfxParamTypePushButton; }).name);
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
    void look() { pen_->draw(below(2) == 0); }
    void undo() {
        if (!effect_->params.undo.empty()) effect_->undo();
    }
    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(dice_); }
    double part() { return std::uniform_real_distribution<>()(dice_); }

    // One as often as another but for these that stand twice.
    static constexpr void (Random::*kEdits[])() = {&Random::turn_any, &Random::turn_any, &Random::draw_any,
                                                   &Random::draw_any, &Random::key_any,  &Random::undo,
                                                   &Random::look,     &Random::press_any};
    std::mt19937 dice_{16};
};

TEST_F(Random, FiveHundredEditsLeaveWhatTheirValuesSay) {
    start({}, all_clips());
    std::jthread renders;
    for (int n = 0; n < 500; ++n) {
        (this->*kEdits[below(std::size(kEdits))])();
        if (n % 10 != 0) continue;
        renders = std::jthread([this] { EXPECT_EQ(effect_->render_unseen(kFrame), kOfxStatOK); });
    }
    if (renders.joinable()) renders.join();
    effect_->set("view", {0});
    const auto other = loaded(effect_->saved(), all_clips());
    EXPECT_EQ(differences(other->render(), effect_->render()), 0);
    close();
    shown.take();
    // Tools that find nothing to look at fail, and say so; nothing else may be wrong.
    for (const std::string& fault : faults.take()) {
        EXPECT_TRUE(fault.starts_with("the change of ") && fault.ends_with("gave status 1")) << fault;
    }
}

}  // namespace
}  // namespace ofxtest
