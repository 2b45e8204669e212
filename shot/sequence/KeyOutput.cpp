#include "shot/sequence/KeyOutput.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "shot/Errors.h"

namespace veloxa {

namespace {

constexpr std::array<std::pair<std::string_view, Picture>, 3> kPictures{
    {{"comp", Picture::kComposite}, {"matte", Picture::kMatte}, {"cut", Picture::kCut}}};

// Whether the text begins with a word and =; a file whose name does is given with its folder.
bool begins_with_word(const std::string& text, std::size_t equals) {
    return equals != text.npos && equals > 0 &&
           std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(equals),
                       [](unsigned char c) { return std::isalpha(c) != 0; });
}

KeyOutput parse_output(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (!begins_with_word(text, equals)) return {Picture::kNode, FramePattern(text)};
    const std::string_view word = std::string_view(text).substr(0, equals);
    const auto named = std::ranges::find(kPictures, word, [](const auto& p) { return p.first; });
    if (named == kPictures.end()) {
        throw UsageError("-o " + text + ": there is no picture " + std::string(word) +
                         "; there are comp, matte and cut (a file of this name is ./" + text + ")");
    }
    if (equals + 1 == text.size()) throw UsageError("-o " + text + ": a file is expected behind =");
    return {named->second, FramePattern(std::string_view(text).substr(equals + 1))};
}

}  // namespace

std::vector<KeyOutput> parse_outputs(const std::vector<std::string>& texts) {
    std::vector<KeyOutput> outputs;
    for (const std::string& text : texts) {
        outputs.push_back(parse_output(text));
        const std::string& file = outputs.back().file.name();
        const auto same = [&](const KeyOutput& o) { return o.file.name() == file; };
        if (std::ranges::count_if(outputs, same) > 1) throw UsageError("-o " + text + ": is given twice");
    }
    return outputs;
}

std::string mode_of(Picture picture, const std::string& own) {
    if (picture == Picture::kComposite) return "composite";
    return picture == Picture::kCut ? "premultiplied" : own;
}

void turn_to(const Node& node, Picture picture) {
    Zo::Image::KnobPanel& panel = node.panel();
    panel.set_from_text(kModeKnob, mode_of(picture, panel.get(kModeKnob).text()));
}

Alpha alpha_of(const std::string& mode) {
    if (mode == "composite") return Alpha::kOpaque;
    return mode == "premultiplied" ? Alpha::kPremultiplied : Alpha::kStraight;
}

}  // namespace veloxa
