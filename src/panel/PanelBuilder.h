// Describes knobs of the keyer to a closure, section by section; Panel.cpp holds the list.
#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "panel/Panel.h"

// Binds each knob to a field of the storage, takes its default from a fresh storage, and notes which enable
// and which "reset" the knobs of a tab belong to.
class PanelBuilder {
  public:
    using Knob = Zo::Image::Knob;
    using Text = std::string_view;

    PanelBuilder(Zo::Image::Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs);

    void main_group();
    void density_tab();
    void screen_correct_tab();
    void shadows_tab();
    void spill_tab();
    void cleanup_tab();
    void color_tab();
    void film_tab();
    void output_tab();
    void toolbar();
    void sample_lists();
    void automatic();
    void finish();

  private:
    Knob* boolean(bool KnobStorage::*field, Text name, Text label, Text tooltip);
    Knob* number(float KnobStorage::*field, Text name, Text label, double low, double high, Text tooltip);
    Knob* menu(std::int32_t KnobStorage::*field, std::initializer_list<Text> items, Text name, Text label,
               Text tooltip);
    Knob* color(KnobStorage::Color KnobStorage::*field, Text name, Text label, Text tooltip);
    Knob* color_alpha(KnobStorage::ColorAlpha KnobStorage::*field, Text name, Text label, Text tooltip);
    Knob* size(KnobStorage::Size KnobStorage::*field, Text name, Text label, double high, Text tooltip);
    Knob* reset(Text tooltip);
    void tool(Tool tool, Text name, Text label, Text tooltip);
    void tool_group(Text caption);

    // Begins a tab whose knobs follow one enable or two; `resets` collects what its "reset" restores.
    void tab(Text label, Text link, Knob* enable, Knob* second_enable = nullptr,
             std::vector<Knob*>* resets = nullptr);
    // A knob that writes the field at this place.
    Knob* setting(Knob* knob, std::size_t place);
    Knob* note(Knob* knob);

    Zo::Image::Knob_Closure& closure_;
    KnobStorage& storage_;
    PanelKnobs& refs_;
    const KnobStorage defaults_{};

    Knob* film_ = nullptr;
    Knob* screen_correct_ = nullptr;
    Knob* shadow_ = nullptr;
    Knob* spill_suppression_ = nullptr;
    Knob* cleanup_ = nullptr;
    Knob* color_conformance_ = nullptr;

    Knob* enable_ = nullptr;
    Knob* second_enable_ = nullptr;
    std::vector<Knob*>* resets_ = nullptr;
};
