// The registry of operators: a list through the records themselves. Modules register and leave while they are
// loaded and unloaded, in any order relative to other static objects, so it has neither constructor nor
// destructor and owns no memory.
#include <mutex>

#include "ZoImage/Op.h"

namespace Zo::Image {

namespace {

constinit std::mutex mutex;
constinit const Op::Description* latest = nullptr;

}  // namespace

Op::Description::Description(const char* class_name, const char* menu_path, Constructor constructor)
    : class_name_(class_name), menu_path_(menu_path), constructor_(constructor) {
    const std::lock_guard lock(mutex);
    before_ = latest;
    latest = this;
}

Op::Description::~Description() {
    const std::lock_guard lock(mutex);
    const Description** place = &latest;
    while (*place != this) place = &(*place)->before_;
    *place = before_;
}

// Of two with one name the later counts; when it goes, the earlier one is back.
const Op::Description* Op::Description::find(std::string_view class_name) {
    const std::lock_guard lock(mutex);
    const Description* found = latest;
    while (found != nullptr && class_name != found->class_name_) found = found->before_;
    return found;
}

}  // namespace Zo::Image
