// The effect's own parameters, beside those of the node's knobs: what the viewer shows, the sampling in it,
// the reports, and the exchange of settings. No picture that is rendered to a file depends on them but by the
// view, which projects do not save.
//
// Texts and numbers are read and set in the actions that may set parameters, the view from any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "parameters/ParameterHandle.h"
#include "parameters/Parameters.h"

namespace veloxa::ofx {

inline constexpr const char* kView = "view";
inline constexpr const char* kReport = "report";
inline constexpr const char* kSettingsFile = "settings_file";
inline constexpr const char* kLoadSettings = "load_settings";
inline constexpr const char* kSaveSettings = "save_settings";
// Corners of the rectangle that tools look at in hosts without overlays.
inline constexpr const char* kFirstCorner = "sampling_first_corner";
inline constexpr const char* kSecondCorner = "sampling_second_corner";
// With overlays: the tool that the pen uses (0 for none), the stroke's shape, and the side of the brush.
inline constexpr const char* kActiveTool = "sampling_tool";
inline constexpr const char* kShape = "sampling_shape";
inline constexpr int kStroke = 1;
inline constexpr const char* kBrush = "sampling_brush";
// A stroke for which the host lent no picture, and the button that looks at what it marks.
inline constexpr const char* kPendingStroke = "sampling_pending";
inline constexpr const char* kTakeSample = "sampling_take";
inline constexpr const char* kMarks = "sampling_marks";

// What the view shows; from kFirstStage on the inner operators in their order.
inline constexpr int kResultView = 0;
inline constexpr int kMatteView = 1;
inline constexpr int kStatusView = 2;
inline constexpr int kFirstStage = 3;

// Those that stand in the first group, or in the toolbar's, in order; they are defined after the groups and
// before the knobs' parameters.
std::vector<std::string> own_members(bool toolbar);
void describe_own(OfxParamSetHandle set, const ParameterList& list, const std::vector<std::string>& stages,
                  const std::string& group, bool toolbar);

class OwnParameters {
  public:
    explicit OwnParameters(OfxImageEffectHandle effect);

    ParameterHandle named(const char* name) const { return {set_, name}; }
    int view(std::optional<OfxTime> time) const { return integer(view_, time); }
    int integer(const char* name) const { return integer(named(name), std::nullopt); }
    double number(const char* name, double fallback) const;
    std::string text(const char* name) const { return named(name).text(); }
    void set_text(const char* name, const std::string& text) const { named(name).put_text(text); }
    // Tells the user in the report. Hosts without it, or that refuse the text, are left alone.
    void report(const std::string& text) const;
    bool can_report() const { return static_cast<bool>(named(kReport)); }
    // The two corners in any order, canonical coordinates.
    OfxRectD sampling_rectangle(OfxTime time) const;

  private:
    static int integer(const ParameterHandle& parameter, std::optional<OfxTime> time) {
        int value = 0;
        parameter.get(time, &value);
        return value;
    }

    OfxParamSetHandle set_ = nullptr;
    ParameterHandle view_;
};

}  // namespace veloxa::ofx
