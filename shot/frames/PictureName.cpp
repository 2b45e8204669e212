#include "shot/frames/PictureName.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <system_error>
#include <utility>

#include "shot/Errors.h"

namespace veloxa {

namespace {

constexpr std::string_view kInvert = "invert";

constexpr std::array<std::pair<std::string_view, std::string PictureChoice::*>, 5> kKeys{{
    {"part", &PictureChoice::part},
    {"layer", &PictureChoice::layer},
    {"view", &PictureChoice::view},
    {"channel", &PictureChoice::channel},
    {"space", &PictureChoice::space},
}};

std::string PictureChoice::*value_named(std::string_view key) {
    for (const auto& [name, value] : kKeys) {
        if (name == key) return value;
    }
    return nullptr;
}

bool begins_choice(std::string_view text) {
    const std::string_view first = text.substr(0, text.find(','));
    return first == kInvert ||
           (first.find('=') != first.npos && value_named(first.substr(0, first.find('='))));
}

void take_entry(PictureChoice& choice, std::string_view entry, const std::string& text) {
    if (entry == kInvert) {
        if (choice.invert) throw UsageError(text + ": invert is chosen twice");
        choice.invert = true;
        return;
    }
    const std::size_t equals = std::min(entry.find('='), entry.size());
    std::string PictureChoice::*const value = value_named(entry.substr(0, equals));
    if (!value) {
        throw UsageError(text + ": " + std::string(entry) +
                         " is no choice; there are part, layer, view, channel, space and invert");
    }
    const std::string_view given = entry.substr(std::min(equals + 1, entry.size()));
    if (given.empty()) throw UsageError(text + ": " + std::string(entry) + ": a value is expected behind =");
    if (!(choice.*value).empty()) {
        throw UsageError(text + ": " + std::string(entry.substr(0, equals)) + " is chosen twice");
    }
    choice.*value = given;
}

}  // namespace

PictureName::PictureName(const std::string& text) {
    const std::size_t hash = text.rfind('#');
    std::error_code ignored;
    if (hash == text.npos || !begins_choice(std::string_view(text).substr(hash + 1)) ||
        std::filesystem::exists(text, ignored)) {
        pattern_ = FramePattern(text);
        return;
    }
    pattern_ = FramePattern(text.substr(0, hash));
    choice_text_ = text.substr(hash);
    for (std::string_view rest = std::string_view(text).substr(hash + 1);;) {
        const std::size_t comma = rest.find(',');
        take_entry(choice_, rest.substr(0, comma), text);
        if (comma == rest.npos) return;
        rest.remove_prefix(comma + 1);
    }
}

FrameRange frames_of(const std::string& text, std::span<const PictureName> inputs) {
    const auto moving = std::find_if(inputs.begin(), inputs.end(), std::mem_fn(&PictureName::has_frame));
    if (text.empty()) {
        if (moving == inputs.end()) return {};
        throw UsageError(moving->name() + ": a frame pattern needs --frames A-B");
    }
    const FrameRange frames = parse_frames(text);
    if (moving != inputs.end()) return frames;
    const std::string none = inputs.size() == 1 ? inputs.front().name() + " has no" : "no input has a";
    throw UsageError("--frames: " + none + " frame pattern such as %04d or ####");
}

void refuse_input(const std::string& output, std::span<const PictureName> inputs, int frame) {
    for (const PictureName& input : inputs) {
        std::error_code missing;
        if (!input.empty() && std::filesystem::equivalent(output, input.at(frame), missing)) {
            throw UsageError(output + ": is an input too");
        }
    }
}

}  // namespace veloxa
