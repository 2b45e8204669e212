#include "host/Properties.h"

#include "abi/OfxImageEffect.h"
#include "host/Host.h"

namespace veloxa::ofx {

namespace {

// False where the property is not there.
template <class Get, class T>
bool get(Get OfxPropertySuiteV1::*getter, OfxPropertySetHandle set, const char* name, int index, T& value) {
    return set != nullptr && (suites().property->*getter)(set, name, index, &value) == kOfxStatOK;
}

}  // namespace

std::string Properties::text(const char* name) const {
    char* value = nullptr;
    return get(&OfxPropertySuiteV1::propGetString, set_, name, 0, value) && value != nullptr ? value : "";
}

int Properties::integer(const char* name) const {
    int value = 0;
    return get(&OfxPropertySuiteV1::propGetInt, set_, name, 0, value) ? value : 0;
}

double Properties::number(const char* name, double fallback, int index) const {
    double value = fallback;
    return get(&OfxPropertySuiteV1::propGetDouble, set_, name, index, value) ? value : fallback;
}

void* Properties::pointer(const char* name) const {
    void* value = nullptr;
    return get(&OfxPropertySuiteV1::propGetPointer, set_, name, 0, value) ? value : nullptr;
}

bool Properties::box(const char* name, Zo::Image::Box& box) const {
    int n = 0;
    for (int* const side : {&box.x, &box.y, &box.r, &box.t}) {
        if (!get(&OfxPropertySuiteV1::propGetInt, set_, name, n++, *side)) return false;
    }
    return true;
}

bool Properties::rectangle(const char* name, OfxRectD& rectangle) const {
    int n = 0;
    for (double* const side : {&rectangle.x1, &rectangle.y1, &rectangle.x2, &rectangle.y2}) {
        if (!get(&OfxPropertySuiteV1::propGetDouble, set_, name, n++, *side)) return false;
    }
    return true;
}

RenderScale Properties::scale() const {
    return {number(kOfxImageEffectPropRenderScale, 1.0, 0), number(kOfxImageEffectPropRenderScale, 1.0, 1)};
}

bool Properties::set(const char* name, const char* value, int index) const {
    return set_ != nullptr && suites().property->propSetString(set_, name, index, value) == kOfxStatOK;
}

bool Properties::set(const char* name, const std::string& value, int index) const {
    return set(name, value.c_str(), index);
}

void Properties::set(const char* name, int value, int index) const {
    if (set_ != nullptr) suites().property->propSetInt(set_, name, index, value);
}

void Properties::set(const char* name, double value, int index) const {
    if (set_ != nullptr) suites().property->propSetDouble(set_, name, index, value);
}

void Properties::set(const char* name, const OfxRectD& rectangle) const {
    const std::array<double, 4> v{rectangle.x1, rectangle.y1, rectangle.x2, rectangle.y2};
    if (set_ != nullptr) suites().property->propSetDoubleN(set_, name, 4, v.data());
}

bool Properties::set_pointer(const char* name, void* value) const {
    return set_ != nullptr && suites().property->propSetPointer(set_, name, 0, value) == kOfxStatOK;
}

}  // namespace veloxa::ofx
