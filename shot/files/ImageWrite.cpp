// Writing of image files; see ImageFile.h.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/files/CheckedFile.h"
#include "shot/files/FileHeader.h"
#include "shot/files/FileReader.h"
#include "shot/files/FileRows.h"
#include "shot/files/ImageFile.h"
#include "shot/files/ImageLibrary.h"
#include "shot/files/KeptLayers.h"
#include "shot/files/Metadata.h"
#include "shot/files/PictureFile.h"
#include "shot/files/SystemFault.h"
#include "shot/movie/MovieFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

std::unique_ptr<PictureOutput> writer_for(const std::string& path) {
    std::string error;
    auto output = picture_writer(path, error);
    const std::string movie = output ? "" : movie_to_write(path);
    if (!movie.empty()) throw Error(path, movie);
    if (!output) throw Error(path, tidy_message(error, path, "cannot be written"));
    const std::string_view format = output->format_name();
    if (format == "null" || format == "term") throw Error(path, "has no extension of an image format");
    return output;
}

// Behind a proxy the library gives libtiff nothing to read, but libtiff reads the image's directory again
// after it has written one for Exif, and makes an unusable file when it cannot.
bool takes_proxy(const PictureOutput& output) {
    return output.supports("ioproxy") && output.format_name() != "tiff";
}

template <class Sample>
bool write_rows(PictureOutput& output, const FileRows& from, const AbortFlag* abort) {
    const std::size_t pitch = from.pitch();
    const int step = rows_at_once(pitch * sizeof(Sample), output.header());
    // The library's HEIF writer reads on to the end of a padded row.
    constexpr std::size_t kPadding = 256;
    const auto rows =
        std::make_unique_for_overwrite<Sample[]>(pitch * static_cast<std::size_t>(step) + kPadding);
    const auto samples = std::make_unique_for_overwrite<Sample[]>(from.width());
    const int top = output.header().y;
    for (int done = 0; done < from.height(); done += step) {
        give_up_if_raised(abort);
        const int count = std::min(step, from.height() - done);
        for (int n = 0; n < count; ++n) {
            from.fill(done + n, rows.get() + pitch * static_cast<std::size_t>(n), samples.get());
        }
        const int y = top + done;
        if (!output.write(y, y + count, sample_type<Sample>(), rows.get())) return false;
    }
    return true;
}

bool write_pixels(PictureOutput& output, const FileRows& rows, const AbortFlag* abort) {
    return with_sample_of(output.header().format,
                          [&]<class Sample>(Sample) { return write_rows<Sample>(output, rows, abort); });
}

std::string header_fault(const Header& read, const PictureOutput& output) {
    const Header& written = output.header();
    const bool windows = output.format_name() == "openexr";
    const bool webp = output.format_name() == "webp";
    if (read.width != written.width || read.height != written.height) {
        return "its size reads back as " + size_text(read.width, read.height) + ", not " +
               size_text(written.width, written.height);
    }
    if (windows && (read.x != written.x || read.y != written.y || read.full_x != written.full_x ||
                    read.full_y != written.full_y || read.full_width != written.full_width ||
                    read.full_height != written.full_height)) {
        return "its windows read back otherwise";
    }
    // Some formats have an alpha always, and WebP drops one that is 1 everywhere.
    const bool same = read.nchannels == written.nchannels ||
                      (written.nchannels == 3 && read.nchannels == 4) ||
                      (webp && written.nchannels == 4 && read.nchannels == 3);
    if (!same) {
        return "it reads back with " + std::to_string(read.nchannels) + " channels, not " +
               std::to_string(written.nchannels);
    }
    if (read.format != written.format) {
        return std::string("its samples read back as ") + read.format.c_str() + ", not " +
               written.format.c_str();
    }
    return {};
}

// Readers fill up samples of fewer bits in two ways, which are 1 apart.
template <class Sample>
bool same_samples(const Sample* a, const Sample* b, std::size_t count, bool filled) {
    if (!filled) return std::memcmp(a, b, count * sizeof(Sample)) == 0;
    return std::equal(a, a + count, b, [](Sample p, Sample q) {
        return std::abs(static_cast<float>(p) - static_cast<float>(q)) <= 1.0f;
    });
}

template <class Sample>
std::string sample_fault(FileReader& reader, const FileRows& rows, bool exact) {
    const auto row = std::make_unique_for_overwrite<Sample[]>(rows.pitch());
    const auto samples = std::make_unique_for_overwrite<Sample[]>(rows.width());
    bool same = true;
    const int channels = std::min(static_cast<int>(rows.channels().size()), reader.spec().nchannels);
    reader.each_row<Sample>({0, channels}, [&](int n, const Sample* read) {
        if (!exact || !same) return;
        rows.fill(n, row.get(), samples.get());
        same = same_samples(row.get(), read, rows.pitch(), rows.bits() > 0);
    });
    return same ? "" : "its pixels read back otherwise";
}

