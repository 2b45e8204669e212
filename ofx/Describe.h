// What the host is told of the effect before any instance is made.
#pragma once

#include "abi/OfxImageEffect.h"
#include "parameters/Parameters.h"

namespace veloxa::ofx {

// Throw Failure. All may be called many times.
void describe(OfxImageEffectHandle effect);
void describe_in_context(OfxImageEffectHandle effect, OfxPropertySetHandle arguments);
// Defines the parameters of a list and the effect's own, with their groups and pages. `stages` are the inner
// operators that a view may show.
void describe_parameters(OfxParamSetHandle set, const ParameterList& list,
                         const std::vector<std::string>& stages);

}  // namespace veloxa::ofx
