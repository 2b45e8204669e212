// Every form of every kernel against its scalar form, bit for bit, and which form a process runs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>

#include "framework/BlurKernel.h"
#include "keyer/OutputKernel.h"
#include "pixels/PixelsKernel.h"
#include "screen/CleanupKernel.h"
#include "screen/ClearFrameKernel.h"
#include "screen/ClearRegionKernel.h"
#include "screen/CombineShadowKernel.h"
#include "screen/ComputeShadowKernel.h"
#include "screen/CrudeMatteKernel.h"
#include "screen/IslandKernel.h"
#include "screen/NearestClear.h"
#include "screen/ShrinkCUKernel.h"
#include "screen/ShrinkKernel.h"
#include "screen/SmartInterpolKernel.h"
#include "screen/SubRegionKernel.h"
#include "stages/ColorConformKernel.h"
#include "stages/FilmKernel.h"
#include "stages/MatteCorrectKernel.h"
#include "stages/MatteKernel.h"
#include "stages/NormalizeKernel.h"
#include "stages/OutputMatteKernel.h"
#include "stages/ProcessedForegroundKernel.h"
#include "stages/SpillKernel.h"
#include "support/Loops.h"
#include "unmix/EncodingKernel.h"
#include "unmix/MorphologyKernel.h"

namespace {

constexpr std::size_t kIns = 9;
constexpr std::size_t kOuts = 4;
constexpr std::size_t kRows = 5;  // of kernels that work on whole frames
constexpr std::size_t kMargin = 160;

// Runs of plain levels, of what kernels test for, of awkward values and of any bits at all.
std::vector<float> plane(std::size_t size, std::mt19937& random) {
    static constexpr std::uint32_t kAwkward[] = {
        0x00000000, 0x80000000, 0x00000001, 0x807fffff, 0xc1200000, 0x437f0000, 0x477fffff, 0xff7fffff,
        0x7f800000, 0xff800000, 0x7fc00000, 0x7fc12345, 0xffc00001, 0x7fa00001, 0xff812345, 0x4f000000};
    const bool mostly_zero = random() % 4 == 0;
    std::vector<float> values;
    while (values.size() < size) {
        const auto kind = mostly_zero && random() % 8 != 0 ? 4 : random() % 8;
        for (auto left = 1 + random() % 40; left > 0; --left) {
            const float level = static_cast<float>(random() % 30000) / 100.0f;
            const auto awkward = std::bit_cast<float>(kAwkward[random() % std::size(kAwkward)]);
            const auto any = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            const float values_of_kind[] = {level, level, level, level / 255.0f, 0.0f, 255.0f, awkward, any};
            values.push_back(values_of_kind[kind]);
        }
    }
    values.resize(size);
    return values;
}

struct Job {
    std::array<const float*, kIns> in;
    std::array<float*, kOuts> out;
    std::size_t n;
    unsigned variant;
    const ControlBlock& controls;

