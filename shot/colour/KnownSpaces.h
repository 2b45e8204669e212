// The colour spaces that the program knows by itself: those of its own configuration, and what it calls what
// files say of their values.
#pragma once

#include <OpenColorIO/OpenColorIO.h>

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veloxa {

// Red, green, blue and white, x and y each, as OpenEXR has them.
using Chromaticities = std::array<float, 8>;

struct Gamut {
    Chromaticities xy;
};

// Of those that the program looks for by name.
inline constexpr const char* kLinear = "linear";
inline constexpr const char* kSrgb = "sRGB";
inline constexpr const char* kFilmLog = "film-log";
inline constexpr const char* kRaw = "raw";

struct KnownSpace {
    enum class Curve { kStraight, kWeb, kGamma24, kDensity };

    const char* name;
    std::string_view aliases;  // with bars between them
    const Gamut* gamut;        // null where it is none, or none that is published
    Curve curve;               // from the space to light; straight with a style too
    const char* style;         // OpenColorIO's own transform to ACES2065-1, or null
    const char* description;

    bool is_linear() const;
    std::vector<std::string> alias_list() const;
};

std::span<const KnownSpace> known_spaces();
// By name or alias, in whatever case; null for another.
const KnownSpace* known_space(std::string_view name);
// The linear space of these primaries, to a thousandth; null for none that is known.
const KnownSpace* linear_space_of(const Chromaticities& xy);

// To linear light of Rec.709's primaries. Null for no change.
OCIO_NAMESPACE::TransformRcPtr to_linear(const KnownSpace& space);

}  // namespace veloxa
