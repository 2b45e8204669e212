#include "DpxHead.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace veloxa {

bool dpx_head_is_sane(const std::string& path) {
    constexpr std::size_t kUserSize = 32;  // where its four bytes are
    constexpr std::int64_t kUndefined = 0xffffffff;

    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::int64_t size = file.tellg();
    std::array<char, kUserSize + 4> head{};
    file.seekg(0);
    if (!file.read(head.data(), head.size())) return true;
    const std::string_view magic(head.data(), 4);
    if (magic != "SDPX" && magic != "XPDS") return true;
    std::int64_t user = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        user = user * 256 + static_cast<unsigned char>(head[kUserSize + (magic == "SDPX" ? i : 3 - i)]);
    }
    return user == kUndefined || user <= size;
}

}  // namespace veloxa
