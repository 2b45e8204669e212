#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfTestFile.h>
#include <OpenEXR/ImfThreading.h>
#include <OpenEXR/ImfTileDescription.h>
#include <OpenImageIO/fmath.h>
#include <OpenImageIO/strutil.h>
#include <OpenImageIO/sysutil.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

#include "shot/openexr/ExrAttributes.h"
#include "shot/openexr/ExrFile.h"

namespace veloxa {

using OIIO::TypeDesc;
using OIIO::Strutil::iequals;

namespace {

TypeDesc type_of(Imf::PixelType type) {
    return type == Imf::HALF ? TypeDesc::HALF : type == Imf::UINT ? TypeDesc::UINT32 : TypeDesc::FLOAT;
}

Imf::PixelType exr_type(const TypeDesc& type) {
    return type == TypeDesc::HALF ? Imf::HALF : type == TypeDesc::UINT32 ? Imf::UINT : Imf::FLOAT;
}

struct Channel {
    std::string name, layer, end;
    TypeDesc type;
};

// Where a channel stands in its layer; the file has them by the alphabet.
std::size_t place_of(const std::string& end) {
    constexpr std::array kFirst{"R",     "Red", "G",  "Green", "B",  "Blue", "Y",  "real", "imag",  "A",
                                "Alpha", "AR",  "RA", "AG",    "GA", "AB",   "BA", "Z",    "Depth", "Zback"};
    const auto* const found =
        std::ranges::find_if(kFirst, [&](const char* name) { return iequals(end, name); });
    return static_cast<std::size_t>(found - kFirst.begin());
}

std::vector<Channel> channels_of(const Imf::Header& header) {
    std::vector<Channel> list;
    const Imf::ChannelList& channels = header.channels();
    for (auto one = channels.begin(); one != channels.end(); ++one) {
        const Imf::Channel& channel = one.channel();
        const std::string name = one.name();
        if (channel.xSampling != 1 || channel.ySampling != 1) {
            throw std::runtime_error("Subsampled channels are not supported (channel \"" + name +
                                     "\" has sampling " + std::to_string(channel.xSampling) + "," +
                                     std::to_string(channel.ySampling) + ")");
        }
        const std::size_t end = name.rfind('.') + 1;  // 0 without a dot
        list.push_back({name, name.substr(0, end), name.substr(end), type_of(channel.type)});
    }
    std::ranges::sort(list, {}, [](const Channel& c) { return std::tuple(c.layer, place_of(c.end), c.end); });
    return list;
}

int rank(const TypeDesc& type) {
    return type == TypeDesc::HALF ? 0 : type == TypeDesc::UINT32 ? 1 : 2;
}

void set_channels(Header& header, const std::vector<Channel>& channels) {
    header.nchannels = static_cast<int>(channels.size());
    header.format = TypeDesc::HALF;
    for (const Channel& one : channels) {
        const int n = static_cast<int>(header.channelnames.size());
        header.channelnames.push_back(one.name);
        header.channelformats.push_back(one.type);
        if (rank(one.type) > rank(header.format)) header.format = one.type;
        if (header.alpha_channel < 0 && (iequals(one.end, "A") || iequals(one.end, "Alpha")))
            header.alpha_channel = n;
        if (header.z_channel < 0 && (iequals(one.end, "Z") || iequals(one.end, "Depth")))
            header.z_channel = n;
    }
    const auto& types = header.channelformats;
    if (std::ranges::all_of(types, [&](const TypeDesc& type) { return type == types.front(); })) {
        header.set_format(types.empty() ? header.format : types.front());
    } else if (std::ranges::find(types, TypeDesc(TypeDesc::UINT32)) != types.end()) {
        header.format = TypeDesc::FLOAT;
    }
}

class ExrInput final : public PictureInput {
  public:
    explicit ExrInput(const std::string& path) : file_(path.c_str()) { describe(0); }

    std::string_view format_name() const override { return "openexr"; }

    bool go_to(int part) override try {
        if (part >= file_.parts()) return false;
        if (part != part_) describe(part);
        return true;
    } catch (const std::exception& fault) {
        error_ = fault.what();
        return false;
    }

