// What comes before the first frame, for keying and for tuning alike: files on the node's inputs, its knobs,
// the screen colour, the strokes.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shot/frames/FrameLoader.h"
#include "shot/frames/PictureName.h"
#include "shot/node/ImageSource.h"
#include "shot/setup/ScreenChoice.h"
#include "shot/setup/Stroke.h"

namespace veloxa {

// As the command line gives them.
struct SetupOptions {
    std::array<std::string, kInputCount> inputs;
    KnobSettings settings;
    ScreenOptions screen;
    bool automatic = false;  // set up from the foreground before the strokes
    std::vector<std::string> strokes;
    std::string frames;
    std::string fit;
    ColourOptions colour{};
};

class KeySetup {
  public:
    // Sets the knobs, draws the script's mattes, connects the inputs; reads no image. Throws UsageError, and
    // Error for a script.
    KeySetup(const SetupOptions& options, const Caller& caller);

    Node& node() { return node_; }
    NodeInputs& inputs() { return inputs_; }
    FrameLoader& loader() { return loader_; }
    const FrameLoader::Names& names() const { return names_; }
    // One frame, of any number, for stills.
    const FrameRange& frames() const { return frames_; }

    // Loads what all frames share, chooses the screen colour, sets up automatically if asked to, and applies
    // the strokes. Throws Error, for strokes too when their frame cannot be read.
    void prepare();
    // Has the node measure the shot on some frames of the range, besides what it holds of one; it looks at
    // what prepare() left. Frames that cannot be read or hold no backing are left out, with a warning.
    // Returns what the node says of the others.
    std::vector<Zo::Image::ToolReport> measure_shot(const FrameRange& range, int most);
    // Gives the node the shot that the file holds. Throws Error where it does not fit the file or the node.
    void use_shot(const std::string& path);

    // Frames that are shown or loaded from now on have these mattes instead. Not while rendering.
    void draw(DrawnMattes mattes);
    // Writes the knobs that differ from their defaults, and the drawn mattes, as a script.
    void save_script(const std::string& path, bool overwrite) const;

    // What the automatic steps and the strokes did, in their order.
    const std::vector<Zo::Image::ToolReport>& strokes() const { return reports_; }

  private:
    // Draws what the script has, and tells of it.
    void take_mattes();
    // The foreground of the first frame that can be read, and its number: a broken one is reported when its
    // turn comes.
    std::pair<std::shared_ptr<const Image>, int> first_foreground();
    // Whether the first stroke chooses the screen colour.
    bool picks_screen() const;
    void choose_screen_color();
    // Puts a frame on the node's inputs.
    void show(int frame);
    void show_nothing();
    // Takes in what was done to the frame that is shown.
    void note(std::vector<Zo::Image::ToolReport> reports);
    // Of these numbers.
    void apply_strokes(std::size_t begin, std::size_t end);

    SetupOptions options_;
    Caller caller_;
    FrameLoader::Names names_;
    FrameRange frames_;
    FrameLoader loader_;
    NodeInputs inputs_;  // outlive the node
    Node node_;
    std::optional<int> shown_;                 // the frame on the inputs
    std::shared_ptr<const Image> foreground_;  // its foreground
    std::vector<Stroke> strokes_;
    std::vector<Zo::Image::ToolReport> reports_;
};

}  // namespace veloxa
