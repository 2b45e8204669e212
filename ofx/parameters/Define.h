// Defines one parameter in a describe action.
#pragma once

#include <string>

#include "abi/OfxParam.h"
#include "host/Host.h"
#include "host/Properties.h"

namespace veloxa::ofx {

// Without properties where the host does not know the type.
inline Properties define(OfxParamSetHandle set, const char* type, const std::string& name,
                         const std::string& label) {
    OfxPropertySetHandle properties = nullptr;
    const OfxStatus status = suites().parameter->paramDefine(set, type, name.c_str(), &properties);
    if (status == kOfxStatErrUnknown || status == kOfxStatErrUnsupported) return Properties(nullptr);
    check(status, "a parameter could not be defined");
    const Properties p(properties);
    p.set(kOfxPropLabel, label);
    p.set(kOfxParamPropScriptName, name);
    return p;
}

}  // namespace veloxa::ofx
