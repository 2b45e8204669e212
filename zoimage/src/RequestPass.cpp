#include "RequestPass.h"

#include <algorithm>
#include <atomic>

#include "ZoImage/Iop.h"

namespace Zo::Image {

namespace {

std::atomic<std::uint64_t> last_id{0};

}  // namespace

RequestPass::RequestPass(Iop& root, const Box& box, ChannelSet channels) : id_(++last_id) {
    const Scoped walked(this_thread().requests, this);
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

void RequestPass::note_rows_in_use(const Box& root_box) {
    if (ops_.empty()) return;  // black is in no pass
    const auto window = [&](const Iop& op) {
        const Box& box = op.requested_.box;
        return std::int64_t{root_box.y} - box.y + box.t - root_box.t + 1;
    };
    const auto height = [](const Iop& op) { return std::max<std::int64_t>(1, op.info().box.height()); };
    // Rows beyond an operator's box are its edge rows again: nobody asks for more rows than it has, nor for
    // more than its readers have, but for those that they look up and down.
    std::vector<std::int64_t> most(ops_.size(), 0);
    most.front() = height(*ops_.front());
    for (std::size_t reader = 0; reader < ops_.size(); ++reader) {
        const Iop& reads = *ops_[reader];
        for (const std::size_t read : reads_[reader]) {
            most[read] = std::max(most[read], height(reads) + window(*ops_[read]) - window(reads));
        }
    }
    for (std::size_t slot = 0; slot < ops_.size(); ++slot) {
        Iop& op = *ops_[slot];
        const std::int64_t rows = std::min({window(op), most[slot], height(op)});
        op.rows_in_use_ = static_cast<int>(std::max<std::int64_t>(1, rows));
    }
}

int RequestPass::rows_in_use(const Iop& op) {
    return op.rows_in_use_;
}

}  // namespace Zo::Image
