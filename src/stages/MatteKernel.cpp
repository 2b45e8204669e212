#include "stages/MatteKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

// The backing as one pixel sees it, and the levels of the secondary channels below which the backing's share
// is not taken away.
struct Backing {
    float p, s0, s1;
    double floor0, floor1;
};

// The floor that "darks" lifts.
double dark_floor(float p, float s, double darks) {
    const double d = static_cast<double>(p - s);
    const double product = d * darks / static_cast<double>(p) * 255.0;
    return min_of(static_cast<double>(s), product);
}

// With a primary below 255 the quotient is not positive, so the floor normally stands.
double lifted_floor(float p, float s, double floor) {
    const double d = static_cast<double>(p - s);
    const double lifted = max_of(d * 255.0 / static_cast<double>(p - 255.0f), floor);
    return 255.0 > static_cast<double>(p) ? lifted : floor;
}

Backing backing_of(float p, float s0, float s1, double darks) {
    return {p, s0, s1, lifted_floor(p, s0, dark_floor(p, s0, darks)),
            lifted_floor(p, s1, dark_floor(p, s1, darks))};
}

// What a secondary channel holds of the subject once the backing's share is taken away.
double content(float c, float cp, float p, float s, double floor) {
    const double pd = static_cast<double>(p);
    const double rest = static_cast<double>(s) - floor;
    const double m = (pd * (static_cast<double>(c) - floor) - static_cast<double>(cp) * rest) /
                     ((255.0 - floor) * pd / 255.0 - rest);
    return floor_at(0.0, m);
}

float matte_pixel(const MatteParams& k, const Backing& b, float c0, float c1, float cp) {
    const double m1 = content(c1, cp, b.p, b.s1, b.floor1);
    const double m0 = content(c0, cp, b.p, b.s0, b.floor0);
    // Converted back before they are compared: comparisons of one width let the loop vectorise.
    const double whole1 = to_int(m1);
    const double whole0 = to_int(m0);
    const double mi = min_of(whole1, whole0);
    const double cpd = static_cast<double>(cp);
    const double pd = static_cast<double>(b.p);
    const double t1 = (cpd - k.brights * m1 - k.cool * (m1 - mi)) / pd;
    const double t0 = (cpd - k.brights * m0 - k.warm * (m0 - mi)) / pd;
    const double v = min_of(t1, t0);
    return static_cast<float>(clamp_to(-127.5, 127.5, v) * 255.0);
}

}  // namespace

MatteParams matte_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {static_cast<float>(backing[0]),        static_cast<float>(backing[1]),
            static_cast<float>(backing[2]),        percent(controls::kMatteDensityBrights),
            percent(controls::kMatteDensityDarks), percent(controls::kMatteDensityCool),
            percent(controls::kMatteDensityWarm)};
}

void matte_constant(const MatteParams& params, const RolePixels& fg, float* matte, std::size_t n) {
    const Backing backing = backing_of(params.backingP, params.backing0, params.backing1, params.darks);
    const MatteParams k = params;
    const float* c0 = fg.role0;
    const float* c1 = fg.role1;
    const float* cp = fg.primary;
    float* out = matte;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) out[i] = matte_pixel(k, backing, c0[i], c1[i], cp[i]);
}

void matte_clean_plate(const MatteParams& params, const RolePixels& fg, const RolePixels& plate, float* matte,
                       std::size_t n) {
    const MatteParams k = params;
    const float* c0 = fg.role0;
    const float* c1 = fg.role1;
    const float* cp = fg.primary;
    const float* s0 = plate.role0;
    const float* s1 = plate.role1;
    const float* p = plate.primary;
    float* out = matte;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = matte_pixel(k, backing_of(p[i], s0[i], s1[i], k.darks), c0[i], c1[i], cp[i]);
    }
}
