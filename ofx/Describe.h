// What the host is told of the effect before any instance is made.
#pragma once

#include "abi/OfxImageEffect.h"

namespace veloxa::ofx {

// Throw Failure. Both may be called many times.
void describe(OfxImageEffectHandle effect);
void describe_in_context(OfxImageEffectHandle effect, OfxPropertySetHandle arguments);

}  // namespace veloxa::ofx
