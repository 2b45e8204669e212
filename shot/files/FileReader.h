// Decodes an image file row by row.
//
// The file's first image, colour as stored and not multiplied by an alpha that the format keeps apart.
#pragma once

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>

#include "ZoImage/Render.h"
#include "shot/Errors.h"
#include "shot/files/ImageLibrary.h"
#include "shot/image/HalfFloat.h"
#include "shot/image/Image.h"

namespace veloxa {

// The library's name for the type of a sample.
template <class Sample>
OIIO::TypeDesc sample_type() {
    if constexpr (std::is_same_v<Sample, Half>) {
        return OIIO::TypeDesc::HALF;
    } else {
        return OIIO::BaseTypeFromC<Sample>::value;
    }
}

// How many rows of so many bytes to decode or encode at a time: whole tiles, or whole blocks of the usual
// compressions, enough to keep every thread of the library busy, in a few megabytes.
int rows_at_once(std::size_t row_bytes, const OIIO::ImageSpec& spec);

class FileReader {
  public:
    // Channels of the file, from first up to and without last.
    struct Span {
        int first = 0;
        int last = 0;
    };

    // Throws Error when the file is missing or is no image that can be read.
    FileReader(const std::string& path, const Zo::Image::AbortFlag* abort);

    const OIIO::ImageSpec& spec() const { return input_->spec(); }
    // Whether all of these channels are stored as halves.
    bool is_half(const Span& span) const;
    // Calls take(row of the file from its first, interleaved samples of the span) for every row. Throws Error
    // when the file is not whole, and Interrupted.
    template <class Sample, class Take>
    void each_row(const Span& span, const Take& take);

  private:
    void read_rows(int from_row, int to_row, const Span& span, OIIO::TypeDesc type, void* into);
    void close();
    [[noreturn]] void fail();

    const Hush hush_;
    const std::string& path_;
    const Zo::Image::AbortFlag* abort_;
    std::unique_ptr<OIIO::ImageInput> input_;
};

template <class Sample, class Take>
void FileReader::each_row(const Span& span, const Take& take) {
    const std::size_t pitch =
        static_cast<std::size_t>(spec().width) * static_cast<std::size_t>(span.last - span.first);
    const int step = rows_at_once(pitch * sizeof(Sample), spec());
    const auto rows = std::make_unique_for_overwrite<Sample[]>(pitch * static_cast<std::size_t>(step));
    for (int done = 0; done < spec().height; done += step) {
        give_up_if_raised(abort_);
        const int count = std::min(step, spec().height - done);
        read_rows(spec().y + done, spec().y + done + count, span, sample_type<Sample>(), rows.get());
        for (int n = 0; n < count; ++n) take(done + n, rows.get() + pitch * static_cast<std::size_t>(n));
    }
    close();
}

}  // namespace veloxa
