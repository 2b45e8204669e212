// Loads the node's inputs for one frame after another.
#pragma once

#include <array>
#include <memory>

#include "ZoImage/Hash.h"
#include "shot/Caller.h"
#include "shot/colour/ShotColour.h"
#include "shot/frames/DrawnInputs.h"
#include "shot/frames/Fit.h"
#include "shot/frames/LoadedInput.h"
#include "shot/frames/PictureName.h"
#include "shot/frames/StreamInput.h"
#include "shot/image/Image.h"

namespace veloxa {

// The node's inputs by number.
enum Input : std::size_t { kFg, kCp, kBg, kGm, kHm, kInputCount };
inline constexpr std::array<const char*, kInputCount> kInputNames{"fg", "cp", "bg", "gm", "hm"};
constexpr bool is_matte_input(std::size_t input) {
    return input == kGm || input == kHm;
}

using FrameInputs = std::array<LoadedInput, kInputCount>;

// Inputs without a frame number in their name are loaded once; one may be standard input, which carries a
// stream of frames. One thread at a time, but for stop().
class FrameLoader {
  public:
    using Names = std::array<PictureName, kInputCount>;  // empty for inputs that are not used

    // Throws UsageError where a colour input is to be inverted, where two inputs are the stream, and what
    // ShotColour throws.
    FrameLoader(Names names, Fit fit, const ColourOptions& colour, Caller caller,
                const FrameRange& frames = {});

    const ShotColour& colour() const { return colour_; }

    // Has foregrounds carry what else their files hold; see Image::kept.
    void keep_layers() { keep_layers_ = true; }
    // Frames that are loaded from now on have these mattes on the inputs of their kind, over what a file has
    // there and whether there is one or not.
    void draw(DrawnMattes mattes) { drawn_.set(std::move(mattes)); }
    const DrawnMattes& drawn() const { return drawn_.mattes(); }
    // Looks whether the inputs' files of a frame hold what is chosen of them, so that a mistake there is told
    // once. Throws Error.
    void check_choices(int frame) const;

    const Names& names() const { return names_; }
    // Loads what all frames share, and begins with the stream, so that a mistake there shows before any
    // frame.
    void load_stills();
    // The stream, from load_stills() on; null without one.
    const StreamInput* stream() const { return stream_.get(); }
    bool has_stream() const { return streamed_ < kInputCount; }
    // Whether there is such a frame: false at the end of a stream that nobody knows the length of. Frames are
    // asked for in their order. Throws Error when the stream breaks off before it.
    bool reach(int frame) { return !stream_ || stream_->reach(frame); }
    // Whether the stream broke off, and no frame that comes after can be had.
    bool broken() const { return stream_ && stream_->broken(); }
    // Ends what waits for the stream; any thread.
    void stop() {
        if (stream_) stream_->stop();
    }
    // The foreground of a frame, kept for when that frame is loaded.
    std::shared_ptr<const Image> foreground(int frame);
    // Throws Error when any input of the frame cannot be used.
    FrameInputs load(int frame);

  private:
    struct Pixels {
        Image image;
        Zo::Image::Hash identity;
    };

    // What a file holds; any thread.
    Pixels pixels(Input input, int frame) const;
    LoadedInput taken(Input input, int frame, Pixels read);
    LoadedInput read(Input input, int frame) { return taken(input, frame, pixels(input, frame)); }
    // Warns of what the user may not expect of a file, once an input.
    void warn(Input input, const std::string& path, const Image& image);
    void keep(const std::string& path, Image& image);
    LoadedInput fitted_to(const LoadedInput& loaded, const Zo::Image::Format& format,
                          const std::string& file) const;

    Names names_;
    Fit fit_;
    FrameRange frames_;
    Caller caller_;
    ShotColour colour_;
    DrawnInputs drawn_;
    std::size_t streamed_ = kInputCount;  // the input that is the stream
    std::unique_ptr<StreamInput> stream_;
    LoadedInput ahead_;  // a foreground that was read before its turn, and its frame
    int ahead_frame_ = 0;
    FrameInputs stills_;         // as read
    FrameInputs fitted_stills_;  // for the format below
    Zo::Image::Format fitted_format_;
    std::array<bool, kInputCount> looked_for_parts_{};
    std::array<bool, kInputCount> told_alpha_{};
    bool keep_layers_ = false;
    bool told_kept_ = false;
};

}  // namespace veloxa
