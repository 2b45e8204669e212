// The plug-in's registration record: loading the module registers the node, unloading takes it back.
#include <new>

#include "keyer/VeloxaKeyer.h"

namespace {

Zo::Image::Op* construct(const Zo::Image::NodeContext& context) {
    return new (std::nothrow) VeloxaKeyer(context);
}

const Zo::Image::Op::Description description("Veloxa", "Keyer/Veloxa", construct);

}  // namespace
