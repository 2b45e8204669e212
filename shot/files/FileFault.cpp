#include "shot/files/FileFault.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace veloxa {

namespace {

std::int64_t number(std::string_view bytes, bool last_first) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        value = value * 256 + static_cast<unsigned char>(bytes[last_first ? bytes.size() - 1 - i : i]);
    }
    return value;
}

// Whether a PNG's chunks, from behind its signature on, reach to its end chunk.
bool reaches_end(std::ifstream& file, std::int64_t size) {
    constexpr std::int64_t kChecksum = 4;
    std::array<char, 8> head{};  // of a chunk: length of its data, type; data and checksum follow
    while (file.read(head.data(), head.size())) {
        const std::string_view chunk(head.data(), head.size());
        const std::int64_t next =
            static_cast<std::int64_t>(file.tellg()) + number(chunk.substr(0, 4), false) + kChecksum;
        if (next > size) return false;
        if (chunk.substr(4) == "IEND") return true;
        file.seekg(next);
    }
    return false;
}

}  // namespace

std::string fault_unseen(const std::string& path) {
    constexpr std::string_view kPng("\x89PNG\r\n\x1a\n", 8);
    constexpr std::size_t kUserSize = 32;  // where a DPX has its four bytes
    constexpr std::int64_t kUndefined = 0xffffffff;

    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::int64_t size = file.tellg();
    std::array<char, kUserSize + 4> bytes{};
    file.seekg(0);
    file.read(bytes.data(), bytes.size());
    const std::string_view head(bytes.data(), static_cast<std::size_t>(file.gcount()));
    file.clear();
    if (head.starts_with(kPng)) {
        file.seekg(kPng.size());
        return reaches_end(file, size) ? "" : "is cut off";
    }
    if (head.size() < bytes.size() || !(head.starts_with("SDPX") || head.starts_with("XPDS"))) return {};
    const std::int64_t user = number(head.substr(kUserSize), head.starts_with("XPDS"));
    return user == kUndefined || user <= size ? "" : "has a damaged header";
}

}  // namespace veloxa
