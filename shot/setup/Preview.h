// What a run would read, set and make, found out from names and headers: no pixel is read and no file made.
//
// Each finding is a line for the user; what would fail is a fault, FILE: what is wrong, as the run would say
// it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "shot/colour/ShotColour.h"
#include "shot/files/ImageFile.h"
#include "shot/frames/Fit.h"
#include "shot/frames/PictureName.h"
#include "shot/node/Node.h"

namespace veloxa {

struct SetupOptions;
struct ScreenOptions;

struct NamedInput {
    std::string_view input;  // "fg"
    PictureName name;        // empty for an input that is not used
    bool matte = false;
};

class Preview {
  public:
    // Of a stream without an end that is known, the first frame alone.
    explicit Preview(const FrameRange& frames) : frames_(frames) {
        if (frames_.open) frames_ = {frames.first, frames.first, 1};
    }

    // All inputs, in the loader's order. The first is the one whose size the others are to have, unless they
    // are fitted to it.
    void read(std::span<const NamedInput> inputs, Fit fit, const ShotColour& colour);
    // A file that is read besides the images.
    void read(std::string_view option, const std::string& path);
    // The knobs that differ from their defaults, and how the screen colour comes about.
    void set(const Node& node, const ScreenOptions& screen, bool chosen);
    // The same, and what else a set-up does to the knobs.
    void set(const Node& node, const SetupOptions& options);
    // An image of every frame. Throws UsageError for one that is an input.
    void make(const FramePattern& output, const WriteOptions& how, std::span<const NamedInput> inputs);
    // An image of the whole run.
    void make(const std::string& output, const WriteOptions& how);
    // A text; an empty path for none.
    void make(const std::string& output, bool overwrite);

    // "would read", "would set" and "would make", each with its lines.
    std::string text() const;
    const std::vector<std::string>& faults() const { return faults_; }

  private:
    // Runs a check; false, with a fault, when it throws an Error.
    template <class Check>
    bool attempt(const Check& check);

    FrameRange frames_;
    std::vector<std::string> reads_, sets_, makes_, faults_;
};

}  // namespace veloxa
