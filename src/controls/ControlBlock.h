// The keyer's parameter store: 250 named 32-bit integer controls that every kernel reads.
//
// Percentages are stored as 0 to 100 and beyond, colour levels on the working scale 0 to 255, sizes in
// pixels; -1 marks a sample colour not taken yet. Five "Darks" controls are stored negated: get() and the
// setters speak the natural value, stored() and the array hold its negative.
// Accessors check nothing. The block takes no lock: it is written during validation only.
#pragma once

#include <array>
#include <cstdint>

#include "ZoImage/Convert.h"
#include "controls/ControlTable.h"

// Three controls that are read and written together, in this order; most are not contiguous.
struct ControlGroup {
    int first;
    int second;
    int third;
};

using ControlTriple = std::array<std::int32_t, 3>;

class ControlBlock {
  public:
    static constexpr int kCount = 250;
    static constexpr std::int32_t kClean = 100;  // the "Dirty" value that says nothing changed

    // Uses the caller's array of kCount values, which must outlive the block. With `initialise` non-zero
    // stores every default; with 0 leaves the array as it is.
    ControlBlock(std::int32_t* values, int initialise);

    static const char* name(int index) { return entry(index).name; }
    static std::int32_t category(int index) { return entry(index).category; }
    // The default as it is stored: negative for the negated controls whose default is not 0.
    static std::int32_t stored_default(int index) { return entry(index).stored_default; }
    static bool negated(int index) { return entry(index).negated; }

    std::int32_t stored(int index) const { return values_[index]; }
    std::int32_t get(int index) const { return negated(index) ? negate(values_[index]) : values_[index]; }
    ControlTriple get(const ControlGroup& g) const { return {get(g.first), get(g.second), get(g.third)}; }

    // Stores the value and nothing else. Floating-point values are truncated toward zero.
    void set(int index, std::int32_t v) { values_[index] = negated(index) ? negate(v) : v; }
    void set(int index, float v) { set(index, Zo::Image::to_int(v)); }
    void set(int index, double v) { set(index, Zo::Image::to_int(v)); }
    template <class T>
    void set(const ControlGroup& g, T a, T b, T c) {
        set(g.first, a);
        set(g.second, b);
        set(g.third, c);
    }

    // As set(), and first notes in "Dirty" the control's category when the value differs from the stored
    // one, kClean when it does not (which forgets an earlier note).
    void mark(int index, std::int32_t v);
    void mark(int index, float v) { mark(index, Zo::Image::to_int(v)); }
    void mark(int index, double v) { mark(index, Zo::Image::to_int(v)); }
    void mark(const ControlGroup& g, const ControlTriple& v);
    template <class T>
    void mark(const ControlGroup& g, T a, T b, T c) {
        using Zo::Image::to_int;
        mark(g, ControlTriple{to_int(a), to_int(b), to_int(c)});
    }
    void mark(const ControlGroup& g, std::int32_t a, std::int32_t b, std::int32_t c) {
        mark(g, ControlTriple{a, b, c});
    }

    void reset(int index) { values_[index] = stored_default(index); }
    void reset(const ControlGroup& g);

    std::int32_t dirty() const;
    void set_dirty(std::int32_t category);
    void mark_clean() { set_dirty(kClean); }

    // Vertical radii of the two overlay shrinks, in pixels. They stand beside the 250 controls, whose
    // shrink controls hold the horizontal radii alone.
    std::int32_t overlayShrinkV = 2;
    std::int32_t subjectShrinkV = 2;

  private:
    static constexpr const ControlEntry& entry(int index) {
        return kControlTable[static_cast<std::size_t>(index)];
    }
    static constexpr std::int32_t negate(std::int32_t v) {
        return static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(v));
    }

    std::int32_t* values_;
};
