// The entry point of the overlay, which hosts call for the actions of interacts.
#pragma once

#include "abi/OfxCore.h"

namespace veloxa::ofx {

OfxStatus overlay_entry(const char* action, const void* handle, OfxPropertySetHandle in,
                        OfxPropertySetHandle out) noexcept;

}  // namespace veloxa::ofx
