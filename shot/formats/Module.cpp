// What the program finds in this module; see shot/files/Formats.h.
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <algorithm>

#include "shot/files/Formats.h"
#include "shot/formats/LibraryFile.h"
#include "shot/formats/Movies.h"

namespace veloxa {

namespace {

// The library's list without "null" and "term", which stand for no file at all.
std::vector<std::string> formats_in(const char* attribute) {
    auto names = OIIO::Strutil::splits(OIIO::get_string_attribute(attribute), ",");
    std::erase_if(names, [](const std::string& name) { return name == "null" || name == "term"; });
    return names;
}

OIIO::ImageBuf buffer_of(const Formats::Pixels& pixels) {
    OIIO::ImageSpec spec(pixels.box.width(), pixels.box.height(), 1, OIIO::TypeDesc::FLOAT);
    spec.x = pixels.box.x;
    spec.y = pixels.box.y;
    spec.full_width = pixels.frame.width();
    spec.full_height = pixels.frame.height();
    return OIIO::ImageBuf(spec, pixels.samples);
}

class Library final : public Formats {
  public:
    // Stops what the image library prints by itself, whatever the environment asks for.
    Library() {
        OIIO::attribute("debug", 0);
        OIIO::attribute("log_times", 0);
    }

    void set_threads(int threads) const override { OIIO::attribute("threads", threads); }
    std::string version() const override {
        const int version = OIIO::openimageio_version();
        return std::to_string(version / 10000) + '.' + std::to_string(version / 100 % 100) + '.' +
               std::to_string(version % 100);
    }
    std::vector<std::string> read() const override { return formats_in("input_format_list"); }
    std::vector<std::string> written() const override { return formats_in("output_format_list"); }
    bool knows_extension(const std::string& extension) const override {
        return std::ranges::any_of(OIIO::get_extension_map(), [&](const auto& format) {
            return std::ranges::any_of(format.second, [&](const std::string& known) {
                return OIIO::Strutil::iequals(known, extension);
            });
        });
    }
    std::unique_ptr<PictureInput> open(const std::string& path, std::string& error) const override {
        return open_with_library(path, error);
    }
    std::unique_ptr<PictureOutput> writer(const std::string& path, std::string& error) const override {
        return library_writer(path, error);
    }
    std::string resize(const Pixels& from, const Pixels& to) const override {
        OIIO::ImageBuf scaled = buffer_of(to);
        return OIIO::ImageBufAlgo::resize(scaled, buffer_of(from)) ? "" : scaled.geterror();
    }
    std::string movie_to_read(const std::string& path, const std::string& input) const override {
        return read_as_movie(path, input);
    }
    std::string movie_to_write(const std::string& path) const override { return written_as_movie(path); }
    std::unique_ptr<StreamReader::Decoder> decoder(int file, std::string name, int first,
                                                   const Zo::Image::AbortFlag* abort) const override {
        return make_decoder(file, std::move(name), first, abort);
    }
    std::unique_ptr<StreamWriter::Encoder> encoder(int file, std::string name, StreamInfo info,
                                                   const WriteOptions& options) const override {
        return make_encoder(file, std::move(name), std::move(info), options);
    }
};

}  // namespace

extern "C" [[gnu::visibility("default")]] const Formats* veloxa_formats() {
    static const Library library;
    return &library;
}

}  // namespace veloxa
