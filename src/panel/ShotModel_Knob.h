// The model of the shot, as text. It belongs to one shot's frames, so scripts leave it out.
#pragma once

#include <memory>

#include "ZoImage/Knob.h"
#include "unmix/ShotModel.h"

class ShotModel_Knob final : public Zo::Image::Knob {
  public:
    // What it holds at any time, also for those who outlive it; null while it is empty.
    using Held = std::shared_ptr<const ShotModel>;

    explicit ShotModel_Knob(std::string_view name);

    const char* class_name() const override { return "ShotModel_Knob"; }
    bool from_script(std::string_view text) override;
    void to_script(std::ostream& out, bool quote) const override;
    bool accepts_script(std::string_view text) const override;
    std::string parse_text(std::string_view text, std::vector<double>& values) const override;
    bool differs_from_default() const override { return !text_.empty(); }
    void restore_default() override;

    const std::shared_ptr<Held>& shared() const { return held_; }

  private:
    void hold(std::string text, std::shared_ptr<ShotModel> model);

    std::string text_;
    std::shared_ptr<Held> held_ = std::make_shared<Held>();
};
