#include "shot/frames/FramePattern.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "shot/Errors.h"
#include "shot/Numbers.h"

namespace veloxa {

namespace {

constexpr int kWidest = 32;

// The length of a printf number field at the start of `text`, 0 when there is none.
std::size_t number_field(std::string_view text, int& width, bool& zeros) {
    if (text.size() < 2 || text[0] != '%') return 0;
    std::size_t i = 1;
    zeros = text[i] == '0';
    width = 0;
    for (; i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])); ++i) {
        width = std::min(width * 10 + (text[i] - '0'), kWidest);
    }
    width = std::max(width, 1);
    return i < text.size() && text[i] == 'd' ? i + 1 : 0;
}

}  // namespace

FramePattern::FramePattern(std::string_view name) : name_(name) {
    Piece piece;
    for (std::size_t i = 0; i < name.size();) {
        std::size_t length = number_field(name.substr(i), piece.width, piece.zeros);
        if (length == 0 && name[i] == '#') {
            length = std::min(name.find_first_not_of('#', i), name.size()) - i;
            piece.width = static_cast<int>(std::min<std::size_t>(length, kWidest));
            piece.zeros = true;
        }
        if (length > 0) {
            pieces_.push_back(std::move(piece));
            piece = {};
            has_frame_ = true;
            i += length;
        } else {
            const std::size_t two = name.substr(i, 2) == "%%" ? 2 : 1;
            piece.text += name[i];
            i += two;
        }
    }
    piece.width = 0;
    pieces_.push_back(std::move(piece));
}

std::string FramePattern::at(int frame) const {
    if (!has_frame_) return name_;
    std::string result;
    for (const Piece& piece : pieces_) {
        result += piece.text;
        if (piece.width == 0) continue;
        std::array<char, kWidest + 1> number{};
        std::snprintf(number.data(), number.size(), piece.zeros ? "%0*d" : "%*d", piece.width, frame);
        result += number.data();
    }
    return result;
}

FrameRange parse_frames(const std::string& text) {
    FrameRange range;
    std::string_view rest = text;
    bool good = take(rest, range.first);
    range.last = range.first;
    if (good && take(rest, '-')) {
        good = take(rest, range.last);
        if (good && take(rest, 'x')) good = take(rest, range.step);
    }
    if (!good || !rest.empty()) {
        throw UsageError("--frames " + text + ": expected A-B or A-BxN, as in 1001-1100 or 1-99x2");
    }
    if (range.last < range.first)
        throw UsageError("--frames " + text + ": the last frame is before the first");
    if (range.step < 1) throw UsageError("--frames " + text + ": the step must be at least 1");
    const std::int64_t span = static_cast<std::int64_t>(range.last) - range.first;
    if (span / range.step >= kMostFrames) throw UsageError("--frames " + text + ": too many frames");
    return range;
}

}  // namespace veloxa
