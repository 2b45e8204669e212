#include "shot/files/KeptLayers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "shot/Errors.h"
#include "shot/files/FileReader.h"
#include "shot/files/FileRows.h"
#include "shot/files/Metadata.h"
#include "shot/files/PictureParts.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Of every pixel, bytes that go from one place to another.
struct Move {
    std::size_t from, to, size;
};
using Moves = std::vector<Move>;

// Joins what lies side by side in both.
void add_move(Moves& moves, const Move& move) {
    if (!moves.empty()) {
        Move& last = moves.back();
        if (last.from + last.size == move.from && last.to + last.size == move.to) {
            last.size += move.size;
            return;
        }
    }
    moves.push_back(move);
}

void run(const Moves& moves, const std::byte* from, std::size_t from_pixel, std::byte* to,
         std::size_t to_pixel, std::size_t count) {
    for (const Move& move : moves) {
        const std::byte* in = from + move.from;
        std::byte* out = to + move.to;
        for (std::size_t x = 0; x < count; ++x, in += from_pixel, out += to_pixel) {
            std::memcpy(out, in, move.size);
        }
    }
}

OIIO::TypeDesc type_of(const Header& spec, int channel) {
    const OIIO::TypeDesc type = spec.channelformat(channel);
    const bool kept =
        type == OIIO::TypeDesc::HALF || type == OIIO::TypeDesc::FLOAT || type == OIIO::TypeDesc::UINT;
    return kept ? type : OIIO::TypeDesc::UNKNOWN;
}

// The header with these of its channels alone.
Header header_with(const Header& part, const std::vector<int>& channels, bool as_stored) {
    Header header = part;
    header.channelnames.clear();
    header.channelformats.clear();
    for (const int n : channels) {
        header.channelnames.emplace_back(part.channel_name(n));
        header.channelformats.push_back(as_stored ? part.channelformat(n) : OIIO::TypeFloat);
    }
    header.nchannels = static_cast<int>(channels.size());
    header.alpha_channel = header.z_channel = -1;
    header.format = OIIO::TypeFloat;
    return header;
}

KeptPart read_part(const std::string& path, int number, const std::vector<int>& channels,
                   const AbortFlag* abort) {
    FileReader reader(path, abort);
    if (!reader.go_to(number)) throw Error(path, "is damaged or not whole");
    const Header& spec = reader.spec();
    const FileReader::Span span{channels.front(), channels.back() + 1};
    const bool as_stored =
        std::ranges::all_of(channels, [&](int n) { return type_of(spec, n) != OIIO::TypeDesc::UNKNOWN; });
    KeptPart part{header_with(spec, channels, as_stored), nullptr};

    Moves moves;
    std::size_t to = 0;
    for (const int n : channels) {
        const std::size_t from = as_stored ? spec.pixel_bytes(span.first, n)
                                           : sizeof(float) * static_cast<std::size_t>(n - span.first);
        const std::size_t size = as_stored ? spec.channelformat(n).size() : sizeof(float);
        add_move(moves, {from, to, size});
        to += size;
    }
    const std::size_t pixel = as_stored ? spec.pixel_bytes(span.first, span.last)
                                        : sizeof(float) * static_cast<std::size_t>(span.last - span.first);
    const auto width = static_cast<std::size_t>(spec.width);
    part.pixels =
        std::make_unique_for_overwrite<std::byte[]>(part.pitch() * static_cast<std::size_t>(spec.height));
    reader.each_row_as(as_stored ? OIIO::TypeUnknown : OIIO::TypeFloat, span,
                       [&](int row, const std::byte* samples) {
                           run(moves, samples, pixel,
                               part.pixels.get() + part.pitch() * static_cast<std::size_t>(row), to, width);
                       });
    return part;
}

bool same_display(const Header& a, const Header& b) {
    return a.full_x == b.full_x && a.full_y == b.full_y && a.full_width == b.full_width &&
           a.full_height == b.full_height;
}

bool loses_bits(const Header& spec) {
    const std::string compression = spec.get_string_attribute("compression");
    return std::ranges::any_of(std::array{"pxr24", "b44", "dwa"},
                               [&](const char* name) { return compression.starts_with(name); });
}

// One part of the file that is made.
struct OutputPart {
    Header spec;
    bool result = false;             // whether R, G, B and A stand first in it
    const KeptPart* kept = nullptr;  // what follows, if anything
};

void set_name(Header& spec, std::string name, std::vector<std::string>& taken) {
    while (std::ranges::find(taken, name) != taken.end()) name += '_';
    spec.attribute("oiio:subimagename", name);
    spec.attribute("name", name);
    taken.push_back(std::move(name));
}

