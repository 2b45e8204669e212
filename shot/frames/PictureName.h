// The name of an input: a file, or a pattern of frames, and what to read of it.
//
// FILE#KEY=VALUE,KEY=VALUE,FLAG, as plate.####.exr#layer=beauty,view=left or stands.exr#channel=R,invert.
// What stands behind the last # is a choice only where it begins as one; a file of the whole name that is
// there is that file.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "shot/files/PictureChoice.h"
#include "shot/frames/FramePattern.h"

namespace veloxa {

class PictureName {
  public:
    PictureName() = default;
    // Throws UsageError for a choice with unknown, doubled or empty keys.
    explicit PictureName(const std::string& text);

    // Without the choice.
    const FramePattern& pattern() const { return pattern_; }
    const std::string& name() const { return pattern_.name(); }
    bool empty() const { return pattern_.empty(); }
    bool has_frame() const { return pattern_.has_frame(); }
    std::string at(int frame) const { return pattern_.at(frame); }
    // With the choice, as it was given.
    std::string text_at(int frame) const { return at(frame) + choice_text_; }

    const PictureChoice& choice() const { return choice_; }

  private:
    FramePattern pattern_;
    PictureChoice choice_;
    std::string choice_text_;
};

// The frames that --frames names; one of any number where it is empty. Throws UsageError where it is needed
// and missing, or given though no input depends on it.
FrameRange frames_of(const std::string& text, std::span<const PictureName> inputs);

// Throws UsageError when the output is the file of one of the inputs.
void refuse_input(const std::string& output, std::span<const PictureName> inputs, int frame);

}  // namespace veloxa
