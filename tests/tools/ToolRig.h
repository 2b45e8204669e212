// A node with its panel, for tests that use its tools.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "ZoImage/KnobValues.h"
#include "keyer/VeloxaKeyer.h"
#include "support/TestImages.h"

namespace test {

using namespace Zo::Image;

// Names with blanks between them.
inline std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> list;
    Knob::Script_List(text, list);
    return list;
}

struct ToolRig {
    explicit ToolRig(const NodeContext& context = {}) : node(context), panel(node) {}

    void set(const std::string& knob, const std::string& text) { panel.set_from_text(knob, text); }
    std::string text(const char* knob) const { return panel.get(knob).text(); }
    // NAME=VALUE with blanks between them.
    void set_and_hold(const std::string& settings) {
        for (const std::string& setting : words(settings)) {
            const std::string name = setting.substr(0, setting.find('='));
            set(name, setting.substr(name.size() + 1));
            hold(name);
        }
    }
    void hold(const std::string& names, bool on = true) {
        for (const std::string& name : words(names)) panel.get(name).target().set_flag(kKnobHeld, on);
    }
    void reset(const char* tab) {
        for (const auto& knob : panel.knobs()) {
            if (knob->name() == "reset" && knob->tab() == tab) panel.press(*knob);
        }
    }

    void use(const std::string& tool, const std::array<double, 4>& box = {}) {
        Knob* const stroke = panel.find("toolbar_" + tool);
        Knob& button = stroke != nullptr ? *stroke : panel.get(tool);
        for (int i = 0; i < 4; ++i) button.set_value(box[static_cast<std::size_t>(i)], 4 + i);
        button.changed();
        reports = node.tool_reports();
    }

    void paint(const std::string& tool, const std::vector<Box>& areas) {
        Knob& button = panel.get("toolbar_" + tool);
        button.stroke(areas);
        button.changed();
        reports = node.tool_reports();
    }

    const ToolReport& report() const { return reports.at(0); }
    bool satisfied() const { return report().samples() > 0 && report().samples() == report().satisfied; }
    // Of all reports, for messages and to look for notes in.
    std::string told() const {
        std::string text;
        for (const ToolReport& r : reports) {
            text += '\n' + r.tool + ": " + std::to_string(r.satisfied) + " of " +
                    std::to_string(r.samples()) + ' ' + r.failure;
            for (const std::string& note : r.notes) text += '\n' + note;
        }
        return text;
    }

    // Knobs that differ from their defaults, in panel order, without the sample lists.
    std::string turned() const {
        std::string names;
        for (const auto& knob : panel.knobs()) {
            const bool value = knob->kind() != Knob::Kind::kCustom && knob->kind() != Knob::Kind::kLink;
            if (!value || !knob->takes_value() || !knob->differs_from_default()) continue;
            names += (names.empty() ? "" : " ") + knob->name();
        }
        return names;
    }
    std::string values(bool lists = false) const {
        std::string text;
        for (const auto& knob : panel.knobs()) {
            const bool wanted = lists || knob->kind() != Knob::Kind::kCustom;
            if (wanted && knob->takes_value()) text += knob->text() + '\n';
        }
        return text;
    }

    VeloxaKeyer node;
    KnobPanel panel;
    std::vector<ToolReport> reports;  // of the latest tool
};

}  // namespace test
