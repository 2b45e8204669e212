#include "shot/colour/KnownSpaces.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace veloxa {

namespace OCIO = OCIO_NAMESPACE;

namespace {

using Curve = KnownSpace::Curve;

constexpr Gamut kRec709{{0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f}};
constexpr Gamut kRec2020{{0.708f, 0.292f, 0.170f, 0.797f, 0.131f, 0.046f, 0.3127f, 0.3290f}};
constexpr Gamut kP3{{0.680f, 0.320f, 0.265f, 0.690f, 0.150f, 0.060f, 0.3127f, 0.3290f}};
constexpr Gamut kAp0{{0.7347f, 0.2653f, 0.0f, 1.0f, 0.0001f, -0.0770f, 0.32168f, 0.33767f}};
constexpr Gamut kAp1{{0.713f, 0.293f, 0.165f, 0.830f, 0.128f, 0.044f, 0.32168f, 0.33767f}};
constexpr Gamut kArriWide{{0.6840f, 0.3130f, 0.2210f, 0.8480f, 0.0861f, -0.1020f, 0.3127f, 0.3290f}};
constexpr Gamut kSGamut3{{0.730f, 0.280f, 0.140f, 0.855f, 0.100f, -0.050f, 0.3127f, 0.3290f}};
constexpr Gamut kSGamut3Cine{{0.766f, 0.275f, 0.225f, 0.800f, 0.089f, -0.087f, 0.3127f, 0.3290f}};
constexpr Gamut kRedWide{
    {0.780308f, 0.304253f, 0.121595f, 1.493994f, 0.095612f, -0.084589f, 0.3127f, 0.3290f}};
constexpr Gamut kVGamut{{0.730f, 0.280f, 0.165f, 0.840f, 0.100f, -0.030f, 0.3127f, 0.3290f}};
constexpr Gamut kCanon{{0.740f, 0.270f, 0.170f, 1.140f, 0.080f, -0.100f, 0.3127f, 0.3290f}};

constexpr Curve kLight = Curve::kStraight;
constexpr KnownSpace kSpaces[]{
    {kLinear, "lin_rec709|lin_srgb|Linear Rec.709 (sRGB)|Utility - Linear - sRGB|Utility - Linear - Rec.709",
     &kRec709, kLight, nullptr, "light, primaries of Rec.709 and sRGB"},
    {kSrgb, "srgb_tx|srgb_texture|sRGB - Texture|Utility - sRGB - Texture|sRGB - Display", &kRec709,
     Curve::kWeb, nullptr, "IEC 61966-2-1, for screens and the web"},
    {"Rec.709", "rec709|Rec.1886|rec1886_rec709|Rec.1886 Rec.709 - Display|Utility - Rec.709 - Display",
     &kRec709, Curve::kGamma24, nullptr, "video as displays show it, gamma 2.4 (Rec.1886)"},
    {"Display-P3", "display_p3|Display P3|srgb_p3d65", &kP3, Curve::kWeb, nullptr,
     "P3 primaries, the curve of sRGB"},
    {"linear-Rec.2020", "lin_rec2020|Linear Rec.2020|Utility - Linear - Rec.2020", &kRec2020, kLight, nullptr,
     "light, primaries of Rec.2020"},
    {"Rec.2020", "rec2020|rec1886_rec2020|Rec.1886 Rec.2020 - Display|Utility - Rec.2020 - Display",
     &kRec2020, Curve::kGamma24, nullptr, "wide video as displays show it, gamma 2.4"},
    {"ACEScg", "lin_ap1|ACES - ACEScg", &kAp1, kLight, "ACEScg_to_ACES2065-1", "light, primaries AP1"},
    {"ACES2065-1", "lin_ap0|aces|ACES - ACES2065-1", &kAp0, kLight, "IDENTITY", "light, primaries AP0"},
    {"ACEScct", "ACES - ACEScct", &kAp1, kLight, "ACEScct_to_ACES2065-1", "logarithmic, with a toe"},
    {"ACEScc", "ACES - ACEScc", &kAp1, kLight, "ACEScc_to_ACES2065-1", "logarithmic"},
    {"LogC3", "logc|arri_logc3|logc3ei800_alexawidegamut|ARRI LogC3 (EI800)", &kArriWide, kLight,
     "ARRI_ALEXA-LOGC-EI800-AWG_to_ACES2065-1", "ARRI LogC3 at EI 800, Wide Gamut 3"},
    {"S-Log3", "slog3|slog3_sgamut3|S-Log3 S-Gamut3", &kSGamut3, kLight, "SONY_SLOG3-SGAMUT3_to_ACES2065-1",
     "Sony S-Log3, S-Gamut3"},
    {"S-Log3-Cine", "slog3_cine|slog3_sgamut3cine|S-Log3 S-Gamut3.Cine", &kSGamut3Cine, kLight,
     "SONY_SLOG3-SGAMUT3.CINE_to_ACES2065-1", "Sony S-Log3, S-Gamut3.Cine"},
    {"S-Log3-Venice", "slog3_sgamut3_venice|S-Log3 Venice S-Gamut3", nullptr, kLight,
     "SONY_SLOG3-SGAMUT3-VENICE_to_ACES2065-1", "Sony Venice, S-Log3, S-Gamut3"},
    {"S-Log3-Venice-Cine", "slog3_sgamut3cine_venice|S-Log3 Venice S-Gamut3.Cine", nullptr, kLight,
     "SONY_SLOG3-SGAMUT3.CINE-VENICE_to_ACES2065-1", "Sony Venice, S-Log3, S-Gamut3.Cine"},
    {"Log3G10", "log3g10_rwg|log3g10_redwidegamutrgb|Log3G10 REDWideGamutRGB", &kRedWide, kLight,
     "RED_LOG3G10-RWG_to_ACES2065-1", "RED Log3G10, RED Wide Gamut"},
    {"REDLogFilm", "redlogfilm_rwg", &kRedWide, kLight, "RED_REDLOGFILM-RWG_to_ACES2065-1",
     "RED LogFilm, RED Wide Gamut"},
    {"V-Log", "vlog|vlog_vgamut|V-Log V-Gamut", &kVGamut, kLight, "PANASONIC_VLOG-VGAMUT_to_ACES2065-1",
     "Panasonic V-Log, V-Gamut"},
    {"C-Log2", "clog2|Canon-Log2|canonlog2_cgamut|CanonLog2 CinemaGamut D55", &kCanon, kLight,
     "CANON_CLOG2-CGAMUT_to_ACES2065-1", "Canon Log 2, Cinema Gamut"},
    {"C-Log3", "clog3|Canon-Log3|canonlog3_cgamut|CanonLog3 CinemaGamut D55", &kCanon, kLight,
     "CANON_CLOG3-CGAMUT_to_ACES2065-1", "Canon Log 3, Cinema Gamut"},
    {kFilmLog, "logarithmic|cineon|KodakLog", nullptr, Curve::kDensity, nullptr,
     "film scans: 10-bit printing density, black 95, white 685"},
    {"ADX10", "adx_10", nullptr, kLight, "ADX10_to_ACES2065-1", "Academy density, 10 bits"},
    {"ADX16", "adx_16", nullptr, kLight, "ADX16_to_ACES2065-1", "Academy density, 16 bits"},
    {kRaw, "data|Utility - Raw", nullptr, kLight, nullptr, "values of no colour; never converted"},
};

// To Rec.709's primaries; empty for those.
std::span<const double> matrix_of(const Gamut* gamut) {
    // clang-format off
    static constexpr std::array kFromRec2020{
        1.66049100210843, -0.58764113878855, -0.07284986331988, 0.0,
        -0.12455047452159, 1.13289989712596, -0.00834942260437, 0.0,
        -0.01815076335491, -0.10057889800801, 1.11872966136291, 0.0,
        0.0, 0.0, 0.0, 1.0};
    static constexpr std::array kFromP3{
        1.22494017628056, -0.22494017628056, 0.0, 0.0,
        -0.04205695470969, 1.04205695470969, 0.0, 0.0,
        -0.01963755459033, -0.07863604555063, 1.09827360014097, 0.0,
        0.0, 0.0, 0.0, 1.0};
    // clang-format on
    if (gamut == &kRec2020) return kFromRec2020;
    return gamut == &kP3 ? std::span<const double>(kFromP3) : std::span<const double>();
}

OCIO::TransformRcPtr builtin(const char* style, bool inverse = false) {
    const auto transform = OCIO::BuiltinTransform::Create();
    transform->setStyle(style);
    if (inverse) transform->setDirection(OCIO::TRANSFORM_DIR_INVERSE);
    return transform;
}

OCIO::TransformRcPtr curve_of(Curve curve) {
    if (curve == Curve::kWeb) {
        const auto srgb = OCIO::ExponentWithLinearTransform::Create();
        srgb->setGamma({2.4, 2.4, 2.4, 1.0});
        srgb->setOffset({0.055, 0.055, 0.055, 0.0});
        return srgb;
    }
    if (curve == Curve::kGamma24) {
        const auto gamma = OCIO::ExponentTransform::Create();
        gamma->setValue({2.4, 2.4, 2.4, 1.0});
        gamma->setNegativeStyle(OCIO::NEGATIVE_MIRROR);
        return gamma;
    }
    // As the knob "unmix_encoding" has it: 0.002 density a code, gamma 0.6, no light at black.
    constexpr double kCodes = 1023.0;
    constexpr double kBlack = 95.0;
    constexpr double kWhite = 685.0;
    constexpr double kDecade = 0.002 / 0.6;
    const double black = std::pow(10.0, (kBlack - kWhite) * kDecade);
    const auto film = OCIO::LogAffineTransform::Create();
    const double slope = 1.0 / (kCodes * kDecade);
    film->setBase(10.0);
    film->setLogSideSlopeValue({slope, slope, slope});
    film->setLogSideOffsetValue({kWhite / kCodes, kWhite / kCodes, kWhite / kCodes});
    film->setLinSideSlopeValue({1.0 - black, 1.0 - black, 1.0 - black});
    film->setLinSideOffsetValue({black, black, black});
    film->setDirection(OCIO::TRANSFORM_DIR_INVERSE);
    return film;
}

}  // namespace

