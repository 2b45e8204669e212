#include "shot/node/NodeInputs.h"

namespace veloxa {

using namespace Zo::Image;

void NodeInputs::connect(Iop& node, const FrameLoader::Names& names) {
    for (int n = 0; n < node.inputs(); ++n) {
        const auto input = static_cast<std::size_t>(n);
        if (names[input].empty()) {
            node.set_input(n, node.default_input(n));
        } else {
            sources_[input] = std::make_unique<ImageSource>(NodeContext{kInputNames[input]});
            node.set_input(n, sources_[input].get());
        }
    }
}

void NodeInputs::set(const FrameInputs& inputs) {
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (inputs[n].image) sources_[n]->set(inputs[n].image, inputs[n].identity);
    }
}

void NodeInputs::clear() {
    for (const auto& source : sources_) {
        if (source) source->clear();
    }
}

}  // namespace veloxa
