// Defines the parameters of a list, with their groups and pages.
#pragma once

#include "Parameters.h"
#include "abi/OfxParam.h"

namespace veloxa::ofx {

// In the action that describes a context. Throws Failure.
void describe_parameters(OfxParamSetHandle set, const ParameterList& list);

// A tooltip as plain text: list items become lines that begin with a dash, other marks go.
std::string plain_text(std::string_view tooltip);

}  // namespace veloxa::ofx
