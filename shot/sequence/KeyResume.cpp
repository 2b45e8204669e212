#include "shot/sequence/KeyResume.h"

#include <algorithm>

namespace veloxa {

OutputState frame_state(const KeyPlan& plan, int frame, const std::vector<std::string>& fingerprints,
                        const Zo::Image::AbortFlag* abort) {
    OutputState least = OutputState::kWhole;
    for (std::size_t n = 0; n < plan.outputs.size(); ++n) {
        const std::string file = plan.outputs[n].file.at(frame);
        least = std::max(least, output_state(file, fingerprints.at(n), abort));
    }
    return least;
}

int kept_at_head(const KeyPlan& plan, const Caller& caller) {
    int kept = 0;
    while (kept < plan.frames.count()) {
        const int frame = plan.frames.at(kept);
        if (frame_state(plan, frame, plan.fingerprints->of(frame), caller.abort) != OutputState::kWhole)
            break;
        caller.progress(++kept, plan.frames.count());
    }
    return kept;
}

std::string counts_text(const FrameCounts& counts) {
    const int all = counts.made + counts.kept + counts.stale + counts.failed + counts.others + counts.left;
    std::string text = std::to_string(all) + (all == 1 ? " frame: " : " frames: ");
    text += std::to_string(counts.made) + " made, " + std::to_string(counts.kept) + " kept, ";
    text += std::to_string(counts.stale) + " stale and made again, ";
    text += std::to_string(counts.failed) + " failed";
    if (counts.others > 0) text += ", " + std::to_string(counts.others) + " left to other processes";
    if (counts.left > 0) text += ", " + std::to_string(counts.left) + " not begun";
    return text;
}

}  // namespace veloxa
