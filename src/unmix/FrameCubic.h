// A cubic of the frame for each channel: what light falling off over a backing looks like.
#pragma once

#include <array>

#include "unmix/Plane.h"

namespace unmix {

class FrameCubic {
  public:
    static constexpr std::size_t kTerms = 10;
    using Coefficients = std::array<std::array<double, kTerms>, 3>;

    struct Form {
        Coefficients coefficients{};
        std::array<float, 3> low{};
        std::array<float, 3> high{};
    };

    FrameCubic() = default;
    explicit FrameCubic(const Form& form) : form_(form) {}
    const Form& form() const { return form_; }

    // Least squares over the cells of the mask, six rounds without what is off by more than four times the
    // usual; 0.8 to 1.2 times the range of those cells bounds what it says elsewhere. With few cells it is
    // constant. The mask must not be empty.
    void fit(const Colours& cells, const Bytes& mask);

    // Every cell.
    void evaluate(Colours& cells) const;

  private:
    Form form_;
};

}  // namespace unmix
