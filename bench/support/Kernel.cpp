#include "support/Kernel.h"

#include <algorithm>
#include <memory>
#include <random>

#include "panel/KnobCopy.h"

namespace bench {

namespace {

Material make_material() {
    Material m;
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    const std::array<float, 3> backing{51.0f, 74.0f, 145.0f};
    for (std::size_t i = 0; i < m.none.all().size(); ++i) {
        // Runs of 48 pixels, as edges come seldom.
        const std::size_t kind = i / 48 % 3;
        const float show = kind == 0 ? 0.0f : kind == 1 ? 1.0f : unit(random);
        for (std::size_t c = 0; c < 3; ++c) {
            const float screen = backing[c] * (0.9f + 0.2f * unit(random));
            const float subject = (c == 2 ? 120.0f : 170.0f) * (0.3f + 0.7f * unit(random));
            m.plate[c].all()[i] = screen;
            m.lit[c].all()[i] = backing[c] * (0.98f + 0.04f * unit(random));
            m.fg[c].all()[i] = subject * show + screen * (1.0f - show) * (0.95f + 0.1f * unit(random));
        }
        m.raw.all()[i] = 1.3f * unit(random);
        m.background.all()[i] = unit(random);
        m.opacity.all()[i] = show;
        m.matte.all()[i] = std::clamp(255.0f * (1.0f - show) + 60.0f * (unit(random) - 0.5f), -30.0f, 280.0f);
        m.alpha.all()[i] = 255.0f * show;
        m.region.all()[i] = kind == 0 ? 255.0f : 0.0f;
        for (std::size_t k = 0; k < m.lines.size(); ++k) {
            m.lines[k].all()[i] = (i + 9 * k) / 48 % 3 == 0 ? 255.0f : 0.0f;
        }
    }
    return m;
}

}  // namespace

Material& material() {
    static Material made = make_material();
    return made;
}

const ControlBlock& controls_of(void (*set)(KnobStorage&)) {
    struct Values {
        std::vector<std::int32_t> values = std::vector<std::int32_t>(ControlBlock::kCount);
        ControlBlock block{values.data(), 1};
    };
    static std::vector<std::unique_ptr<Values>> kept;
    kept.push_back(std::make_unique<Values>());
    KnobStorage knobs;
    knobs.screen_color = {0.2f, 0.65f, 0.3f};
    set(knobs);
    copy_knobs(knobs, 0, kept.back()->block);
    return kept.back()->block;
}

Counts counts_of(double planes, const std::function<void()>& run) {
    counted = Counts{};
    run();
    Counts pixel = (1.0 / static_cast<double>(kSpan)) * counted;
    pixel.bytes = planes * sizeof(float);
    return pixel;
}

const std::vector<Kernel>& all_kernels() {
    static const std::vector<Kernel> all = [] {
        std::vector<Kernel> made;
        for (const auto& folder :
             {stages_kernels(), screen_kernels(), framework_kernels(), output_kernels(), unmix_kernels()}) {
            made.insert(made.end(), folder.begin(), folder.end());
        }
        return made;
    }();
    return all;
}

}  // namespace bench
