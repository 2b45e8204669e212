#include "shot/movie/StreamWriter.h"

#include <utility>

#include "shot/Errors.h"
#include "shot/files/Formats.h"

namespace veloxa {

void check_stream(const std::string& name, const WriteOptions& options) {
    const Depth depth = options.depth;
    const bool whole = depth == Depth::UNKNOWN || depth == Depth::UINT8 || depth == Depth::UINT16;
    if (!whole || options.bits > 0) {
        const std::string asked = whole ? "uint" + std::to_string(options.bits) : depth.c_str();
        throw Error(name, "a stream of frames cannot hold " + asked + " samples; it holds uint8 or uint16");
    }
    if (options.layers) throw Error(name, "a stream of frames cannot hold the layers that are kept");
    if (!options.compression.empty() || options.quality > 0 || options.tile_width > 0) {
        throw Error(name, "a stream of frames has no compression, quality or tiles");
    }
}

StreamWriter::StreamWriter(int file, std::string name, StreamInfo info, const WriteOptions& options) {
    check_stream(name, options);
    encoder_ = formats().encoder(file, std::move(name), std::move(info), options);
}

}  // namespace veloxa
