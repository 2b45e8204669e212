#include "shot/setup/ShotModel.h"

#include <filesystem>

#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kShotKnob = "unmix_shot";

}  // namespace

std::vector<int> spread_over(const FrameRange& frames, int most) {
    const int count = std::min(frames.count(), most);
    std::vector<int> chosen;
    for (int n = 0; n < count; ++n) {
        const auto last = static_cast<std::int64_t>(frames.count()) - 1;
        chosen.push_back(frames.at(count < 2 ? 0 : static_cast<int>(n * last / (count - 1))));
    }
    return chosen;
}

std::string shot_beside(const std::string& script) {
    return std::filesystem::path(script).replace_extension(".shot").string();
}

ShotSource shot_source(const std::string& file, const std::string& frames, const std::string& script,
                       const FrameRange& all) {
    if (!file.empty()) return {file, {}};
    if (!frames.empty()) return {{}, parse_frames(frames)};
    std::error_code missing;
    if (!script.empty() && std::filesystem::exists(shot_beside(script), missing)) {
        return {shot_beside(script), {}};
    }
    if (all.count() > 1) return {{}, all};
    return {};
}

void load_shot(Node& node, const std::string& path) {
    Knob& knob = node.panel().get(kShotKnob);
    const std::string text = read_text(path);
    std::vector<double> none;
    std::string fault = knob.parse_text(text, none);
    if (fault.empty() && text.find_first_not_of(" \t\r\n") == text.npos) fault = "is empty";
    if (!fault.empty()) throw Error(path, fault);
    knob.from_script(text);
}

void save_shot(const Node& node, const std::string& path, bool overwrite) {
    write_text(path, shot_text(node), overwrite);
}

std::string shot_text(const Node& node) {
    return node.panel().get(kShotKnob).text();
}

bool has_shot(const Node& node) {
    return node.panel().get(kShotKnob).differs_from_default();
}

bool keys_by_shot(const Node& node) {
    return node.panel().get("unmix_method").text() == "unmix";
}

}  // namespace veloxa
