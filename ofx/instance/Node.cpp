#include "instance/Node.h"

#include "host/Host.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

constexpr const char* kClassName = "Veloxa";

std::unique_ptr<Op> make(const NodeContext& context) {
    const Op::Description* const description = Op::Description::find(kClassName);
    std::unique_ptr<Op> op(description != nullptr ? description->construct(context) : nullptr);
    if (op == nullptr || op->as_iop() == nullptr) {
        throw Failure(kOfxStatErrMemory, "the keyer could not be made");
    }
    return op;
}

}  // namespace

Node::Node(ThreadSource* threads, const AbortFlag* abort)
    : op_(make({kClassName, threads, abort})), image_(op_->as_iop()), panel_(*op_), list_(panel_) {}

std::vector<std::string> Node::stages() const {
    std::vector<std::string> names;
    for (Op* const child : op_->children()) {
        if (child->as_iop() != nullptr) names.push_back(child->member_name());
    }
    return names;
}

Iop* Node::stage(std::size_t n) const {
    for (Op* const child : op_->children()) {
        if (child->as_iop() != nullptr && n-- == 0) return child->as_iop();
    }
    return nullptr;
}

}  // namespace veloxa::ofx
