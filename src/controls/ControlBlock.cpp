#include "controls/ControlBlock.h"

#include "controls/Controls.h"

ControlBlock::ControlBlock(std::int32_t* values, int initialise) : values_(values) {
    if (initialise == 0) return;
    for (int i = 0; i < kCount; ++i) reset(i);
}

void ControlBlock::mark(int index, std::int32_t v) {
    const bool changed = get(index) != v;
    set_dirty(changed ? category(index) : kClean);
    set(index, v);
}

void ControlBlock::mark(const ControlGroup& g, const ControlTriple& v) {
    const bool changed = get(g) != v;
    set_dirty(changed ? category(g.first) : kClean);
    set(g, v[0], v[1], v[2]);
}

void ControlBlock::reset(const ControlGroup& g) {
    reset(g.first);
    reset(g.second);
    reset(g.third);
}

std::int32_t ControlBlock::dirty() const {
    return stored(controls::kDirty);
}

void ControlBlock::set_dirty(std::int32_t category) {
    values_[controls::kDirty] = category;
}
