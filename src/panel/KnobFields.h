// A set of KnobStorage's fields, as those of the knobs that are held, or that a tool turns.
#pragma once

#include <bitset>
#include <cstddef>

#include "panel/KnobStorage.h"

class KnobFields {
  public:
    // Where a field stands: no two have the same place.
    template <class T>
    static std::size_t place(T KnobStorage::*field) {
        static const KnobStorage storage;
        const auto* const at = reinterpret_cast<const char*>(&(storage.*field));
        return static_cast<std::size_t>(at - reinterpret_cast<const char*>(&storage));
    }

    template <class T>
    void add(T KnobStorage::*field) {
        add(place(field));
    }
    void add(std::size_t place) { places_.set(place); }
    template <class T>
    bool has(T KnobStorage::*field) const {
        return has(place(field));
    }
    bool has(std::size_t place) const { return places_.test(place); }
    // Whether `other` has all of these.
    bool all_in(const KnobFields& other) const { return (places_ & ~other.places_).none(); }

  private:
    std::bitset<sizeof(KnobStorage)> places_;
};
