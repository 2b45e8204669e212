#include "PngEnd.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace veloxa {

bool png_is_whole(const std::string& path) {
    constexpr std::string_view kSignature("\x89PNG\r\n\x1a\n", 8);
    constexpr std::int64_t kChecksum = 4;

    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::int64_t size = file.tellg();
    std::array<char, 8> head{};
    file.seekg(0);
    if (!file.read(head.data(), head.size())) return true;
    if (std::string_view(head.data(), head.size()) != kSignature) return true;

    // Each chunk: length of its data, type, data, checksum.
    while (file.read(head.data(), head.size())) {
        std::int64_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) length = length * 256 + static_cast<unsigned char>(head[i]);
        const std::int64_t next = static_cast<std::int64_t>(file.tellg()) + length + kChecksum;
        if (next > size) return false;
        if (std::string_view(head.data() + 4, 4) == "IEND") return true;
        file.seekg(next);
    }
    return false;
}

}  // namespace veloxa
