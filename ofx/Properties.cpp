#include "Properties.h"

#include "Host.h"
#include "abi/OfxImageEffect.h"

namespace veloxa::ofx {

std::string Properties::text(const char* name, std::string_view fallback) const {
    char* value = nullptr;
    if (set_ == nullptr || suites().property->propGetString(set_, name, 0, &value) != kOfxStatOK ||
        value == nullptr) {
        return std::string(fallback);
    }
    return value;
}

int Properties::integer(const char* name, int fallback, int index) const {
    int value = fallback;
    if (set_ == nullptr || suites().property->propGetInt(set_, name, index, &value) != kOfxStatOK) {
        return fallback;
    }
    return value;
}

double Properties::number(const char* name, double fallback, int index) const {
    double value = fallback;
    if (set_ == nullptr || suites().property->propGetDouble(set_, name, index, &value) != kOfxStatOK) {
        return fallback;
    }
    return value;
}

void* Properties::pointer(const char* name) const {
    void* value = nullptr;
    if (set_ == nullptr || suites().property->propGetPointer(set_, name, 0, &value) != kOfxStatOK) {
        return nullptr;
    }
    return value;
}

bool Properties::box(const char* name, Zo::Image::Box& box) const {
    std::array<int, 4> v{};
    for (int i = 0; i < 4; ++i) {
        if (set_ == nullptr ||
            suites().property->propGetInt(set_, name, i, &v[static_cast<std::size_t>(i)]) != kOfxStatOK) {
            return false;
        }
    }
    box = {v[0], v[1], v[2], v[3]};
    return true;
}

bool Properties::rectangle(const char* name, OfxRectD& rectangle) const {
    std::array<double, 4> v{};
    for (int i = 0; i < 4; ++i) {
        if (set_ == nullptr ||
            suites().property->propGetDouble(set_, name, i, &v[static_cast<std::size_t>(i)]) != kOfxStatOK) {
            return false;
        }
    }
    rectangle = {v[0], v[1], v[2], v[3]};
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