    int width() const { return static_cast<int>(n); }
    std::size_t radius() const { return std::array<std::size_t, 6>{0, 2, 1, 20, 7, 130}[variant]; }
    float fraction() const { return 0.13f * static_cast<float>(variant); }
    RolePixels pixels(std::size_t k) const { return {in[k], in[k + 1], in[k + 2]}; }
    RoleOutput pixels_out() const { return {out[0], out[1], out[2]}; }
    std::vector<const float*> lines() const { return {in.begin(), in.begin() + 1 + (variant * 5) % kIns}; }
    std::vector<float> scratch() const { return std::vector<float>(n + 2 * radius() + 2); }
};

struct Case {
    const char* name;
    std::function<void(const Job&)> run;
    std::size_t rows = 1;
};

void overlay_of(const Job& j, OverlayMode mode) {
    const bool mono = j.variant % 2 == 1;
    const float pivot = std::array{0.5f, 0.1f, 0.0f, 1.0f, -3.0f, 0.9f}[j.variant];
    overlay({mode, mono, {1.0f, 0.2f, -3.0f, 0.25f}, pivot}, j.in[3], {j.in[0], j.in[1], j.in[2]},
            {j.out[0], mono ? nullptr : j.out[1], j.out[2]}, j.n);
}

void clear_region_of(const Job& j, bool plate) {
    const RolePixels backing = j.pixels(3);
    const auto with = [&](unsigned bit, std::size_t k) { return (j.variant & bit) == 0 ? j.in[k] : nullptr; };
    clear_region(clear_region_params(j.controls), j.pixels(0), plate ? &backing : nullptr,
                 {with(1, 6), with(2, 7), with(4, 8)}, j.out[0], j.n);
}

void matte_correct_of(const Job& j, MatteLimit limit) {
    matte_correct(limit, static_cast<std::int32_t>(j.radius()), j.width(), static_cast<int>(kRows), j.in[0],
                  j.in[1], j.out[0], test::forward_loop);
}

template <class Steps>
void nearest_clear_of(const Job& j) {
    if (j.n == 0) return;
    NearestClear<Steps> nearest(j.width(), static_cast<int>(kRows));
    for (std::size_t y = 0; y < kRows; ++y) nearest.add_row(static_cast<int>(y), j.in[0] + y * j.n);
    nearest.fill({j.out[0], j.out[1], j.out[2]}, {60.0f, 80.0f, 200.0f}, test::forward_loop);
    std::copy_n(nearest.distance(), j.n * kRows, j.out[3]);
}

void smart_interpol_of(const Job& j) {
    if (j.n == 0) return;
    SmartInterpol interpolation(j.width(), static_cast<int>(kRows));
    for (std::size_t y = 0; y < kRows; ++y) {
        interpolation.add_row(static_cast<int>(y), j.in[0] + y * j.n);
    }
    interpolation.run(smart_interpol_params(j.controls), {j.out[0], j.out[1], j.out[2]}, test::forward_loop);
}

// The depths in turn, each with a part of the span in which its pixels find room: work(depth, begin, pixels).
template <class Work>
void each_depth(const Job& j, const Work& work) {
    const std::size_t n = j.n / 16;
    for (std::size_t k = 0; k < 4; ++k) work(static_cast<SampleDepth>(k), k * 4 * n, n);
}

void split_pixels_of(const Job& j, int components) {
    const bool alpha = j.variant % 2 == 0;
    each_depth(j, [&](SampleDepth depth, std::size_t at, std::size_t n) {
        split_pixels(depth, components, j.in[0] + at,
                     {j.out[0] + at, j.out[1] + at, j.out[2] + at, alpha ? j.out[3] + at : nullptr}, n);
    });
}

// An aligned place is written past the caches, any other by way of them.
void join_pixels_of(const Job& j, int components) {
    each_depth(j, [&](SampleDepth depth, std::size_t at, std::size_t n) {
        const std::size_t sample = std::array<std::size_t, 4>{1, 2, 2, 4}[static_cast<std::size_t>(depth)];
        for (float* const place : {j.out[0], j.out[1]}) {
            join_pixels(depth, components, {j.in[0], j.in[1], j.in[2], j.in[3]}, place + at, n, true);
        }
        const std::size_t bytes = n * static_cast<std::size_t>(components) * sample;
        EXPECT_EQ(std::memcmp(j.out[0] + at, j.out[1] + at, bytes), 0);
    });
}

const std::vector<Case> kCases{
    {"split 1", [](auto& j) { split_pixels_of(j, 1); }},
    {"split 3", [](auto& j) { split_pixels_of(j, 3); }},
    {"split 4", [](auto& j) { split_pixels_of(j, 4); }},
    {"join 1", [](auto& j) { join_pixels_of(j, 1); }},
    {"join 3", [](auto& j) { join_pixels_of(j, 3); }},
    {"join 4", [](auto& j) { join_pixels_of(j, 4); }},
    {"normalize", [](auto& j) { normalize(j.in[0], j.out[0], j.n); }},
    {"output matte", [](auto& j) { output_matte(j.in[0], j.out[0], j.n); }},
    {"opacity", [](auto& j) { opacity(j.in[0], j.out[0], j.n); }},
    {"linear opacity", [](auto& j) { linear_opacity(j.in[0], j.out[0], j.n); }},
    {"colour share", [](auto& j) { colour_share(j.in[0], j.out[0], j.n); }},
    {"output colour",
     [](auto& j) {
         const auto mode = static_cast<OutputMode>(j.variant % 3);
         output_colour(mode, j.in[0], j.in[1], j.in[2], j.out[0], j.n);
     }},
    {"added colour",
     [](auto& j) {
         const auto mode = static_cast<OutputMode>(j.variant % 3);
         added_colour(mode, j.in[0], j.in[1], j.in[2], j.in[3], j.out[0], j.n);
     }},
    {"unmixed colour",
     [](auto& j) {
         const UnmixedParams params{static_cast<OutputMode>(j.variant % 3), Encoding(j.variant / 2)};
         unmixed_colour(params, j.in[0], j.in[1], j.in[2], j.in[3], j.out[0], j.n);
         unmixed_colour({{}, params.encoding}, j.in[0], j.in[1], j.in[2], j.in[3], j.out[1], j.n);
     }},
    {"decoded colour", [](auto& j) { decoded_colour(j.in[0], j.out[0], j.n); }},
    {"larger opacity",
     [](auto& j) {
         std::copy_n(j.in[0], j.n, j.out[0]);
         larger_opacity(j.in[1], j.out[0], j.n);
     }},
    {"highlight share",
     [](auto& j) {
         highlight_share({j.in[0], j.in[1], j.in[2]}, j.in[3], j.in[4], j.out[0], j.n);
     }},
    {"keep highlights",
     [](auto& j) {
         const auto mode = static_cast<OutputMode>(j.variant % 3);
         std::copy_n(j.in[0], j.n, j.out[0]);
         keep_highlights(mode, j.in[1], j.in[2], j.in[3], j.in[4], j.out[0], j.n);
     }},
    {"encodings",
     [](auto& j) {
         const auto encoding = static_cast<Encoding>(j.variant % 3);
         to_light(encoding, j.in[0], j.out[0], j.n);
         from_light(encoding, j.in[1], j.out[1], j.n);
         std::copy_n(j.in[2], j.n, j.out[2]);
         from_light(encoding, j.out[2], j.out[2], j.n);
     }},
    {"between middles",
     [](auto& j) {
         const std::size_t side = 2 * j.variant + 2;
         between_middles(j.in[0], static_cast<int>(side), j.out[0], j.n / side);
         // Which of two NaNs a sum gives is left open.
         std::replace_if(
             j.out[0], j.out[0] + j.n, [](float v) { return v != v; }, 0.0f);
     }},
    {"overlay of the screen", [](auto& j) { overlay_of(j, OverlayMode::kScreen); }},
    {"overlay of the subject", [](auto& j) { overlay_of(j, OverlayMode::kSubject); }},
    {"holdout colour", [](auto& j) { holdout_colour(j.in[0], j.in[1], j.out[0], j.n); }},
    {"holdout alpha", [](auto& j) { holdout_alpha(j.in[0], j.out[0], j.n); }},
    {"blur add", [](auto& j) { blur_add(j.lines(), j.out[0], j.n); }},
    {"blur finish", [](auto& j) { blur_finish(blur_scale(5), j.out[0], j.n); }},
    {"shrink row", [](auto& j) { shrink_row(j.in[0], j.radius(), j.scratch().data(), j.out[0], j.n); }},
    {"shrink lines", [](auto& j) { shrink_lines(j.lines(), j.out[0], j.n); }},
    {"shrink cu row",
     [](auto& j) {
         shrink_cu_row(j.in[0], j.radius() + 1, j.fraction(), j.scratch().data(), j.out[0], j.n);
     }},
    {"shrink cu lines", [](auto& j) { shrink_cu_lines(j.lines(), j.out[0], j.n); }},
    {"shrink cu end", [](auto& j) { shrink_cu_end(j.in[0], j.fraction(), j.out[0], j.n); }},
    {"islands",
     [](auto& j) {
         remove_islands(static_cast<std::int32_t>(j.variant) * 2 - 1, j.in[0], j.in[1], j.in[2], j.out[0],
                        j.n);
     }},
    {"crude matte",
     [](auto& j) { crude_matte(crude_matte_params(j.controls), j.pixels(0), j.pixels(3), j.out[0], j.n); }},
    {"film lowest", [](auto& j) { film_lowest(j.lines(), j.out[0], j.n); }},
    {"film highest", [](auto& j) { film_highest(j.lines(), j.out[0], j.n); }},
    {"film correct",
     [](auto& j) {
         film_correct(film_params(j.controls), j.in[0], j.in[1], j.in[2], {j.in[3], j.in[4], j.in[5]},
                      {j.out[0], j.out[1], j.out[2]}, j.n);
     }},
    {"sub region", [](auto& j) { sub_region(sub_region_params(j.controls), j.pixels(0), j.out[0], j.n); }},
    {"clear region", [](auto& j) { clear_region_of(j, false); }},
    {"clear region with plate", [](auto& j) { clear_region_of(j, true); }},
    {"clean-up colour",
     [](auto& j) { cleanup_colour(cleanup_params(j.controls), j.in[0], j.in[1], j.out[0], j.n); }},
    {"clean-up matte", [](auto& j) { cleanup_matte(cleanup_params(j.controls), j.in[0], j.out[0], j.n); }},
    {"clear frame",
     [](auto& j) {
         clear_frame(j.pixels(0), j.pixels(3), j.pixels(6), 99.0f, j.pixels_out(), j.out[3], j.n);
     }},
    {"clear frame's last coverage",
     [](auto& j) {
         if (j.n > 0) j.out[0][0] = clear_frame_last_coverage(j.pixels(0), j.pixels(3), j.n);
     }},
    {"compute shadow",
     [](auto& j) { compute_shadow(compute_shadow_params(j.controls), j.pixels(0), j.out[0], j.n); }},
    {"combine shadow",
     [](auto& j) {
         combine_shadow(combine_shadow_params(j.controls), j.pixels(0), j.in[3], j.in[4], j.pixels_out(),
                        j.out[3], j.n);
     }},
    {"matte", [](auto& j) { matte_constant(matte_params(j.controls), j.pixels(0), j.out[0], j.n); }},
    {"matte with plate",
     [](auto& j) { matte_clean_plate(matte_params(j.controls), j.pixels(0), j.pixels(3), j.out[0], j.n); }},
    {"processed foreground",
     [](auto& j) {
         unveil_constant(veil_params(j.controls), j.pixels(0), {j.in[3], j.in[4]}, j.pixels_out(), j.out[3],
                         j.n);
     }},
    {"processed foreground with plate",
     [](auto& j) {
         unveil_clean_plate(veil_params(j.controls), j.pixels(0), j.pixels(3), {j.in[6], j.in[7]},
                            j.pixels_out(), j.out[3], j.n);
     }},
    {"spill",
     [](auto& j) {
         suppress_spill(spill_params(j.controls), j.pixels(0), j.in[3], j.in[4], j.pixels_out(), j.n);
     }},
    {"conform colour",
     [](auto& j) { conform_colour(conform_params(j.controls), j.pixels(0), j.in[3], j.pixels_out(), j.n); }},
    {"matte correct above", [](auto& j) { matte_correct_of(j, MatteLimit::kAbove); }, kRows},
    {"matte correct below", [](auto& j) { matte_correct_of(j, MatteLimit::kBelow); }, kRows},
    {"nearest clear", nearest_clear_of<std::int16_t>, kRows},
    {"nearest clear of a huge frame", nearest_clear_of<std::int32_t>, kRows},
    {"smart interpolation", smart_interpol_of, kRows},
};

// The defaults, controls of everyday size, and any integers at all.
std::vector<std::int32_t> controls_of(unsigned variant, std::mt19937& random) {
    std::vector<std::int32_t> values(ControlBlock::kCount);
    ControlBlock(values.data(), 1);
    for (std::int32_t& v : values) {
        if (variant % 3 == 1) v = static_cast<std::int32_t>(random() % 320) - 40;
        if (variant == 5) v = static_cast<std::int32_t>(random());
    }
    return values;
}

using Bits = std::vector<std::uint32_t>;

// The kernel's output planes with their margins, after a run.
std::vector<Bits> run(const Case& c, Lanes lanes, std::size_t n, unsigned variant, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<std::int32_t> values = controls_of(variant, random);
    const ControlBlock controls(values.data(), 0);
    const std::size_t size = kMargin + n * c.rows + kMargin;
    std::vector<std::vector<float>> planes;
    for (std::size_t k = 0; k < kIns + kOuts; ++k) planes.push_back(plane(size + k, random));
    const std::vector<std::vector<float>> before = planes;

    Job job{{}, {}, n, variant, controls};
    for (std::size_t k = 0; k < kIns; ++k) job.in[k] = planes[k].data() + kMargin + k % 7;
    for (std::size_t k = 0; k < kOuts; ++k) job.out[k] = planes[kIns + k].data() + kMargin + k + 3;
    use_lanes(lanes);
    c.run(job);

    std::vector<Bits> results;
    for (std::size_t k = 0; k < planes.size(); ++k) {
        Bits bits;
        for (const float v : planes[k]) bits.push_back(std::bit_cast<std::uint32_t>(v));
        for (std::size_t i = 0; i < planes[k].size(); ++i) {
            const bool may_write =
                k >= kIns && i >= kMargin + k - kIns + 3 && i < kMargin + k - kIns + 3 + n * c.rows;
            if (!may_write && bits[i] != std::bit_cast<std::uint32_t>(before[k][i])) {
                ADD_FAILURE() << c.name << ' ' << name_of(lanes) << ": plane " << k << " changed at " << i;
                return {};
            }
        }
        if (k >= kIns) results.push_back(std::move(bits));
    }
    return results;
}

// One test a form that can run here, so that a run's list of tests tells which they were.
class Forms : public testing::TestWithParam<Lanes> {
  protected:
    ~Forms() override { use_lanes(lanes_); }

