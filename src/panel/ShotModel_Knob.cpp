#include "panel/ShotModel_Knob.h"

#include "ZoImage/Hash.h"

using namespace Zo::Image;

namespace {

// Hosts keep an empty text for an empty model.
bool blank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n{}") == text.npos;
}

}  // namespace

ShotModel_Knob::ShotModel_Knob(std::string_view name) : Knob(Kind::kCustom, name, name) {
    visible(false);
    set_flag(kKnobUnscripted, true);
}

bool ShotModel_Knob::from_script(std::string_view text) {
    if (text == text_) return true;
    auto model = std::make_shared<ShotModel>();
    if (blank(text)) {
        restore_default();
    } else if (read_shot_model(text, *model).empty()) {
        hold(std::string(text), std::move(model));
    } else {
        return false;
    }
    changed();
    return true;
}

void ShotModel_Knob::hold(std::string text, std::shared_ptr<ShotModel> model) {
    Hash hash;
    hash.append(std::string_view(text));
    model->identity = hash.value();
    text_ = std::move(text);
    *held_ = std::move(model);
}

void ShotModel_Knob::restore_default() {
    text_.clear();
    held_->reset();
}

void ShotModel_Knob::to_script(std::ostream& out, bool /*quote*/) const {
    out << text_;
}

std::string ShotModel_Knob::parse_text(std::string_view text, std::vector<double>& values) const {
    values.clear();
    ShotModel model;
    return blank(text) ? std::string() : read_shot_model(text, model);
}

bool ShotModel_Knob::accepts_script(std::string_view text) const {
    std::vector<double> values;
    return parse_text(text, values).empty();
}
