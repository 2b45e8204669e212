// Lists of samples as strokes leave them, for a green screen; and the node that they were taken on.
#pragma once

#include <array>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "tools/Stage.h"

namespace bench {

class SampledNode {
  public:
    explicit SampledNode(bool clean_plate);
    SampledNode(const SampledNode&) = delete;
    SampledNode& operator=(const SampledNode&) = delete;

    Setting setting() const { return {knobs_, controls_, flags_}; }
    // What the node becomes when the knobs are adopted.
    void adopt(const KnobStorage& knobs);

  private:
    KnobStorage knobs_;
    std::array<std::int32_t, ControlBlock::kCount> values_{};
    ControlBlock controls_;
    std::uint32_t flags_;
};

enum class Wish {
    kAgreeable,      // every sample can have what was asked
    kContradictory,  // a third of the samples asks for the opposite
    kScattered,      // colours and wishes of every kind
};

struct Solver {
    std::string name;
    bool clean_plate;
    std::function<Tuning(const Setting&)> run;
};

// Every analysis with as many samples as one list holds, and as many as a session can bring together.
std::vector<Solver> solvers(Wish wish);

}  // namespace bench
