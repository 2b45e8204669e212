#include "shot/files/FileReader.h"

#include <filesystem>
#include <string_view>

#include "shot/files/SystemFault.h"
#include "shot/movie/MovieFile.h"

namespace veloxa {

using namespace Zo::Image;
namespace fs = std::filesystem;

int rows_at_once(std::size_t row_bytes, const Header& spec) {
    constexpr std::size_t kBytes = std::size_t{4} << 20;
    constexpr std::size_t kBlock = 32;
    const std::size_t blocks = kBytes / kBlock / std::max<std::size_t>(row_bytes, 1);
    int rows = static_cast<int>(kBlock * std::clamp<std::size_t>(blocks, 1, 8));
    if (spec.tile_height > 0) rows = std::max(1, rows / spec.tile_height) * spec.tile_height;
    return std::min(rows, spec.height);
}

FileReader::FileReader(const std::string& path, const AbortFlag* abort)
    : hush_(path), path_(path), abort_(abort) {
    std::error_code failed;
    const fs::file_status status = fs::status(path_, failed);
    if (!fs::status_known(status)) throw_fault(path_, failed.value());
    if (!fs::exists(status)) throw Error(path_, "does not exist");
    if (fs::is_directory(status)) throw Error(path_, "is a folder");
    if (!fs::is_regular_file(status)) throw Error(path_, "is not a regular file");
    if (fs::file_size(path_, failed) == 0) throw Error(path_, "is empty");

    if (const std::string fault = fault_unseen(path_); !fault.empty()) throw Error(path_, fault);

    std::string error;
    input_ = open_picture(path_, error);
    if (!input_ || input_->format_name() == "FFmpeg movie") {
        const std::string movie = movie_to_read(path_, "fg");
        if (!movie.empty()) throw MovieError(path_, movie);
    }
    if (!input_) throw Error(path_, tidy_message(error, path_, "cannot be opened"));
    if (input_->format_name() == "null") throw Error(path_, "is no image file");
}

bool FileReader::go_to(int part) {
    if (!input_->go_to(part)) return false;
    if (spec().deep) throw Error(path_, "holds deep pixels, which cannot be keyed");
    if (spec().nchannels < 1) throw Error(path_, "has no channels");
    return true;
}

void FileReader::fail() {
    throw Error(path_, tidy_message(input_->error(), path_, "is damaged or not whole"));
}

OIIO::TypeDesc FileReader::stored_as(const Span& span) const {
    const OIIO::TypeDesc type = spec().channelformat(span.first);
    for (int n = span.first; n < span.last; ++n) {
        if (spec().channelformat(n) != type) return OIIO::TypeDesc::UNKNOWN;
    }
    return type;
}

void FileReader::read_rows(int from_row, int to_row, const Span& span, const OIIO::TypeDesc& type,
                           void* into) {
    if (!input_->read(from_row, to_row, span.first, span.last, type, into)) fail();
}

void FileReader::close() {
    if (!input_->close()) fail();
}

}  // namespace veloxa
