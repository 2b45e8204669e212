#include "controls/ControlListing.h"

#include <cstdio>

std::string control_listing(const ControlBlock& controls) {
    std::string text;
    for (int i = 0; i < ControlBlock::kCount; ++i) {
        text += std::to_string(controls.stored(i)) + '\t' + ControlBlock::name(i) + '\n';
    }
    return text;
}

std::optional<int> list_controls(const ControlBlock& controls, const char* path) {
    std::FILE* const file = std::fopen(path, "w");
    if (file == nullptr) return std::nullopt;
    std::fputs(control_listing(controls).c_str(), file);
    return std::fclose(file);
}