// A kept part's header for the writer. What OpenEXR wants to be one in all parts is the result's.
Header spec_of(const KeptPart& part, const Header& result) {
    Header spec = part.header;
    const std::string compression =
        loses_bits(spec) ? "zip" : spec.get_string_attribute("compression", "zip");
    keep_metadata(spec, Metadata::kAll);
    spec.attribute("compression", compression);
    for (const char* shared : {"PixelAspectRatio", "smpte:TimeCode", "chromaticities"}) {
        spec.erase_attribute(shared);
        if (const OIIO::ParamValue* const value = result.find_attribute(shared)) {
            spec.extra_attribs.push_back(*value);
        }
    }
    // The library writes rows or tiles in all parts.
    spec.tile_width = result.tile_width;
    spec.tile_height = result.tile_height;
    return spec;
}

bool fits_beside(const KeptPart& part, const Header& result) {
    return part.header.width == result.width && part.header.height == result.height &&
           part.header.x == result.x && part.header.y == result.y && !loses_bits(result) &&
           std::ranges::none_of(part.header.channelnames, [&](const std::string& name) {
               return std::ranges::find(result.channelnames, name) != result.channelnames.end();
           });
}

std::vector<OutputPart> layout_of(const Header& result, const Image& image) {
    const KeptLayers& kept = *image.kept;
    std::vector<OutputPart> parts{{result, true}};
    parts.reserve(kept.parts.size() + 1);  // the first is referred to
    Header& spec = parts.front().spec;
    spec.channelformats.assign(static_cast<std::size_t>(spec.nchannels), spec.format);
    std::vector<std::string> names;
    for (std::size_t n = 0; n < kept.parts.size(); ++n) {
        const KeptPart& part = kept.parts[n];
        if (n > 0 || !kept.of_result || !fits_beside(part, result)) {
            parts.push_back({spec_of(part, result), false, &part});
            continue;
        }
        parts.front().kept = &part;
        spec.nchannels += part.header.nchannels;
        spec.channelnames.insert(spec.channelnames.end(), part.header.channelnames.begin(),
                                 part.header.channelnames.end());
        spec.channelformats.insert(spec.channelformats.end(), part.header.channelformats.begin(),
                                   part.header.channelformats.end());
        if (const OIIO::ParamValue* const views = part.header.find_attribute("multiView")) {
            spec.extra_attribs.push_back(*views);
        }
    }
    if (parts.size() < 2) return parts;
    const std::string own = image.header.get_string_attribute("oiio:subimagename");
    set_name(spec, own.empty() ? "rgba" : own, names);
    for (std::size_t n = 1; n < parts.size(); ++n) {
        const bool of_result = kept.of_result && parts[n].kept == &kept.parts.front();
        const std::string name = parts[n].kept->header.get_string_attribute("oiio:subimagename");
        set_name(parts[n].spec, of_result || name.empty() ? "layers" + std::to_string(n) : name, names);
    }
    return parts;
}

// The rows of a part, in the samples of its channels.
class PartRows {
  public:
    PartRows(const OutputPart& part, const FileRows& result) : part_(part), result_(result) {
        if (!part.result) return;
        channels_ = result.channels().size();
        sample_ = part.spec.format.size();
        samples_.resize(result.width() * sample_);
        row_.resize(result.pitch() * sample_);
    }

    std::size_t pixel() const { return part_.spec.pixel_bytes(); }
    std::size_t pitch() const { return pixel() * static_cast<std::size_t>(part_.spec.width); }

    void fill(int n, std::byte* to) {
        const auto width = static_cast<std::size_t>(part_.spec.width);
        if (part_.result) {
            with_sample_of(part_.spec.format, [&]<class Sample>(Sample) {
                result_.fill(n, reinterpret_cast<Sample*>(row_.data()),
                             reinterpret_cast<Sample*>(samples_.data()));
            });
            const std::size_t bytes = channels_ * sample_;
            run({{0, 0, bytes}}, row_.data(), bytes, to, pixel(), width);
        }
        if (!part_.kept) return;
        const KeptPart& kept = *part_.kept;
        const std::size_t bytes = kept.header.pixel_bytes();
        run({{0, pixel() - bytes, bytes}}, kept.pixels.get() + kept.pitch() * static_cast<std::size_t>(n),
            bytes, to, pixel(), width);
    }

  private:
    const OutputPart& part_;
    const FileRows& result_;
    std::size_t channels_ = 0, sample_ = 0;
    std::vector<std::byte> row_, samples_;
};

bool write_rows(PictureOutput& output, const OutputPart& part, const FileRows& result,
                const AbortFlag* abort) {
    PartRows rows(part, result);
    const int step = rows_at_once(rows.pitch(), output.header());
    const auto buffer =
        std::make_unique_for_overwrite<std::byte[]>(rows.pitch() * static_cast<std::size_t>(step));
    const Header& spec = part.spec;
    for (int done = 0; done < spec.height; done += step) {
        give_up_if_raised(abort);
        const int count = std::min(step, spec.height - done);
        for (int n = 0; n < count; ++n) {
            rows.fill(done + n, buffer.get() + rows.pitch() * static_cast<std::size_t>(n));
        }
        const int y = spec.y + done;
        if (!output.write(y, y + count, OIIO::TypeUnknown, buffer.get())) return false;
    }
    return true;
}

