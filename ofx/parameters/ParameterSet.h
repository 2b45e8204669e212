// The parameters of one instance of the effect: reads their values, writes those that the node changed.
//
// What only reads may be called from any thread; the rest in the actions that may set parameters.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parameters/Parameters.h"
#include "abi/OfxImageEffect.h"
#include "abi/OfxParam.h"

namespace veloxa::ofx {

// Corners of the rectangle that the sampling tools look at, canonical coordinates.
inline constexpr const char* kFirstCorner = "sampling_first_corner";
inline constexpr const char* kSecondCorner = "sampling_second_corner";

class ParameterSet {
  public:
    // `list` outlives the set. Parameters that the host did not make keep their defaults.
    ParameterSet(OfxImageEffectHandle effect, const ParameterList& list);

    // All values at the time, or as they are now, which is asked by the thread that may set parameters.
    // Buttons have none. Texts do not animate, and the host's own may go as its user edits while a render
    // reads: at a time they are what they were when they were last asked for as they are.
    Values values(std::optional<OfxTime> time) const;
    Value value(std::size_t n, std::optional<OfxTime> time) const;
    // The index of the parameter of this name, if there is one.
    std::optional<std::size_t> find(std::string_view name) const;
    // The two corners in any order.
    OfxRectD sampling_rectangle(OfxTime time) const;

    // Sets parameter n; one that is animated gets a key at the time.
    void set(std::size_t n, const Value& value, OfxTime time) const;
    void enable(std::size_t n, bool on) const;

    // Makes one undoable step of what is set while it lives.
    class Edit {
      public:
        Edit(const ParameterSet& set, const std::string& name);
        ~Edit();
        Edit(const Edit&) = delete;
        Edit& operator=(const Edit&) = delete;

      private:
        OfxParamSetHandle set_;
    };

  private:
    struct Slot {
        OfxParamHandle handle = nullptr;
        OfxPropertySetHandle properties = nullptr;
    };

    const ParameterList& list_;
    OfxParamSetHandle set_ = nullptr;
    std::vector<Slot> slots_;
    OfxParamHandle first_ = nullptr;
    OfxParamHandle second_ = nullptr;
    mutable std::mutex mutex_;
    mutable std::vector<std::string> texts_;  // by parameter
};

}  // namespace veloxa::ofx