// Reads a file back that `output` has written from the image and closed. Empty when it has the size, windows,
// channels and type that the writer opened it with, and every sample of it: the same bits, or, for formats
// that only approximate samples, any; else what is wrong. Throws Interrupted.
std::string read_back(const std::string& path, const FileRows& rows, const PictureOutput& output,
                      const AbortFlag* abort) try {
    FileReader reader(path, abort);
    std::string fault = header_fault(reader.spec(), output);
    if (!fault.empty()) return fault;
    return with_sample_of(output.header().format, [&]<class Sample>(Sample) {
        return sample_fault<Sample>(reader, rows, keeps_samples(output));
    });
} catch (const Error& error) {
    return std::string("it cannot be read back: ") + error.what();
}

// Writes the file and reads it back. Returns what went wrong that less metadata might mend, empty for
// nothing; throws Error for the rest.
std::string write_once(const std::string& temporary, const std::string& path, const Image& image,
                       const Header& header, const WriteOptions& options) {
    const Hush hush(path);
    std::unique_ptr<CheckedFile> bytes;  // outlives the writer, which writes once more when it goes
    const auto output = writer_for(path);
    if (takes_proxy(*output)) {
        bytes = std::make_unique<CheckedFile>(temporary);
        output->set_ioproxy(bytes.get());
    }
    const auto check_bytes = [&] {
        if (bytes) bytes->check(path);
    };
    check_bytes();
    const FileRows rows(image, *output, options);
    const Header spec = header_for(header, rows, *output, options);
    bool good = image.kept ? write_with_layers(*output, temporary, spec, image, rows, options.abort)
                           : output->open(temporary, std::span(&spec, 1));
    if (good && !image.kept) {
        check_type(path, *output, options);
        good = write_pixels(*output, rows, options.abort);
    }
    good = output->close() && good;
    if (bytes && good) bytes->close();
    check_bytes();
    if (!good) return tidy_message(output->error(), temporary, "could not be written");
    if (image.kept) return layers_fault(temporary, spec, image, rows, options.abort);
    return read_back(temporary, rows, *output, options.abort);
}

}  // namespace

bool keeps_alpha(const std::string& path, const WriteOptions& options) {
    return keeps_alpha(*writer_for(path), options);
}

void set_depth(WriteOptions& options, const std::string& name) {
    static const std::map<std::string_view, std::pair<Depth, int>> kDepths{
        {"", {Depth::UNKNOWN, 0}},      {"half", {Depth::HALF, 0}},      {"float", {Depth::FLOAT, 0}},
        {"uint8", {Depth::UINT8, 0}},   {"uint10", {Depth::UINT16, 10}}, {"uint12", {Depth::UINT16, 12}},
        {"uint16", {Depth::UINT16, 0}},
    };
    const auto depth = kDepths.find(name);
    if (depth == kDepths.end()) throw UsageError("--depth " + name + ": there is no such depth");
    options.depth = depth->second.first;
    options.bits = depth->second.second;
}

bool keeps_fingerprint(const std::string& path, const WriteOptions& options) {
    return options.made_by.notes_fingerprint(writer_for(path)->format_name());
}

void check_writable(const std::string& path, const WriteOptions& options) {
    AtomicFile::check(path, options.overwrite);
    const Hush hush(path);
    OIIO::Filesystem::IOVecOutput memory;  // outlives the writer, which writes once more when it goes
    const auto output = writer_for(path);
    check_options(path, *output, options);
    if (options.layers) check_holds_layers(path, *output);
    if (options.depth == Depth::UNKNOWN || !output->supports("ioproxy")) return;
    // What a writer makes of a sample type shows only when it opens a file; this one stays in memory.
    Info info;
    info.box = info.format.box = {0, 0, 16, 16};
    info.channels = kMaskRgba;
    Image image(info);
    for (const Plane& plane : image.planes) std::fill_n(plane.get(), 16 * 16, 0.0f);
    output->set_ioproxy(&memory);
    const FileRows rows(image, *output, options);
    if (!output->open(path, std::array{header_for(image.header, rows, *output, options)})) return;
    write_pixels(*output, rows, nullptr);
    output->close();
    check_type(path, *output, options);
}

std::string write_image(const std::string& path, const Image& image, const WriteOptions& options) {
    const auto format = writer_for(path);  // tells of it; each try has a writer of its own
    if (image.kept) check_holds_layers(path, *format);
    AtomicFile file(path, options.overwrite);
    std::string fault;
    std::string left_out;
    for (const Metadata kept : {Metadata::kAll, Metadata::kPlain, Metadata::kNone}) {
        Header header = image.header;
        left_out = keep_metadata(header, kept);
        if (kept != Metadata::kAll && left_out.empty()) continue;
        options.made_by.note(header, format->format_name());
        if (!fits(header, *format)) continue;
        const std::string now = write_once(file.temporary(), path, image, header, options);
        if (now.empty()) {
            file.commit();
            return left_out;
        }
        if (fault.empty()) fault = now;
    }
    // Of writers that go to the file by themselves the system's error is not known.
    throw_fault(path, fault_of_writing(file.handle()), fault);
}

std::string left_out_warning(const std::string& path, const std::string& left_out) {
    return path + ": warning: metadata of the foreground is left out (" + left_out +
           "), with which the file could not be read back";
}

}  // namespace veloxa