bool KnownSpace::is_linear() const {
    const std::string_view from = style ? style : "";
    return curve == Curve::kStraight && name != std::string_view(kRaw) &&
           (from.empty() || from == "IDENTITY" || from.starts_with("ACEScg"));
}

std::vector<std::string> KnownSpace::alias_list() const {
    return OIIO::Strutil::splits(aliases, "|");
}

std::span<const KnownSpace> known_spaces() {
    return kSpaces;
}

const KnownSpace* known_space(std::string_view name) {
    const auto answers = [name](const KnownSpace& space) {
        const auto same = [name](std::string_view one) { return OIIO::Strutil::iequals(one, name); };
        return same(space.name) || std::ranges::any_of(space.alias_list(), same);
    };
    const auto found = std::ranges::find_if(kSpaces, answers);
    return found == std::end(kSpaces) ? nullptr : &*found;
}

const KnownSpace* linear_space_of(const Chromaticities& xy) {
    const auto near = [](float a, float b) { return std::abs(a - b) < 0.001f; };
    const auto found = std::ranges::find_if(kSpaces, [&](const KnownSpace& space) {
        return space.is_linear() && space.gamut && std::ranges::equal(space.gamut->xy, xy, near);
    });
    return found == std::end(kSpaces) ? nullptr : &*found;
}

OCIO::TransformRcPtr to_linear(const KnownSpace& space) {
    const auto steps = OCIO::GroupTransform::Create();
    if (space.style) {
        steps->appendTransform(builtin(space.style));
        steps->appendTransform(builtin("ACEScg_to_ACES2065-1", true));
        steps->appendTransform(builtin("UTILITY - ACES-AP1_to_LINEAR-REC709_BFD"));
        return steps;
    }
    if (space.curve != Curve::kStraight) steps->appendTransform(curve_of(space.curve));
    if (const auto matrix = matrix_of(space.gamut); !matrix.empty()) {
        const auto primaries = OCIO::MatrixTransform::Create();
        primaries->setMatrix(matrix.data());
        steps->appendTransform(primaries);
    }
    return steps->getNumTransforms() > 0 ? steps : nullptr;
}

}  // namespace veloxa
