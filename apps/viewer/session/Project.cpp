#include "session/Project.h"

#include <charconv>
#include <filesystem>
#include <map>

#include "ZoImage/Script.h"
#include "session/Sequence.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/setup/ShotModel.h"

namespace veloxa::viewer {

using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

constexpr const char* kGroup = "Shot";
constexpr const char* kFolder = "folder";
constexpr std::string_view kHidden = "%\"\n\r";

std::string quoted(const std::string& text) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string result = "\"";
    for (const char c : text) {
        if (kHidden.find(c) == std::string_view::npos) {
            result += c;
        } else {
            result += {'%', kDigits[static_cast<unsigned char>(c) / 16], kDigits[c % 16]};
        }
    }
    return result + '"';
}

std::string unquoted(std::string_view text) {
    if (text.size() >= 2 && text.front() == '"') text = text.substr(1, text.size() - 2);
    std::string result;
    while (!text.empty()) {
        unsigned char code = 0;
        const bool hidden =
            text.front() == '%' && text.size() >= 3 &&
            std::from_chars(text.data() + 1, text.data() + 3, code, 16).ptr == text.data() + 3;
        result += hidden ? static_cast<char>(code) : text.front();
        text.remove_prefix(hidden ? 3 : 1);
    }
    return result;
}

// The fields in the order in which they are written.
template <class Use>
void for_each_field(auto& files, const Use& use) {
    for (std::size_t n = 0; n < kInputCount; ++n) use(kInputNames[n], files.inputs[n], true);
    use("frames", files.frames, false);
    use("fit", files.fit, false);
    use("in_space", files.colour.in_space, false);
    use("out_space", files.colour.out_space, false);
}

fs::path folder_of(const std::string& path) {
    std::error_code error;
    const fs::path whole = fs::weakly_canonical(fs::absolute(path, error), error);
    return error ? fs::path(path).parent_path() : whole.parent_path();
}

bool is_file_name(const std::string& name) {
    return !name.empty() && name != "-";
}

std::string relative_name(const std::string& name, const fs::path& folder) {
    if (!is_file_name(name)) return name;
    std::error_code error;
    const fs::path whole = fs::absolute(name, error).lexically_normal();
    const fs::path relative = whole.lexically_relative(folder);
    return relative.empty() ? whole.string() : relative.string();
}

std::string found_name(const std::string& name, const fs::path& folder, const std::string& earlier) {
    if (!is_file_name(name) || fs::path(name).is_absolute()) return name;
    const std::string here = (folder / name).lexically_normal().string();
    const std::string there = (fs::path(earlier) / name).lexically_normal().string();
    return earlier.empty() || is_there(here) || !is_there(there) ? here : there;
}

}  // namespace

std::string project_text(const State& state, const KnobPanel& panel, const std::string& path) {
    const fs::path folder = folder_of(path);
    std::string shot;
    for_each_field(state.files, [&](const char* name, const std::string& value, bool file) {
        if (value.empty()) return;
        shot += std::string("    ") + name + ' ' + quoted(file ? relative_name(value, folder) : value) + '\n';
    });
    std::string text;
    if (!shot.empty()) {
        text =
            std::string(kGroup) + " {\n    " + kFolder + ' ' + quoted(folder.string()) + '\n' + shot + "}\n";
    }
    return text + write_script(panel) + mattes_script(state.mattes);
}

ShotFiles project_files(const std::string& text, const std::string& path) try {
    ShotFiles files;
    std::map<std::string, std::string*, std::less<>> fields;
    std::map<std::string, bool, std::less<>> is_file;
    std::string earlier;
    for_each_field(files, [&](const char* name, std::string& value, bool file) {
        fields[name] = &value;
        is_file[name] = file;
    });
    for (const ScriptGroup& group : read_script(text, path)) {
        if (group.class_name != kGroup) continue;
        for (const ScriptEntry& entry : group.entries) {
            const auto field = fields.find(entry.name);
            if (entry.name == kFolder) {
                earlier = unquoted(entry.text);
            } else if (field == fields.end()) {
                throw ScriptError(path, entry.line, "'" + entry.name + "' is nothing that a shot has");
            } else {
                *field->second = unquoted(entry.text);
            }
        }
    }
    const fs::path folder = folder_of(path);
    for (auto& [name, value] : fields) {
        if (is_file[name]) *value = found_name(*value, folder, earlier);
    }
    return files;
} catch (const ScriptError& error) {
    throw Error(error.what());
}

State load_project(const std::string& path, Node& node, const Caller& caller) {
    const std::string text = read_text(path);
    State state;
    state.files = project_files(text, path);
    state.mattes = read_mattes(text, path);
    node.apply({path, {}}, caller);
    std::error_code error;
    if (fs::exists(shot_beside(path), error)) load_shot(node, shot_beside(path));
    state.settings = Settings(node.panel());
    return state;
}

void save_project(const State& state, const Node& node, const std::string& path) {
    write_text(path, project_text(state, node.panel(), path), true);
    if (has_shot(node)) save_shot(node, shot_beside(path), true);
}

}  // namespace veloxa::viewer
