// From the values of a picture to what the screen shows.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "picture/LevelCurve.h"
#include "shot/colour/ColourConfig.h"

namespace veloxa::viewer {

// Immutable and cheap to copy; any thread. Making one from a conversion takes some milliseconds.
class DisplayTransform {
  public:
    DisplayTransform() = default;  // values as they are
    explicit DisplayTransform(ColourConversion conversion);

    // Red, green, blue and something that stays, pixel after pixel, to 0 to 1 for the screen.
    void apply(float* rgba, std::size_t pixels) const { conversion_.apply(rgba, pixels); }
    bool changes() const { return conversion_.changes(); }

    // Red's, green's and blue's, where none of them depends on another; else null.
    const std::array<LevelCurve, 3>* channels() const;
    // Of greys, by their green; null where it is no curve.
    const LevelCurve* grey() const;
    // Of values as they are.
    static const LevelCurve& plain();

  private:
    struct Curves;

    ColourConversion conversion_;
    std::shared_ptr<const Curves> curves_;  // null for values as they are
};

struct DisplayChoice {
    std::string display;  // empty: `view` is the name of a space whose values are shown as they are
    std::string view;
    std::string label;  // for a menu

    friend bool operator==(const DisplayChoice&, const DisplayChoice&) = default;
};

// The configuration's displays and views, its default first; of the built-in set also light without a curve
// and film's logarithm.
std::vector<DisplayChoice> display_choices(const ColourConfig& config);

// `from_space` by any of its names, as the program or the configuration calls it; empty for values that are
// shown as they are whatever the choice. Throws UsageError for a space that there is not, Error where there
// is no way.
DisplayTransform display_transform(const ColourConfig& config, const std::string& from_space,
                                   const DisplayChoice& choice);

struct InputSpace {
    std::string name;  // of the configuration; empty where it has none such
    std::string why;   // "uint8 without a linear tag", for the user
};

// What a picture's values are taken for: by the configuration's rules for files, else by what its file says.
InputSpace input_space(const ColourConfig& config, const Header& header, const std::string& file);

}  // namespace veloxa::viewer
