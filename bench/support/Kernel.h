// One kernel of the benchmarks: how to run it over a span of plate data, and what a pixel takes.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "controls/ChannelRoles.h"
#include "controls/ControlBlock.h"
#include "panel/KnobStorage.h"
#include "support/Counts.h"

namespace bench {

inline constexpr std::size_t kSpan =
    4096;  // with all of a kernel's planes well inside the second-level cache
inline constexpr std::size_t kMargin = 64;  // to either side, for kernels that look along the row

struct Kernel {
    std::string name;
    Counts pixel;
    std::function<void()> run;  // over the span, in the form in use, into the outputs of the material
};

// A plane of the span; data() is its first pixel.
class Plane {
  public:
    Plane() : values_(kSpan + 2 * kMargin) {}
    float* data() { return values_.data() + kMargin; }
    const float* data() const { return values_.data() + kMargin; }
    std::vector<float>& all() { return values_; }
    const std::vector<float>& all() const { return values_; }

  private:
    std::vector<float> values_;
};

// What kernels read and write: pixels of a keyed plate, a third each of backing, subject and their mixture,
// in role order of a green screen; on the working scale but for `raw` and `background`.
struct Material {
    std::array<Plane, 3> fg, plate, lit;  // lit: the clear frame
    Plane raw, background, opacity;       // as the host delivers, 0 to 1 and some above
    Plane matte, alpha;                   // -30 to 280; 0 to 255
    Plane region;                         // 0 or 255
    Plane none;                           // 0: no certain backing, so that no pixel is left out
    std::array<Plane, 5> lines;           // regions, for kernels that look along columns
    std::array<Plane, 4> out;

    RolePixels fg_pixels() const { return {fg[0].data(), fg[1].data(), fg[2].data()}; }
    RolePixels plate_pixels() const { return {plate[0].data(), plate[1].data(), plate[2].data()}; }
    RolePixels lit_pixels() const { return {lit[0].data(), lit[1].data(), lit[2].data()}; }
    std::array<const float*, 5> column_lines() const {
        return {lines[0].data(), lines[1].data(), lines[2].data(), lines[3].data(), lines[4].data()};
    }
    RoleOutput colour() { return {out[0].data(), out[1].data(), out[2].data()}; }
};

Material& material();

// The controls of a keyer with these knobs.
const ControlBlock& controls_of(void (*set)(KnobStorage&));

// What `run` counts in the counted form, a pixel; `planes` it reads and writes.
Counts counts_of(double planes, const std::function<void()>& run);

// The kernels of each folder of the sources.
std::vector<Kernel> stages_kernels();
std::vector<Kernel> screen_kernels();
std::vector<Kernel> framework_kernels();
std::vector<Kernel> output_kernels();
std::vector<Kernel> unmix_kernels();
const std::vector<Kernel>& all_kernels();

}  // namespace bench

// Declares the counted form of a kernel with forms.
#define COUNTED_FORM(Function, name) \
    namespace counted_form {         \
    Function name;                   \
    }
