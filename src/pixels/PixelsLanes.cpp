#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <cstdint>

#include "ZoImage/Samples.h"
#include "pixels/PixelsKernel.h"

namespace LANES {

namespace {

using namespace Zo::Image;

// The work with a sample of the depth.
template <class Work>
void with_sample(SampleDepth depth, const Work& work) {
    if (depth == SampleDepth::kByte) return work(std::uint8_t{});
    if (depth == SampleDepth::kShort) return work(std::uint16_t{});
    if (depth == SampleDepth::kHalf) return work(Half{});
    return work(float{});
}

// Colours of a pixel at once, and its alpha where that is wanted: the compiler makes shuffles of whole
// vectors of it.
template <class Sample, int kComponents, int kWanted>
void split(const Sample* in, const std::array<float*, 4>& planes, std::size_t n) {
    float* __restrict const a = planes[0];
    float* __restrict const b = planes[1];
    float* __restrict const c = planes[2];
    float* __restrict const d = planes[3];
    for (std::size_t i = 0; i < n; ++i) {
        a[i] = to_float(in[kComponents * i]);
        b[i] = to_float(in[kComponents * i + 1]);
        c[i] = to_float(in[kComponents * i + 2]);
        if constexpr (kWanted == 4) d[i] = to_float(in[kComponents * i + 3]);
    }
}

template <class Sample>
void split_one(const Sample* in, std::size_t components, float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = to_float(in[components * i]);
}

template <class Sample>
void join(const std::array<const float*, 4>& planes, Sample* __restrict out, std::size_t n) {
    const float* const a = planes[0];
    const float* const b = planes[1];
    const float* const c = planes[2];
    const float* const d = planes[3];
    for (std::size_t i = 0; i < n; ++i) {
        out[4 * i] = from_float<Sample>(a[i]);
        out[4 * i + 1] = from_float<Sample>(b[i]);
        out[4 * i + 2] = from_float<Sample>(c[i]);
        out[4 * i + 3] = from_float<Sample>(d[i]);
    }
}

#ifdef __SSE2__
// For floats alone: memory's pace shows with them.
bool joined_past_caches(const std::array<const float*, 4>& planes, float* out, std::size_t n) {
    if (reinterpret_cast<std::uintptr_t>(out) % sizeof(__m128) != 0) return false;
    constexpr std::size_t kStep = 4;
    std::size_t i = 0;
    for (; i + kStep <= n; i += kStep, out += 4 * kStep) {
        __m128 a = _mm_loadu_ps(planes[0] + i);
        __m128 b = _mm_loadu_ps(planes[1] + i);
        __m128 c = _mm_loadu_ps(planes[2] + i);
        __m128 d = _mm_loadu_ps(planes[3] + i);
        _MM_TRANSPOSE4_PS(a, b, c, d);
        _mm_stream_ps(out, a);
        _mm_stream_ps(out + 4, b);
        _mm_stream_ps(out + 8, c);
        _mm_stream_ps(out + 12, d);
    }
    _mm_sfence();
    join<float>({planes[0] + i, planes[1] + i, planes[2] + i, planes[3] + i}, out, n - i);
    return true;
}
#endif

template <class Sample>
void join_one(const float* plane, Sample* __restrict out, std::size_t components, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[components * i] = from_float<Sample>(plane[i]);
}

}  // namespace

void split_pixels(SampleDepth depth, int components, const void* pixels, const std::array<float*, 4>& planes,
                  std::size_t n) {
    const bool colour = planes[0] != nullptr && planes[1] != nullptr && planes[2] != nullptr;
    const bool alpha = planes[3] != nullptr;
    with_sample(depth, [&]<class Sample>(Sample) {
        const auto* const in = static_cast<const Sample*>(pixels);
        if (components == 4 && colour && alpha) return split<Sample, 4, 4>(in, planes, n);
        if (components == 4 && colour) return split<Sample, 4, 3>(in, planes, n);
        if (components == 3 && colour) return split<Sample, 3, 3>(in, planes, n);
        const auto count = static_cast<std::size_t>(components);
        for (std::size_t k = 0; k < count; ++k) {
            if (planes[k] != nullptr) split_one(in + k, count, planes[k], n);
        }
    });
}

void join_pixels(SampleDepth depth, int components, const std::array<const float*, 4>& planes, void* pixels,
                 std::size_t n, [[maybe_unused]] bool past_caches) {
#ifdef __SSE2__
    const bool streams = past_caches && components == 4 && depth == SampleDepth::kFloat;
    if (streams && joined_past_caches(planes, static_cast<float*>(pixels), n)) return;
#endif
    with_sample(depth, [&]<class Sample>(Sample) {
        auto* const out = static_cast<Sample*>(pixels);
        if (components == 4) return join<Sample>(planes, out, n);
        const auto count = static_cast<std::size_t>(components);
        for (std::size_t k = 0; k < count; ++k) join_one(planes[k], out + k, count, n);
    });
}

}  // namespace LANES
