// Drawn mattes on the inputs of the garbage and the holdout matte, over what files have there.
#pragma once

#include <array>

#include "shot/frames/LoadedInput.h"
#include "shot/mattes/DrawnMatte.h"

namespace veloxa {

// Draws anew only where the mattes, the format or what is under them changed. One thread at a time.
class DrawnInputs {
  public:
    void set(DrawnMattes mattes);
    const DrawnMattes& mattes() const { return mattes_; }

    // The input as it is where there are none of the kind.
    LoadedInput over(DrawnMatte::Kind kind, const LoadedInput& under, const Zo::Image::Format& format);

  private:
    struct Drawn {
        LoadedInput under, result;
        Zo::Image::Format format;
    };

    bool any(DrawnMatte::Kind kind) const;

    DrawnMattes mattes_;
    std::array<Drawn, 2> drawn_;  // the latest of each kind
};

}  // namespace veloxa
