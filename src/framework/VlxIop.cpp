#include "framework/VlxIop.h"

using namespace Zo::Image;

void VlxIop::append(Hash& hash, std::initializer_list<int> control_indices) const {
    for (const int index : control_indices) hash.append(controls().get(index));
}

void VlxIop::append(Hash& hash, const ControlGroup& group) const {
    append(hash, {group.first, group.second, group.third});
}

void VlxIop::append_input(Hash& hash, int n) const {
    if (const Op* op = input_op(n)) hash.append(op->hash());
}

void VlxIop::validate_writing(ChannelSet written, ChannelSet added) {
    copy_info();
    set_out_channels(written);
    info_.channels += added;
}
