#include "ZoImage/Op.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <utility>

#include "RowPath.h"

namespace Zo::Image {

namespace {

std::atomic<std::uint64_t> last_serial{0};

}  // namespace

Op::Op(const NodeContext& context) : context_(context), serial_(++last_serial) {}

Op::~Op() {
    for (std::size_t n = 0; n < inputs_.size(); ++n) unlink_input(n);
    for (Op* output : outputs_) {
        std::replace(output->inputs_.begin(), output->inputs_.end(), this, static_cast<Op*>(nullptr));
        ++output->changes_;
        output->mark_invalid();
    }
    for (Op* child : children_) child->parent_ = nullptr;
    if (parent_ != nullptr) std::erase(parent_->children_, this);
}

void Op::inputs(int count) {
    for (auto n = static_cast<std::size_t>(count); n < inputs_.size(); ++n) unlink_input(n);
    inputs_.resize(static_cast<std::size_t>(count), nullptr);
}

void Op::unlink_input(std::size_t n) {
    Op* input = std::exchange(inputs_[n], nullptr);
    if (input == nullptr || input->serves_all_graphs_) return;
    input->outputs_.erase(std::find(input->outputs_.begin(), input->outputs_.end(), this));
}

void Op::set_input(int n, Op* op) {
    assert(n >= 0 && n < inputs());
    const auto slot = static_cast<std::size_t>(n);
    if (inputs_[slot] == op) return;
    unlink_input(slot);
    inputs_[slot] = op;
    if (op != nullptr && !op->serves_all_graphs_) op->outputs_.push_back(this);
    invalidate();
}

Op* Op::default_input(int /*n*/) {
    return nullptr;
}

const char* Op::input_label(int /*n*/, char* buffer) const {
    return buffer;
}

void Op::parent(Op* owner, std::string_view member_name) {
    if (parent_ != nullptr) std::erase(parent_->children_, this);
    parent_ = owner;
    member_name_ = member_name;
    if (owner != nullptr) owner->children_.push_back(this);
}

Op* Op::child(std::string_view member_name) const {
    const auto found = std::ranges::find(children_, member_name, &Op::member_name_);
    return found == children_.end() ? nullptr : *found;
}

void Op::validate(bool for_real) {
    if (state_ == State::kReal || (state_ == State::kNotForReal && !for_real)) return;
    error_.clear();
    state_ = for_real ? State::kReal : State::kNotForReal;
    try {
        _validate(for_real);
    } catch (...) {
        state_ = State::kInvalid;
        throw;
    }
}

void Op::serve_all_graphs() {
    validate(true);
    serves_all_graphs_ = true;
}

void Op::mark_invalid() {
    if (state_ == State::kInvalid) return;
    state_ = State::kInvalid;
    for (Op* output : outputs_) output->mark_invalid();
}

void Op::drop() {
    _invalidate();
    state_ = State::kReal;  // so that the mark reaches everything downstream
    mark_invalid();
}

void Op::invalidate() {
    ++changes_;
    drop();
}

void Op::invalidate(const Hash& hash) {
    if (setup_hash_ == hash) return;
    setup_hash_ = hash;
    drop();
}

Hash Op::hash() const {
    Hash hash = setup_hash_.value_or(Hash());
    if (changes_ != 0) hash.append(changes_);
    if (setup_hash_) return hash;
    for (const Op* input : inputs_) {
        if (input != nullptr) hash.append(input->hash());
    }
    return hash;
}

void Op::open() {
    ++users_;
    _open();
}

void Op::close() {
    _close();
    users_ = std::max(0, users_ - 1);
}

bool Op::aborted() const {
    const RowPath* path = RowPath::current();
    return path != nullptr && path->aborted();
}

}  // namespace Zo::Image
