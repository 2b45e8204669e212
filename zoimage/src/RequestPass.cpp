#include "RequestPass.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "ThisThread.h"
#include "ZoImage/Iop.h"

namespace Zo::Image {

namespace {

std::atomic<std::uint64_t> last_id{0};

}  // namespace

RequestPass::RequestPass(Iop& root, const Box& box, ChannelSet channels) : id_(++last_id) {
    const Use scope(&ThisThread::requests, *this);
    root.request(box.x, box.y, box.r, box.t, channels, 1);
}

RequestPass* RequestPass::current() {
    return this_thread().requests;
}

bool RequestPass::enter(Iop& op) {
    const bool first = op.pass_ != id_;
    if (first) {
        op.pass_ = id_;
        op.slot_ = static_cast<int>(ops_.size());
        op.requested_ = {};
        ops_.push_back(&op);
        reads_.emplace_back();
    }
    if (reader_ != kNobody) {
        std::vector<std::size_t>& reads = reads_[reader_];
        const std::size_t slot = slot_of(op);
        if (std::find(reads.begin(), reads.end(), slot) == reads.end()) reads.push_back(slot);
    }
    return first;
}

std::size_t RequestPass::slot_of(const Iop& op) {
    return static_cast<std::size_t>(op.slot_);
}

RequestPass::Reader::Reader(RequestPass& pass, const Iop& op)
    : pass_(pass), before_(std::exchange(pass.reader_, slot_of(op))) {}

void RequestPass::note_rows_in_use(const Box& root_box) {
    for (Iop* op : ops_) {
        const Box& box = op->requested_.box;
        // Rows beyond the operator's box are its edge rows again, so never more than it has.
        const std::int64_t below = std::int64_t{root_box.y} - box.y;
        const std::int64_t above = std::int64_t{box.t} - root_box.t;
        const std::int64_t height = std::max(1, op->info().box.height());
        op->rows_in_use_ = static_cast<int>(std::clamp<std::int64_t>(below + above + 1, 1, height));
    }
}

int RequestPass::rows_in_use(const Iop& op) {
    return op.rows_in_use_;
}

}  // namespace Zo::Image
