// One view of one picture, row after row.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "picture/LevelCurve.h"
#include "picture/Sampler.h"
#include "picture/Tone.h"

namespace veloxa::viewer {

// What it is made of stays alive. Const functions may be called by any thread, each with a scratch of its
// own.
class RowShader {
  public:
    struct Scratch {
        Sampler::Scratch sampler;
        std::array<std::vector<float>, 4> planes, behind;
        std::vector<float> rgba;
        std::vector<std::uint32_t> marks;
    };

    RowShader(const ShownPicture& picture, const View& view, const DisplayTransform& display,
              const Geometry& geometry);

    // Whether the area's two rows look alike.
    bool same(int row, int other) const;
    void shade(int row, Scratch& scratch, std::uint32_t* out) const;

  private:
    using Planes = std::array<const float*, 3>;

    std::vector<Zo::Image::Channel> channels() const;
    void colour(int row, Scratch& scratch, std::uint32_t* out) const;
    void grey(int row, Scratch& scratch, std::uint32_t* out) const;
    void status(int row, Scratch& scratch, std::uint32_t* out) const;
    void put_behind(int row, const float* alpha, Planes& planes, Scratch& scratch) const;
    void overlay(const float* alpha, std::uint32_t* out) const;
    void show(const Planes& planes, Scratch& scratch, std::uint32_t* out) const;
    void mark(int row, Scratch& scratch, std::uint32_t* out) const;

    const View& view_;
    const DisplayTransform& display_;
    Tone tone_;
    Sampler sampler_;
    std::optional<Sampler> behind_;
    std::vector<LevelTable> tables_;  // red's, green's and blue's, or one for a grey; none without curves
    std::array<std::vector<float>, 2> checkers_;  // a row of it and the other, where it lies behind
    std::size_t width_;
};

}  // namespace veloxa::viewer
