// The colour of a shot: what its pictures are in, what they are converted to for the key, and the result
// after it.
//
// Without any option nothing is converted: the node sees what is stored, and results say what space that is.
// With one, colour inputs become scene linear light when they are read; what is made of them stays so, or is
// converted to the output's space. Mattes are never converted.
#pragma once

#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>

#include "ZoImage/Hash.h"
#include "shot/Caller.h"
#include "shot/colour/ColourConfig.h"
#include "shot/colour/FileSpace.h"
#include "shot/image/Image.h"

namespace veloxa {

// As the command line gives them; empty for none.
struct ColourOptions {
    std::string in_space;   // of inputs that choose none themselves
    std::string out_space;  // of results
};

class ShotColour {
  public:
    // `own` has the space that each input chooses, empty for none; the first is the plate. The colour
    // configuration is loaded where something is to be converted. Throws UsageError for a space that there is
    // not, Error for a configuration that cannot be loaded.
    ShotColour(const ColourOptions& options, std::span<const std::string> own, const Caller& caller);

    bool converts() const { return config_.has_value(); }
    // What results are converted to; empty where they are not.
    const std::string& out_space() const { return out_; }

    // The configuration's file; empty for the built-in set, and where nothing is converted.
    std::string config_file() const { return config_ ? config_->file() : std::string(); }

    // What a file's values are for this input and what they become: "sRGB, as uint8; converted to linear".
    // Throws UsageError where that must be known and is not.
    std::string account(const Header& header, std::size_t input, const std::string& file) const;

    // Makes what was read of a file, for this input, ready for the node and says in its header what it is
    // then. Tells once an input what space the file is in, and appends that to what names the pixels. Throws
    // UsageError where that must be known and is not. One thread at a time.
    void take(Image& image, std::size_t input, const std::string& file, Zo::Image::Hash& identity);

    // Converts a result for the output. Any thread.
    void give(Image& image, AlphaIs alpha) const;

  private:
    struct Taken {
        std::string file;
        FileSpace space;
    };

    // What a file's values are converted from.
    FileSpace space_for(const FileSpace& found, std::size_t input, const std::string& file) const;
    std::string text(const FileSpace& space) const;
    void tell_once(std::size_t input, const std::string& file, const FileSpace& space);

    std::optional<ColourConfig> config_;  // null where nothing is converted
    std::string working_, in_, out_;      // names of the configuration
    std::vector<std::string> own_;
    std::map<std::string, ColourConversion> to_working_;
    ColourConversion to_output_;
    std::vector<Taken> taken_;  // one an input; empty before its first file
    Caller caller_;
};

}  // namespace veloxa