  private:
    Lanes lanes_ = lanes_in_use();
};

std::vector<Lanes> forms_beside_the_scalar_one() {
    std::vector<Lanes> forms(kAllLanes.begin() + 1, kAllLanes.end());
    std::erase_if(forms, [](Lanes lanes) { return !supported(lanes); });
    return forms;
}

INSTANTIATE_TEST_SUITE_P(Here, Forms, testing::ValuesIn(forms_beside_the_scalar_one()),
                         [](const auto& form) { return std::string(name_of(form.param)); });

TEST_P(Forms, GiveTheBitsOfTheScalarOne) {
    for (const Case& c : kCases) {
        for (unsigned variant = 0; variant < 6 && !HasFailure(); ++variant) {
            for (const std::size_t n : {0, 1, 2, 3, 7, 15, 16, 17, 31, 33, 1000}) {
                const auto seed = static_cast<std::uint32_t>(n * 6 + variant);
                EXPECT_TRUE(run(c, GetParam(), n, variant, seed) == run(c, Lanes::kScalar, n, variant, seed))
                    << c.name << ", variant " << variant << ", " << n << " pixels";
            }
        }
    }
}

TEST(Lanes, TheEmulatedFormIsHere) {
    EXPECT_TRUE(supported(Lanes::kEmulated));
}

TEST(Lanes, TheEnvironmentChoosesALowerForm) {
    using testing::AllOf;
    using testing::HasSubstr;
    using testing::Not;
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a new process, which reads its environment again
    unsetenv("VELOXA_LANES");
    const std::string widest = supported(Lanes::kAvx512) ? "avx512"
                               : supported(Lanes::kAvx2) ? "avx2"
                                                         : "sse2";
    struct Try {
        std::string wish, runs;
        bool complains;
    };
    for (const Try& t :
         {Try{"", widest, false}, Try{"scalar", "scalar", false}, Try{"sse2", "sse2", false},
          Try{widest, widest, false}, Try{"AVX2", widest, true}, Try{"avx512", widest, widest != "avx512"}}) {
        setenv("VELOXA_LANES", t.wish.c_str(), 1);
        const auto complaint = HasSubstr("VELOXA_LANES");
        const auto runs = HasSubstr("runs " + t.runs);
        const auto say_and_leave = [] {
            std::fprintf(stderr, "runs %s\n", name_of(lanes_in_use()));
            std::exit(0);
        };
        if (t.complains) {
            EXPECT_EXIT(say_and_leave(), testing::ExitedWithCode(0), AllOf(complaint, runs)) << t.wish;
        } else {
            EXPECT_EXIT(say_and_leave(), testing::ExitedWithCode(0), AllOf(Not(complaint), runs)) << t.wish;
        }
        unsetenv("VELOXA_LANES");
    }
}

}  // namespace
