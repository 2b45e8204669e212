#include "shot/formats/LibraryFile.h"

#include <OpenImageIO/imageio.h>

#include <utility>

namespace veloxa {

namespace {

Header header_of(const OIIO::ImageSpec& spec) {
    Header header;
    header.x = spec.x;
    header.y = spec.y;
    header.width = spec.width;
    header.height = spec.height;
    header.full_x = spec.full_x;
    header.full_y = spec.full_y;
    header.full_width = spec.full_width;
    header.full_height = spec.full_height;
    header.tile_width = spec.tile_width;
    header.tile_height = spec.tile_height;
    header.nchannels = spec.nchannels;
    header.format = spec.format;
    header.channelformats = spec.channelformats;
    header.channelnames = spec.channelnames;
    header.alpha_channel = spec.alpha_channel;
    header.z_channel = spec.z_channel;
    header.deep = spec.deep;
    header.extra_attribs = spec.extra_attribs;
    return header;
}

OIIO::ImageSpec spec_of(const Header& header) {
    OIIO::ImageSpec spec(header.width, header.height, header.nchannels, header.format);
    spec.x = header.x;
    spec.y = header.y;
    spec.full_x = header.full_x;
    spec.full_y = header.full_y;
    spec.full_width = header.full_width;
    spec.full_height = header.full_height;
    spec.tile_width = header.tile_width;
    spec.tile_height = header.tile_height;
    spec.channelformats = header.channelformats;
    spec.channelnames = header.channelnames;
    spec.alpha_channel = header.alpha_channel;
    spec.z_channel = header.z_channel;
    spec.extra_attribs = header.extra_attribs;
    return spec;
}

class LibraryInput final : public PictureInput {
  public:
    explicit LibraryInput(std::unique_ptr<OIIO::ImageInput> input) : input_(std::move(input)) {
        header_ = header_of(input_->spec());
    }

    std::string_view format_name() const override { return input_->format_name(); }

    bool go_to(int part) override {
        if (!input_->seek_subimage(part, 0)) {
            input_->geterror();  // there is always an end
            return false;
        }
        part_ = part;
        header_ = header_of(input_->spec());
        return true;
    }

    bool read(int top, int bottom, int first, int last, OIIO::TypeDesc type, void* into) override {
        const bool good = header_.tile_width > 0
                              ? input_->read_tiles(part_, 0, header_.x, header_.x + header_.width, top,
                                                   bottom, 0, 1, first, last, type, into)
                              : input_->read_scanlines(part_, 0, top, bottom, 0, first, last, type, into);
        return good && !input_->has_error();
    }

    bool close() override { return input_->close(); }
    std::string error() override { return input_->geterror(); }

  private:
    const std::unique_ptr<OIIO::ImageInput> input_;
    int part_ = 0;
};

class LibraryOutput final : public PictureOutput {
  public:
    explicit LibraryOutput(std::unique_ptr<OIIO::ImageOutput> output) : output_(std::move(output)) {}

    std::string_view format_name() const override { return output_->format_name(); }
    bool supports(std::string_view feature) const override { return output_->supports(feature) != 0; }
    void set_ioproxy(OIIO::Filesystem::IOProxy* bytes) override { output_->set_ioproxy(bytes); }

    bool open(const std::string& path, std::span<const Header> parts) override {
        const bool good = output_->open(path, spec_of(parts.front()));
        header_ = header_of(output_->spec());
        return good;
    }

    bool next_part() override { return false; }  // only OpenEXR is given several

    bool write(int top, int bottom, OIIO::TypeDesc type, const void* rows) override {
        return header_.tile_width > 0
                   ? output_->write_tiles(header_.x, header_.x + header_.width, top, bottom, 0, 1, type, rows)
                   : output_->write_scanlines(top, bottom, 0, type, rows);
    }

    bool close() override { return output_->close(); }
    std::string error() override { return output_->geterror(); }

  private:
    const std::unique_ptr<OIIO::ImageOutput> output_;
};

}  // namespace

std::unique_ptr<PictureInput> open_with_library(const std::string& path, std::string& error) {
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    auto input = OIIO::ImageInput::open(path, &config);
    if (input) return std::make_unique<LibraryInput>(std::move(input));
    error = OIIO::geterror();
    return nullptr;
}

std::unique_ptr<PictureOutput> library_writer(const std::string& path, std::string& error) {
    auto output = OIIO::ImageOutput::create(path);
    if (output) return std::make_unique<LibraryOutput>(std::move(output));
    error = OIIO::geterror();
    return nullptr;
}

}  // namespace veloxa
