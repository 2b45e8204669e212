// What the host is told of the effect before any instance is made.
#pragma once

#include "parameters/Parameters.h"
#include "abi/OfxImageEffect.h"

namespace veloxa::ofx {

// Throw Failure. All may be called many times.
void describe(OfxImageEffectHandle effect);
void describe_in_context(OfxImageEffectHandle effect, OfxPropertySetHandle arguments);
// Defines the parameters of a list, with their groups and pages.
void describe_parameters(OfxParamSetHandle set, const ParameterList& list);

}  // namespace veloxa::ofx
