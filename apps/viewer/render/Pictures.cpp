#include "render/Pictures.h"

#include <algorithm>
#include <array>

#include "shot/frames/FrameLoader.h"

namespace veloxa::viewer {

namespace {

constexpr std::array kNamed{kResult, kSubject, kMatte, kStatus, kPlate, kCleanPlate, kBackground};
constexpr float kWorkingScale = 255.0f;

}  // namespace

std::vector<std::string> picture_names(const Node& node) {
    std::vector<std::string> names(kNamed.begin(), kNamed.end());
    const std::vector<std::string> stages = node.members();
    names.insert(names.end(), stages.begin(), stages.end());
    return names;
}

int input_of(const std::string& picture) {
    if (picture == kPlate) return kFg;
    if (picture == kCleanPlate) return kCp;
    return picture == kBackground ? static_cast<int>(kBg) : -1;
}

bool is_stage(const std::string& picture) {
    return std::ranges::find(kNamed, picture) == kNamed.end();
}

std::string rendered_as(const std::string& picture) {
    return picture == kMatte || picture == kStatus ? kResult : picture;
}

View view_of(const std::string& picture, View view) {
    if (picture == kMatte) view.channels = Channels::kAlpha;
    if (picture == kStatus) view.status = true;
    if (picture != kSubject) view.behind = Behind::kNothing;
    if (is_stage(picture)) view.gain /= kWorkingScale;
    return view;
}

}  // namespace veloxa::viewer
