#include "shot/files/ImageLibrary.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <mutex>

namespace veloxa {

namespace {

std::mutex mutex;  // guards the two below
int hushed = 0;
int unhushed = -1;  // standard error, meanwhile

thread_local const std::string* worked_on = nullptr;

void erase_all(std::string& text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
        text.erase(at, part.size());
    }
}

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

Hush::Hush(const std::string& file) : outer_(worked_on) {
    worked_on = &file;
    const std::lock_guard hold(mutex);
    if (hushed++ > 0) return;
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    unhushed = nowhere < 0 ? -1 : ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (unhushed >= 0) ::dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) ::close(nowhere);
}

Hush::~Hush() {
    worked_on = outer_;
    const std::lock_guard hold(mutex);
    if (--hushed > 0 || unhushed < 0) return;
    ::dup2(unhushed, STDERR_FILENO);
    ::close(unhushed);
}

const std::string* Hush::file() {
    return worked_on;
}

std::string tidy_message(std::string_view message, std::string_view path, std::string_view otherwise) {
    const std::string name(path);
    std::string text(message);
    if (text.find("could not find a format reader") != std::string::npos)
        return "is no image file of a known format";
    if (text.find("could not find a format writer") != std::string::npos) {
        return "has no extension of a format that can be written";
    }
    for (const char* before : {" for \"", " (\"", " \"", "\"", ""}) {
        for (const char* after : {"\")", "\": ", "\"", ": "}) erase_all(text, before + name + after);
    }
    // One cause often gives many lines, one for each block of rows.
    const std::size_t start = std::min(text.find_first_not_of("\r\n "), text.size());
    std::string line = text.substr(start, text.find_first_of("\r\n", start) - start);
    while (!line.empty() && (line.back() == ' ' || line.back() == '.')) line.pop_back();
    return line.empty() ? std::string(otherwise) : line;
}

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
