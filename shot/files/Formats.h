// All formats but OpenEXR, movies, and what else needs OpenImageIO proper or libav.
//
// These two bring some 260 libraries, which take a fifth of a second to load. So what needs them is a module
// of its own, which is loaded when it is first asked for.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "shot/files/PictureFile.h"
#include "shot/image/Image.h"
#include "shot/movie/StreamReader.h"
#include "shot/movie/StreamWriter.h"

namespace veloxa {

// Any thread.
class Formats {
  public:
    virtual ~Formats() = default;

    virtual void set_threads(int threads) const = 0;
    // "2.4.7".
    virtual std::string version() const = 0;
    // Names of the formats, OpenEXR's too, that are read or written.
    virtual std::vector<std::string> read() const = 0;
    virtual std::vector<std::string> written() const = 0;
    // Whether a format of pictures has it; without the dot, in any case.
    virtual bool knows_extension(const std::string& extension) const = 0;

    // See PictureFile.h.
    virtual std::unique_ptr<PictureInput> open(const std::string& path, std::string& error) const = 0;
    virtual std::unique_ptr<PictureOutput> writer(const std::string& path, std::string& error) const = 0;

    // Pixels of one channel, with the box that they fill and the frame that it lies in.
    struct Pixels {
        Zo::Image::Box box, frame;
        float* samples;
    };
    // Scales frame to frame, with the image library's filter. Returns what went wrong.
    virtual std::string resize(const Pixels& from, const Pixels& to) const = 0;

    // See shot/movie.
    virtual std::string movie_to_read(const std::string& path, const std::string& input) const = 0;
    virtual std::string movie_to_write(const std::string& path) const = 0;
    virtual std::unique_ptr<StreamReader::Decoder> decoder(int file, std::string name, int first,
                                                           const Zo::Image::AbortFlag* abort) const = 0;
    virtual std::unique_ptr<StreamWriter::Encoder> encoder(int file, std::string name, StreamInfo info,
                                                           const WriteOptions& options) const = 0;
};

// Loads the module the first time. Throws Error where it is not there or cannot be loaded.
const Formats& formats();

// How many threads decode and encode files and convert colour; 0 for all processors. Before other threads
// work with files.
void set_file_threads(int threads);

}  // namespace veloxa
