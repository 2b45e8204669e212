#include "shot/files/ReadBack.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "shot/files/FileReader.h"
#include "shot/files/FileRows.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

bool keeps_samples(const OIIO::ImageOutput& output) {
    for (const std::string_view format : {"gif", "hdr", "heif", "jpeg", "webp"}) {
        if (format == output.format_name()) return false;
    }
    const OIIO::TypeDesc type = output.spec().format;
    return type == OIIO::TypeDesc::UINT8 || type == OIIO::TypeDesc::UINT16 || type == OIIO::TypeDesc::HALF ||
           type == OIIO::TypeDesc::FLOAT;
}

std::string header_fault(const OIIO::ImageSpec& read, const OIIO::ImageOutput& output) {
    const OIIO::ImageSpec& written = output.spec();
    const bool windows = std::string_view(output.format_name()) == "openexr";
    const bool webp = std::string_view(output.format_name()) == "webp";
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

template <class Sample>
std::string sample_fault(FileReader& reader, const FileRows& rows, bool exact) {
    const auto row = std::make_unique_for_overwrite<Sample[]>(rows.pitch());
    const auto samples = std::make_unique_for_overwrite<Sample[]>(rows.width());
    bool same = true;
    const int channels = std::min(static_cast<int>(rows.channels().size()), reader.spec().nchannels);
    reader.each_row<Sample>({0, channels}, [&](int n, const Sample* read) {
        if (!exact || !same) return;
        rows.fill(n, row.get(), samples.get());
        same = std::memcmp(row.get(), read, rows.pitch() * sizeof(Sample)) == 0;
    });
    return same ? "" : "its pixels read back otherwise";
}

}  // namespace

std::string read_back(const std::string& path, const Image& image, const OIIO::ImageOutput& output,
                      const AbortFlag* abort) try {
    FileReader reader(path, abort);
    std::string fault = header_fault(reader.spec(), output);
    if (!fault.empty()) return fault;
    const FileRows rows(image, output);
    return with_sample_of(output.spec().format, [&]<class Sample>(Sample) {
        return sample_fault<Sample>(reader, rows, keeps_samples(output));
    });
} catch (const Error& error) {
    return std::string("it cannot be read back: ") + error.what();
}

}  // namespace veloxa