    bool read(int top, int bottom, int first, int last, TypeDesc type, void* into) override try {
        read_channels(top, bottom, first, last, type, static_cast<std::byte*>(into));
        return true;
    } catch (const std::exception& fault) {
        error_ = fault.what();
        return false;
    }

    bool close() override { return true; }
    std::string error() override { return std::exchange(error_, {}); }

  private:
    void describe(int part);
    void read_channels(int top, int bottom, int first, int last, const TypeDesc& type, std::byte* into);

    Imf::MultiPartInputFile file_;
    int part_ = -1;
    std::optional<Imf::InputPart> pixels_;  // of the part, unless it is deep
    std::string error_;
};

void ExrInput::describe(int part) {
    const Imf::Header& from = file_.header(part);
    const bool tiles = from.hasTileDescription() && from.hasType() && Imf::isTiled(from.type());
    Header header;
    const Imath::Box2i& data = from.dataWindow();
    const Imath::Box2i& display = from.displayWindow();
    header.x = data.min.x;
    header.y = data.min.y;
    header.width = data.max.x - data.min.x + 1;
    header.height = data.max.y - data.min.y + 1;
    header.full_x = display.min.x;
    header.full_y = display.min.y;
    header.full_width = display.max.x - display.min.x + 1;
    header.full_height = display.max.y - display.min.y + 1;
    header.deep = from.hasType() && Imf::isDeepData(from.type());
    if (tiles) {
        header.tile_width = static_cast<int>(from.tileDescription().xSize);
        header.tile_height = static_cast<int>(from.tileDescription().ySize);
    }
    set_channels(header, channels_of(from));
    take_attributes(from, header);
    header.attribute("oiio:subimages", file_.parts());

    pixels_.reset();
    if (!header.deep) pixels_.emplace(file_, part);
    part_ = part;
    header_ = std::move(header);
}

void ExrInput::read_channels(int top, int bottom, int first, int last, const TypeDesc& type,
                             std::byte* into) {
    const bool native = type == TypeDesc::UNKNOWN;
    const auto count = static_cast<std::size_t>(last - first);
    const std::size_t pixel = native ? header_.pixel_bytes(first, last) : count * type.size();
    const auto width = static_cast<std::size_t>(header_.width);
    const Imath::Box2i rows({header_.x, top}, {header_.x + header_.width - 1, bottom - 1});
    Imf::FrameBuffer buffer;
    std::vector<std::byte*> whole;  // numbers, which stand for 0 to 1 where floats are asked for
    std::byte* to = into;
    for (int n = first; n < last; ++n) {
        const TypeDesc stored = header_.channelformat(n);
        const bool scaled = stored == TypeDesc::UINT32 && type == TypeDesc::FLOAT;
        const TypeDesc as = native || scaled ? stored : type;
        buffer.insert(header_.channelnames[static_cast<std::size_t>(n)],
                      Imf::Slice::Make(exr_type(as), to, rows, pixel, pixel * width));
        if (scaled) whole.push_back(to);
        to += as.size();
    }
    pixels_->setFrameBuffer(buffer);
    pixels_->readPixels(top, bottom - 1);
    const std::size_t pixels = width * static_cast<std::size_t>(bottom - top);
    for (std::byte* at : whole) {
        for (std::size_t n = 0; n < pixels; ++n, at += pixel) {
            std::uint32_t number = 0;
            std::memcpy(&number, at, sizeof number);
            const auto value = OIIO::convert_type<std::uint32_t, float>(number);
            std::memcpy(at, &value, sizeof value);
        }
    }
}

}  // namespace

bool is_exr(const std::string& path) {
    return Imf::isOpenExrFile(path.c_str());
}

std::unique_ptr<PictureInput> open_exr(const std::string& path, std::string& error) try {
    static std::once_flag once;  // its library has none by itself
    std::call_once(once, [] {
        if (Imf::globalThreadCount() == 0) set_exr_threads(0);
    });
    return std::make_unique<ExrInput>(path);
} catch (const std::bad_alloc&) {
    throw;
} catch (const std::exception& fault) {
    error = fault.what();
    return nullptr;
}

void set_exr_threads(int threads) {
    Imf::setGlobalThreadCount(threads > 0 ? threads
                                          : static_cast<int>(OIIO::Sysutil::hardware_concurrency()));
}

}  // namespace veloxa
