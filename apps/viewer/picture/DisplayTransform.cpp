#include "picture/DisplayTransform.h"

#include <cmath>
#include <optional>
#include <utility>

#include "shot/colour/FileSpace.h"

namespace veloxa::viewer {

struct DisplayTransform::Curves {
    std::optional<std::array<LevelCurve, 3>> channels;
    std::optional<LevelCurve> grey;
};

namespace {

// The curve of a channel of greys.
std::optional<LevelCurve> grey_curve(const ColourConversion& conversion, std::size_t channel) {
    std::vector<float> rgba;
    return measure([&](std::span<const float> values, std::span<std::uint8_t> levels) {
        rgba.resize(4 * values.size());
        for (std::size_t n = 0; n < rgba.size(); ++n) rgba[n] = values[n / 4];
        conversion.apply(rgba.data(), values.size());
        for (std::size_t n = 0; n < values.size(); ++n) levels[n] = level_of(rgba[4 * n + channel]);
    });
}

// Whether colours of every mixture come out, channel by channel, as the greys of those values do.
bool channels_apart(const ColourConversion& conversion) {
    constexpr float kProbes[]{-3.0f,  -0.31f, -0.004f, 0.0f,  0.0007f, 0.011f, 0.043f, 0.13f,
                              0.287f, 0.41f,  0.59f,   0.77f, 0.93f,   1.0f,   1.9f,   23.0f};
    constexpr std::size_t kCount = std::size(kProbes);
    std::vector<float> greys, mixed;
    for (const float v : kProbes) greys.insert(greys.end(), {v, v, v, 1.0f});
    for (std::size_t n = 0; n < kCount * kCount * kCount; ++n) {
        mixed.insert(mixed.end(),
                     {kProbes[n % kCount], kProbes[n / kCount % kCount], kProbes[n / kCount / kCount], 1.0f});
    }
    conversion.apply(greys.data(), kCount);
    conversion.apply(mixed.data(), mixed.size() / 4);
    for (std::size_t n = 0; n < mixed.size() / 4; ++n) {
        const std::size_t value[]{n % kCount, n / kCount % kCount, n / kCount / kCount};
        for (std::size_t c = 0; c < 3; ++c) {
            const float alone = greys[4 * value[c] + c];
            const float among = mixed[4 * n + c];
            if (alone != among && !(std::isnan(alone) && std::isnan(among))) return false;
        }
    }
    return true;
}

}  // namespace

DisplayTransform::DisplayTransform(ColourConversion conversion) : conversion_(std::move(conversion)) {
    if (!changes()) return;
    auto curves = std::make_shared<Curves>();
    curves->grey = grey_curve(conversion_, 1);
    if (curves->grey && channels_apart(conversion_)) {
        const auto red = grey_curve(conversion_, 0);
        const auto blue = grey_curve(conversion_, 2);
        if (red && blue) curves->channels = {*red, *curves->grey, *blue};
    }
    curves_ = std::move(curves);
}

const LevelCurve& DisplayTransform::plain() {
    static const LevelCurve kPlain =
        *measure([](std::span<const float> values, std::span<std::uint8_t> levels) {
            for (std::size_t n = 0; n < values.size(); ++n) levels[n] = level_of(values[n]);
        });
    return kPlain;
}

const std::array<LevelCurve, 3>* DisplayTransform::channels() const {
    static const std::array<LevelCurve, 3> kPlain{plain(), plain(), plain()};
    if (!curves_) return &kPlain;
    return curves_->channels ? &*curves_->channels : nullptr;
}

const LevelCurve* DisplayTransform::grey() const {
    if (!curves_) return &plain();
    return curves_->grey ? &*curves_->grey : nullptr;
}

std::vector<DisplayChoice> display_choices(const ColourConfig& config) {
    std::vector<DisplayChoice> choices;
    const bool own = config.file().empty();
    for (const ColourDisplay& display : config.displays()) {
        for (const std::string& view : display.views) {
            choices.push_back({display.name, view, own ? display.name : display.name + ", " + view});
        }
    }
    if (own) {
        choices.push_back({"", kLinear, "Linear light"});
        choices.push_back({"", kFilmLog, "Film logarithm"});
    }
    return choices;
}

DisplayTransform display_transform(const ColourConfig& config, const std::string& from_space,
                                   const DisplayChoice& choice) {
    if (from_space.empty()) return {};
    const KnownSpace* const known = known_space(from_space);
    std::string from = known ? config.name_of(*known) : "";
    if (from.empty()) from = config.space_named("", from_space);
    return DisplayTransform(choice.display.empty() ? config.between(from, config.space_named("", choice.view))
                                                   : config.for_display(from, choice.display, choice.view));
}

InputSpace input_space(const ColourConfig& config, const Header& header, const std::string& file) {
    if (std::string ruled = config.space_by_rule(file); !ruled.empty()) {
        return {std::move(ruled), "the colour configuration's rule for such files"};
    }
    const FileSpace found = space_of(header, file);
    const std::string why = found.why + (found.sure ? "" : ", not sure");
    if (const KnownSpace* const known = known_space(found.name)) {
        if (std::string name = config.name_of(*known); !name.empty()) return {std::move(name), why};
    }
    for (const ColourSpace& space : config.spaces()) {
        if (space.name == found.name) return {space.name, why};
    }
    return {"", found.name + " (" + why + "), which the colour configuration does not have: shown as stored"};
}

}  // namespace veloxa::viewer
