// The registry of operators. Modules register and leave while they are loaded and unloaded, in any order
// relative to other static objects, so it is made at its first use and never destroyed.
#include <algorithm>
#include <mutex>
#include <vector>

#include "ZoImage/Op.h"

namespace Zo::Image {

namespace {

struct Registry {
    std::mutex mutex;
    std::vector<const Op::Description*> descriptions;
};

Registry& registry() {
    static Registry& instance = *new Registry;
    return instance;
}

}  // namespace

Op::Description::Description(const char* class_name, const char* menu_path, Constructor constructor)
    : class_name_(class_name), menu_path_(menu_path), constructor_(constructor) {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    all.descriptions.push_back(this);
}

Op::Description::~Description() {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    std::erase(all.descriptions, this);
}

// Of two with one name the later counts; when it goes, the earlier one is back.
const Op::Description* Op::Description::find(std::string_view class_name) {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    const auto found = std::find_if(all.descriptions.rbegin(), all.descriptions.rend(),
                                    [&](const Description* d) { return class_name == d->class_name_; });
    return found == all.descriptions.rend() ? nullptr : *found;
}

}  // namespace Zo::Image
