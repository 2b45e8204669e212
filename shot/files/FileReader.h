// Decodes an image file row by row.
//
// Colour as stored and not multiplied by an alpha that the format keeps apart.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>

#include "ZoImage/Render.h"
#include "ZoImage/Samples.h"
#include "shot/Errors.h"
#include "shot/files/ImageLibrary.h"
#include "shot/files/PictureFile.h"
#include "shot/image/Image.h"

namespace veloxa {

// The library's name for the type of a sample.
template <class Sample>
OIIO::TypeDesc sample_type() {
    if constexpr (std::is_same_v<Sample, Zo::Image::Half>) {
        return OIIO::TypeDesc::HALF;
    } else {
        return OIIO::BaseTypeFromC<Sample>::value;
    }
}

// How many rows of so many bytes to decode or encode at a time: whole tiles, or whole blocks of the usual
// compressions, enough to keep every thread of the library busy, in a few megabytes.
int rows_at_once(std::size_t row_bytes, const Header& spec);

// Reads the rows of one part, once.
class FileReader {
  public:
    // Channels of the part, from first up to and without last.
    struct Span {
        int first = 0;
        int last = 0;
    };

    // Stands on the file's first part. Throws Error when the file is missing or is no image that can be read.
    FileReader(const std::string& path, const Zo::Image::AbortFlag* abort);

    // Goes to a part, before any row is read; false when there are fewer. Throws Error when its pixels are of
    // no kind that can be read.
    bool go_to(int part);
    // Of the part.
    const Header& spec() const { return input_->header(); }
    // What all of these channels are stored as; unknown where they differ.
    OIIO::TypeDesc stored_as(const Span& span) const;
    // Calls take(row of the part from its first, interleaved samples of the span) for every row. Throws Error
    // when the file is not whole, and Interrupted.
    template <class Sample, class Take>
    void each_row(const Span& span, const Take& take);
    // The same with bytes: samples of the type, or, for an unknown one, each channel's as the file has them.
    template <class Take>
    void each_row_as(const OIIO::TypeDesc& type, const Span& span, const Take& take);

  private:
    void read_rows(int from_row, int to_row, const Span& span, const OIIO::TypeDesc& type, void* into);
    void close();
    [[noreturn]] void fail();

    const Hush hush_;
    const std::string& path_;
    const Zo::Image::AbortFlag* abort_;
    std::unique_ptr<PictureInput> input_;
};

template <class Sample, class Take>
void FileReader::each_row(const Span& span, const Take& take) {
    each_row_as(sample_type<Sample>(), span, [&](int row, const std::byte* samples) {
        take(row, reinterpret_cast<const Sample*>(samples));
    });
}

template <class Take>
void FileReader::each_row_as(const OIIO::TypeDesc& type, const Span& span, const Take& take) {
    const std::size_t pixel = type == OIIO::TypeDesc::UNKNOWN
                                  ? spec().pixel_bytes(span.first, span.last)
                                  : type.size() * static_cast<std::size_t>(span.last - span.first);
    const std::size_t pitch = static_cast<std::size_t>(spec().width) * pixel;
    const int step = rows_at_once(pitch, spec());
    const auto rows = std::make_unique_for_overwrite<std::byte[]>(pitch * static_cast<std::size_t>(step));
    for (int done = 0; done < spec().height; done += step) {
        give_up_if_raised(abort_);
        const int count = std::min(step, spec().height - done);
        read_rows(spec().y + done, spec().y + done + count, span, type, rows.get());
        for (int n = 0; n < count; ++n) take(done + n, rows.get() + pitch * static_cast<std::size_t>(n));
    }
    close();
}

}  // namespace veloxa
