// One walk of requests over a graph: which operators take part, and how much of each is wanted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ThisThread.h"
#include "ZoImage/Box.h"
#include "ZoImage/ChannelSet.h"

namespace Zo::Image {

class Iop;

class RequestPass {
  public:
    // Requests the box from `root`, and so from everything upstream.
    RequestPass(Iop& root, const Box& box, ChannelSet channels);

    // The pass that the calling thread is in, null when it is in none.
    static RequestPass* current();

    // Called by Iop::request: takes the operator into the pass and notes who reads it. True when it is its
    // first request.
    bool enter(Iop& op);
    // While the result lives, whatever is requested is read by `op`.
    Scoped<std::size_t> read_by(const Iop& op) { return {reader_, slot_of(op)}; }

    std::uint64_t id() const { return id_; }
    // The operators that were requested; an operator's slot is its index here.
    const std::vector<Iop*>& ops() const { return ops_; }
    static std::size_t slot_of(const Iop& op);
    // Slots of the operators that the one in `slot` reads, each once, in the order of its requests.
    const std::vector<std::size_t>& reads(std::size_t slot) const { return reads_[slot]; }

    // Notes for every operator how many of its rows the making of one output row can touch: the height
    // by which its requested box exceeds the root's. Only right when the root's whole box was requested.
    void note_rows_in_use(const Box& root_box);
    static int rows_in_use(const Iop& op);

  private:
    std::uint64_t id_;
    std::vector<Iop*> ops_;
    std::vector<std::vector<std::size_t>> reads_;
    static constexpr std::size_t kNobody = static_cast<std::size_t>(-1);
    std::size_t reader_ = kNobody;
};

}  // namespace Zo::Image
