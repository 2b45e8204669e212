#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfIO.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfTileDescription.h>
#include <OpenEXR/ImfTiledOutputPart.h>
#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "shot/openexr/ExrAttributes.h"
#include "shot/openexr/ExrCompression.h"
#include "shot/openexr/ExrFile.h"

namespace veloxa {

using OIIO::TypeDesc;

namespace {

class ProxyStream final : public Imf::OStream {
  public:
    ProxyStream(OIIO::Filesystem::IOProxy& bytes, const std::string& name)
        : OStream(name.c_str()), bytes_(bytes) {}

    void write(const char* from, int count) override {
        const auto size = static_cast<std::size_t>(count);
        if (bytes_.write(from, size) != size) throw std::runtime_error("could not be written");
    }
    std::uint64_t tellp() override { return static_cast<std::uint64_t>(bytes_.tell()); }
    void seekp(std::uint64_t to) override {
        if (!bytes_.seek(static_cast<std::int64_t>(to))) throw std::runtime_error("could not be written");
    }

  private:
    OIIO::Filesystem::IOProxy& bytes_;
};

TypeDesc held(const TypeDesc& type) {
    if (type == TypeDesc::UINT32) return type;
    return type == TypeDesc::FLOAT || type == TypeDesc::DOUBLE ? TypeDesc::FLOAT : TypeDesc::HALF;
}

Imf::PixelType exr_type(const TypeDesc& type) {
    return type == TypeDesc::HALF ? Imf::HALF : type == TypeDesc::UINT32 ? Imf::UINT : Imf::FLOAT;
}

Header as_held(Header header) {
    header.format = held(header.format);
    for (TypeDesc& type : header.channelformats) type = held(type);
    return header;
}

Imf::Header header_for(const Header& part) {
    Imf::Header header = exr_header(part);
    for (int n = 0; n < part.nchannels; ++n) {
        header.channels().insert(part.channelnames[static_cast<std::size_t>(n)],
                                 Imf::Channel(exr_type(part.channelformat(n))));
    }
    set_exr_compression(header, part);
    const bool tiles = part.tile_width > 0;
    header.setType(tiles ? Imf::TILEDIMAGE : Imf::SCANLINEIMAGE);
    if (tiles) {
        header.setTileDescription({static_cast<unsigned>(part.tile_width),
                                   static_cast<unsigned>(part.tile_height), Imf::ONE_LEVEL});
    }
    return header;
}

class ExrOutput final : public PictureOutput {
  public:
    std::string_view format_name() const override { return "openexr"; }
    bool supports(std::string_view feature) const override {
        return feature == "alpha" || feature == "tiles" || feature == "ioproxy";
    }
    void set_ioproxy(OIIO::Filesystem::IOProxy* bytes) override { bytes_ = bytes; }

    bool open(const std::string& path, std::span<const Header> parts) override {
        return attempt([&] {
            if (bytes_ == nullptr) throw std::logic_error("nowhere to write to");
            std::vector<Imf::Header> headers;
            for (const Header& part : parts) {
                parts_.push_back(as_held(part));
                headers.push_back(header_for(parts_.back()));
            }
            stream_.emplace(*bytes_, path);
            file_.emplace(*stream_, headers.data(), static_cast<int>(headers.size()));
            part_ = 0;
            header_ = parts_.front();
        });
    }

    bool next_part() override {
        header_ = parts_[++part_];
        return true;
    }

    bool write(int top, int bottom, TypeDesc, const void* rows) override {
        return attempt([&] {
            const Imath::Box2i box({header_.x, top}, {header_.x + header_.width - 1, bottom - 1});
            const std::size_t pixel = header_.pixel_bytes();
            const auto* from = static_cast<const std::byte*>(rows);
            Imf::FrameBuffer buffer;
            for (int n = 0; n < header_.nchannels; ++n) {
                const TypeDesc type = header_.channelformat(n);
                buffer.insert(header_.channelnames[static_cast<std::size_t>(n)],
                              Imf::Slice::Make(exr_type(type), from, box, pixel,
                                               pixel * static_cast<std::size_t>(header_.width)));
                from += type.size();
            }
            write_rows(top, bottom, buffer);
        });
    }

    bool close() override {
        file_.reset();
        return error_.empty();
    }
    std::string error() override { return std::exchange(error_, {}); }

  private:
    void write_rows(int top, int bottom, const Imf::FrameBuffer& buffer) {
        const int part = static_cast<int>(part_);
        if (header_.tile_width == 0) {
            Imf::OutputPart out(*file_, part);
            out.setFrameBuffer(buffer);
            out.writePixels(bottom - top);
            return;
        }
        Imf::TiledOutputPart out(*file_, part);
        out.setFrameBuffer(buffer);
        out.writeTiles(0, out.numXTiles() - 1, (top - header_.y) / header_.tile_height,
                       (bottom - 1 - header_.y) / header_.tile_height);
    }

    template <class Work>
    bool attempt(const Work& work) try {
        work();
        return true;
    } catch (const std::exception& fault) {
        error_ = fault.what();
        return false;
    }

    OIIO::Filesystem::IOProxy* bytes_ = nullptr;
    std::vector<Header> parts_;
    std::size_t part_ = 0;
    std::optional<ProxyStream> stream_;  // outlives the file
    std::optional<Imf::MultiPartOutputFile> file_;
    std::string error_;
};

}  // namespace

bool has_exr_extension(const std::string& path) {
    const std::string extension = OIIO::Strutil::lower(std::filesystem::path(path).extension().string());
    return extension == ".exr" || extension == ".sxr" || extension == ".mxr";
}

std::unique_ptr<PictureOutput> exr_writer() {
    return std::make_unique<ExrOutput>();
}

}  // namespace veloxa
