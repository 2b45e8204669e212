#include "shot/farm/Fingerprint.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <new>
#include <utility>

#include "shot/Errors.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// So that what a later version puts into fingerprints is never taken for what this one does.
constexpr std::string_view kScheme = "1";
constexpr std::size_t kBlock = 1 << 20;

std::string status_of(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return "missing";
    return std::to_string(status.st_size) + " " + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec);
}

}  // namespace

void Digest::Free::operator()(XXH3_state_s* state) const {
    XXH3_freeState(state);
}

Digest::Digest() : state_(XXH3_createState()) {
    if (!state_) throw std::bad_alloc();
    XXH3_128bits_reset(state_.get());
}

void Digest::add(std::string_view name, std::string_view value) {
    for (const std::string_view text : {name, value}) {
        const std::uint64_t size = text.size();
        XXH3_128bits_update(state_.get(), &size, sizeof size);
        XXH3_128bits_update(state_.get(), text.data(), text.size());
    }
}

bool Digest::add_file(const std::string& path, const AbortFlag* abort) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    ::posix_fadvise(file, 0, 0, POSIX_FADV_SEQUENTIAL);
    const auto bytes = std::make_unique_for_overwrite<std::byte[]>(kBlock);
    ssize_t got = 0;
    while (!(abort && abort->raised()) && (got = ::read(file, bytes.get(), kBlock)) > 0) {
        XXH3_128bits_update(state_.get(), bytes.get(), static_cast<std::size_t>(got));
    }
    ::close(file);
    give_up_if_raised(abort);
    return got == 0;
}

std::string Digest::text() const {
    const XXH128_hash_t hash = XXH3_128bits_digest(state_.get());
    std::array<char, 33> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx%016llx",
                  static_cast<unsigned long long>(hash.high64), static_cast<unsigned long long>(hash.low64));
    return digits.data();
}

Fingerprints::Fingerprints(FrameLoader::Names inputs, FileIs by, const AbortFlag* abort)
    : inputs_(std::move(inputs)), by_(by), abort_(abort) {
    add("scheme", kScheme);
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (!inputs_[n].empty() && !inputs_[n].has_frame()) stills_[n] = identity(n, 0);
    }
}

std::string Fingerprints::identity(std::size_t input, int frame) const {
    const PictureName& name = inputs_[input];
    if (name.empty()) return {};
    if (!name.has_frame() && !stills_[input].empty()) return stills_[input];
    const std::filesystem::path path = std::filesystem::absolute(name.at(frame)).lexically_normal();
    const std::string chosen = name.text_at(frame).substr(name.at(frame).size());
    Digest digest;
    digest.add("chosen", chosen);
    if (by_ == FileIs::kStatus) {
        digest.add("path", path.string());
        digest.add("status", status_of(path.string()));
    } else {
        digest.add("name", path.filename().string());
        if (!digest.add_file(path.string(), abort_)) digest.add("status", "missing");
    }
    return digest.text();
}

void Fingerprints::add_frame(int frame, bool foreground_alone) {
    for (std::size_t n = 0; n < (foreground_alone ? kFg + 1 : kInputCount); ++n)
        add("looked at", identity(n, frame));
}

std::vector<std::string> Fingerprints::of(int frame) const {
    const std::string shared = shared_.text();
    Digest made;
    made.add("shared", shared);
    made.add("frame", std::to_string(frame));
    for (std::size_t n = 0; n < kInputCount; ++n) made.add(kInputNames[n], identity(n, frame));
    const std::string all = made.text();
    std::vector<std::string> texts;
    for (const std::string& output : outputs_) {
        Digest digest;
        digest.add("made", all);
        digest.add("output", output);
        texts.push_back(digest.text());
    }
    return texts;
}

}  // namespace veloxa
