// Reads and writes the properties of one of the host's objects.
//
// Hosts differ in the properties that they know: a getter gives its fallback, or what is empty, for one that
// is not there or has another type, a setter leaves it. A handle of null has no properties. Any thread that
// the host calls on.
#pragma once

#include <initializer_list>
#include <string>

#include "images/Coordinates.h"

namespace veloxa::ofx {

class Properties {
  public:
    explicit Properties(OfxPropertySetHandle set) : set_(set) {}

    // The text is copied; an integer stands for a boolean too.
    std::string text(const char* name) const;
    int integer(const char* name) const;
    double number(const char* name, double fallback = 0.0, int index = 0) const;
    void* pointer(const char* name) const;

    // x1, y1, x2, y2 of a rectangle; false when one is missing, and the others of no use.
    bool box(const char* name, Zo::Image::Box& box) const;
    bool rectangle(const char* name, OfxRectD& rectangle) const;
    // Of an action's arguments: the scale of its images.
    RenderScale scale() const;

    // Texts and pointers: false when the host did not take it.
    bool set(const char* name, const char* value, int index = 0) const;
    bool set(const char* name, const std::string& value, int index = 0) const;
    void set(const char* name, int value, int index = 0) const;
    void set(const char* name, double value, int index = 0) const;
    void set(const char* name, const OfxRectD& rectangle) const;
    bool set_pointer(const char* name, void* value) const;
    template <class T>
    void set_all(const char* name, std::initializer_list<T> values) const {
        int index = 0;
        for (const T& value : values) set(name, value, index++);
    }

  private:
    OfxPropertySetHandle set_;
};

}  // namespace veloxa::ofx
