#include "shot/farm/Chunk.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>

#include "shot/Errors.h"

namespace veloxa {

namespace {

std::optional<int> whole_number(std::string_view text) {
    int value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

int slurm_says(const char* name, std::optional<int> otherwise = std::nullopt) {
    const char* const text = std::getenv(name);
    if (text == nullptr && otherwise) return *otherwise;
    const std::optional<int> value = text == nullptr ? std::nullopt : whole_number(text);
    if (!value)
        throw UsageError("--chunk slurm: " + std::string(name) + " is no number: this is no array's task");
    return *value;
}

Chunk slurm_chunk() {
    const int first = slurm_says("SLURM_ARRAY_TASK_MIN");
    const int step = slurm_says("SLURM_ARRAY_TASK_STEP", 1);
    const int count = slurm_says("SLURM_ARRAY_TASK_COUNT");
    const int id = slurm_says("SLURM_ARRAY_TASK_ID");
    const std::int64_t beyond = static_cast<std::int64_t>(id) - first;
    // An array that is a list with gaps, as of chunks that are submitted again.
    if (step < 1 || beyond < 0 || beyond % step != 0 || beyond / step >= count) {
        throw UsageError("--chunk slurm: task " + std::to_string(id) + " is none of " +
                         std::to_string(count) + " that follow each other from " + std::to_string(first) +
                         "; --chunk \"$SLURM_ARRAY_TASK_ID/N\" says how many chunks there are");
    }
    return {static_cast<int>(beyond / step), count};
}

}  // namespace

Chunk parse_chunk(const std::string& text) {
    if (text == "slurm") return slurm_chunk();
    const std::size_t slash = text.find('/');
    const auto index = whole_number(std::string_view(text).substr(0, slash));
    const auto count =
        slash == std::string::npos ? std::nullopt : whole_number(std::string_view(text).substr(slash + 1));
    if (!index || !count) throw UsageError("--chunk " + text + ": expected I/N, as in 0/24, or slurm");
    if (*count < 1 || *index < 0 || *index >= *count) {
        throw UsageError("--chunk " + text + ": chunks are counted from 0, so that the last of N is N-1");
    }
    return {*index, *count};
}

std::optional<FrameRange> part_of(const FrameRange& frames, const Chunk& chunk) {
    const auto begin = [&](std::int64_t n) { return static_cast<int>(frames.count() * n / chunk.count); };
    const int first = begin(chunk.index);
    const int end = begin(chunk.index + 1);
    if (first == end) return std::nullopt;
    return FrameRange{frames.at(first), frames.at(end - 1), frames.step, false};
}

int chunk_of(const FrameRange& frames, int n, int count) {
    return static_cast<int>(((static_cast<std::int64_t>(n) + 1) * count - 1) / frames.count());
}

}  // namespace veloxa
