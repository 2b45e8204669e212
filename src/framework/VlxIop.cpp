#include "framework/VlxIop.h"

using namespace Zo::Image;

VlxIop::ControlList::ControlList(std::initializer_list<Item> items) {
    for (const Item& item : items) {
        for (const int index : item.indices) {
            if (index >= 0) indices_.push_back(index);
        }
    }
}

VlxIop::VlxIop(const NodeContext& context, const ControlBlock* controls, Description description)
    : Iop(context), controls_(controls), description_(std::move(description)) {
    inputs(static_cast<int>(description_.inputs.size()));
}

const char* VlxIop::input_label(int input, char* buffer) const {
    if (input < 0 || input >= inputs()) return buffer;
    const char* const label = description_.inputs[static_cast<std::size_t>(input)].label;
    return label == nullptr ? buffer : label;
}

Hash VlxIop::state() const {
    Hash hash;
    for (const int index : description_.hashed) hash.append(controls_->get(index));
    for (int n = 0; n < inputs(); ++n) {
        const Op* op = reads(n) ? input_op(n) : nullptr;
        if (op != nullptr) hash.append(op->hash());
    }
    return hash;
}

void VlxIop::validate_writing(ChannelSet written, ChannelSet added) {
    copy_info();
    set_out_channels(written);
    info_.channels += added;
}
