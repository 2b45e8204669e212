// One parameter of an instance; none where the host did not make it.
//
// What only reads may be called from any thread; the rest in the actions that may set parameters.
#pragma once

#include <optional>
#include <string>

#include "abi/OfxParam.h"
#include "host/Host.h"
#include "host/Properties.h"

namespace veloxa::ofx {

class ParameterHandle {
  public:
    ParameterHandle() = default;
    ParameterHandle(OfxParamSetHandle set, const char* name) {
        if (suites().parameter->paramGetHandle(set, name, &handle_, &properties_) != kOfxStatOK) *this = {};
    }

    explicit operator bool() const { return handle_ != nullptr; }
    Properties properties() const { return Properties(properties_); }

    // At the time or, asked by the thread that may set parameters, as it is now. A host reads as many of the
    // pointers as the parameter has values; false, and they stay, when it gives none.
    template <class... Pointers>
    bool get(std::optional<OfxTime> time, Pointers... pointers) const {
        if (handle_ == nullptr) return false;
        const OfxParameterSuiteV1& suite = *suites().parameter;
        const OfxStatus status = time ? suite.paramGetValueAtTime(handle_, *time, pointers...)
                                      : suite.paramGetValue(handle_, pointers...);
        return status == kOfxStatOK;
    }
    std::string text() const {
        char* text = nullptr;
        return get(std::nullopt, &text) && text != nullptr ? text : "";
    }

    // A key at the time, or with none the value.
    template <class... Values>
    void put(std::optional<OfxTime> time, Values... values) const {
        if (handle_ == nullptr) return;
        const OfxParameterSuiteV1& suite = *suites().parameter;
        const OfxStatus status = time ? suite.paramSetValueAtTime(handle_, *time, values...)
                                      : suite.paramSetValue(handle_, values...);
        check(status, "the host did not take a parameter's value");
    }
    // Where the host can.
    void delete_keys() const {
        const OfxParameterSuiteV1& suite = *suites().parameter;
        if (handle_ != nullptr && suite.paramDeleteAllKeys != nullptr) suite.paramDeleteAllKeys(handle_);
    }
    // Unless it is that already.
    void put_text(const std::string& value) const {
        if (handle_ != nullptr && text() != value) put(std::nullopt, value.c_str());
    }

  private:
    OfxParamHandle handle_ = nullptr;
    OfxPropertySetHandle properties_ = nullptr;
};

}  // namespace veloxa::ofx
