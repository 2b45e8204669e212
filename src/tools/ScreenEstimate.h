// Finds the backing of a plate: which primary it is and what colour it has.
//
// The frame is cut into cells, at most kCells to a side, whose mean colours are looked at. A cell counts the
// more the nearer it lies to the left, right or top border, where backing shows; the bottom is the subject's.
// For each primary the cells that it dominates are put on a plane of the two other channels over it, which
// light does not move; the largest heap there is the primary's candidate. Deterministic; any scale of light.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "ZoImage/Iop.h"
#include "ZoImage/Render.h"

struct ScreenEstimate {
    Zo::Image::Channel primary = Zo::Image::kGreen;
    std::array<double, 3> color{};  // red, green, blue: the median of the candidate's cells
    double share = 0.0;             // of the weighted frame that the candidate's cells make
    double rival = 0.0;             // the largest share that another primary's candidate has
    double needed = 0.0;            // the confidence to go by
    Zo::Image::Box frame{};         // what was looked at

    double confidence() const { return share - rival; }
    bool found() const { return share > 0.0 && confidence() >= needed; }
};

// What an estimate needs to be believed: about a quarter of the frame above any other colour; less when the
// primary is known.
inline constexpr double kConfidenceNeeded = 0.25;
inline constexpr double kConfidenceNeededNamed = 0.10;

// Looks at what the image shows. With a primary given, looks for that one alone and knows no rival. Throws
// GivenUp when the renderer's flag is raised.
ScreenEstimate estimate_screen(Zo::Image::Iop& image, std::optional<Zo::Image::Channel> primary,
                               Zo::Image::Renderer& renderer);

// "green", "blue" or "red".
const char* screen_name(Zo::Image::Channel primary);
std::optional<Zo::Image::Channel> screen_named(const std::string& name);
