// What the node remembered of its tools' strokes with each of the settings that it had lately: a host's undo
// gives parameters their values again and says no more, and a stroke that was undone must not count.
#pragma once

#include <algorithm>
#include <deque>
#include <memory>
#include <utility>

#include "ZoImage/ToolMemory.h"
#include "parameters/Parameters.h"

namespace veloxa::ofx {

class StrokeMemory {
  public:
    using Memory = std::shared_ptr<const Zo::Image::ToolMemory>;

    void keep(Values values, Memory memory) {
        std::erase_if(steps_, [&](const Step& step) { return step.values == values; });
        steps_.push_back({std::move(values), std::move(memory)});
        if (steps_.size() > kSteps) steps_.pop_front();
    }
    // Null where nothing was kept with these values.
    Memory find(const Values& values) const {
        const auto step = std::ranges::find(steps_, values, &Step::values);
        return step != steps_.end() ? step->memory : nullptr;
    }

  private:
    static constexpr std::size_t kSteps = 30;
    struct Step {
        Values values;
        Memory memory;
    };
    std::deque<Step> steps_;
};

}  // namespace veloxa::ofx