// Where in a read pixel the written channels are; a message instead when one is missing or of another type.
std::string match(const Header& read, const Header& written, Moves& moves) {
    if (read.width != written.width || read.height != written.height || read.x != written.x ||
        read.y != written.y || !same_display(read, written)) {
        return "its windows read back otherwise";
    }
    if (read.nchannels != written.nchannels) return "its channels read back otherwise";
    std::size_t to = 0;
    for (int n = 0; n < written.nchannels; ++n) {
        const std::string name(written.channel_name(n));
        const int at = read.channelindex(name);
        if (at < 0 || read.channelformat(at) != written.channelformat(n)) {
            return "its channel " + name + " reads back otherwise";
        }
        const std::size_t size = written.channelformat(n).size();
        add_move(moves, {read.pixel_bytes(0, at), to, size});
        to += size;
    }
    return {};
}

std::string part_fault(const std::string& path, int number, const OutputPart& part, const FileRows& result,
                       const AbortFlag* abort) {
    FileReader reader(path, abort);
    if (!reader.go_to(number)) return "its parts read back otherwise";
    Moves moves;
    if (std::string fault = match(reader.spec(), part.spec, moves); !fault.empty()) return fault;
    PartRows rows(part, result);
    std::vector<std::byte> wanted(rows.pitch());
    std::vector<std::byte> found(rows.pitch());
    const bool exact = !part.result || !loses_bits(part.spec);
    bool same = true;
    reader.each_row_as(OIIO::TypeUnknown, {0, reader.spec().nchannels}, [&](int n, const std::byte* read) {
        if (!exact || !same) return;
        rows.fill(n, wanted.data());
        run(moves, read, rows.pixel(), found.data(), rows.pixel(), static_cast<std::size_t>(part.spec.width));
        same = wanted == found;
    });
    return same ? "" : "its pixels read back otherwise";
}

}  // namespace

KeptLayers read_kept_layers(const std::string& path, const PictureChoice& choice,
                            const AbortFlag* abort) try {
    const std::vector<Header> parts = parts_of(path);
    const Selection chosen = select_picture(path, parts, choice, false);
    KeptLayers kept;
    std::vector<std::string> left_out;
    const auto take = [&](int number) {
        const Header& part = parts[static_cast<std::size_t>(number)];
        const bool of_result = number == chosen.part;
        std::vector<int> channels;
        for (int n = 0; n < part.nchannels; ++n) {
            if (!of_result || std::ranges::find(chosen.sources, n) == chosen.sources.end())
                channels.push_back(n);
        }
        if (part.deep || !same_display(part, parts[static_cast<std::size_t>(chosen.part)])) {
            left_out.push_back("part " + part_name(part, number) +
                               (part.deep ? ", which is deep," : ", which has another size,"));
        } else if (!channels.empty()) {
            kept.parts.push_back(read_part(path, number, channels, abort));
            kept.of_result = kept.of_result || of_result;
        }
    };
    take(chosen.part);
    for (int n = 0; n < static_cast<int>(parts.size()); ++n) {
        if (n != chosen.part) take(n);
    }
    for (const std::string& one : left_out) kept.left_out += (kept.left_out.empty() ? "" : " ") + one;
    return kept;
} catch (const std::bad_alloc&) {
    throw Error(path, "needs more memory than there is");
}

void check_holds_layers(const std::string& path, const PictureOutput& output) {
    if (output.format_name() == "openexr") return;
    throw Error(path, "the format cannot hold the layers that are kept; OpenEXR can");
}

bool write_with_layers(PictureOutput& output, const std::string& path, const Header& result,
                       const Image& image, const FileRows& rows, const AbortFlag* abort) {
    const std::vector<OutputPart> parts = layout_of(result, image);
    std::vector<Header> specs;
    specs.reserve(parts.size());
    for (const OutputPart& part : parts) specs.push_back(part.spec);
    if (!output.open(path, specs)) return false;
    for (std::size_t n = 0; n < parts.size(); ++n) {
        if (n > 0 && !output.next_part()) return false;
        if (!write_rows(output, parts[n], rows, abort)) return false;
    }
    return true;
}

std::string layers_fault(const std::string& path, const Header& result, const Image& image,
                         const FileRows& rows, const AbortFlag* abort) try {
    const std::vector<OutputPart> parts = layout_of(result, image);
    for (std::size_t n = 0; n < parts.size(); ++n) {
        std::string fault = part_fault(path, static_cast<int>(n), parts[n], rows, abort);
        if (!fault.empty()) return fault;
    }
    return {};
} catch (const Interrupted&) {
    throw;
} catch (const Error& error) {
    return std::string("it cannot be read back: ") + error.what();
}

}  // namespace veloxa
