#include "shot/setup/Preview.h"

#include <filesystem>
#include <optional>

#include "ZoImage/Knob.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/files/FileReader.h"
#include "shot/files/PictureParts.h"
#include "shot/setup/KeySetup.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// "plate.%04d.exr, 5 files: plate.0001.exr to plate.0005.exr", or the name alone.
std::string files_text(const FramePattern& name, const FrameRange& frames, int found) {
    if (!name.has_frame()) return name.name();
    const std::string all = std::to_string(frames.count());
    return name.name() + ", " + (found == frames.count() ? all : std::to_string(found) + " of " + all) +
           (frames.count() == 1 ? " file: " : " files: ") + name.at(frames.first) +
           (frames.count() == 1 ? "" : " to " + name.at(frames.at(frames.count() - 1)));
}

// Of the display window, from the headers of what is chosen of the file.
std::string size_of(const std::string& path, const PictureChoice& choice) {
    const FileReader there(path, nullptr);  // says what is wrong with a file that cannot be read
    const std::vector<OIIO::ImageSpec> parts = parts_of(path);
    const int chosen = select_picture(path, parts, choice, false).part;
    const OIIO::ImageSpec& part = parts.at(static_cast<std::size_t>(chosen));
    return size_text(part.full_width, part.full_height);
}

// The sizes of an input's files, frame by frame, once for all of them where they are one file; nothing where
// a file cannot be used.
class Sizes {
  public:
    Sizes(const PictureName& name, const FrameRange& frames, std::vector<std::string>& faults) {
        const int files = name.has_frame() ? frames.count() : 1;
        for (int n = 0; n < files; ++n) {
            try {
                sizes_.emplace_back(size_of(name.at(frames.at(n)), name.choice()));
                ++found_;
            } catch (const Error& error) {
                faults.emplace_back(error.what());
                sizes_.emplace_back();
            }
        }
    }

    int found() const { return found_; }
    bool each_frame() const { return sizes_.size() > 1; }
    const std::optional<std::string>& at(int n) const {
        return sizes_[each_frame() ? static_cast<std::size_t>(n) : 0];
    }
    // Of the first that is there, with a word when there are others.
    std::string text() const {
        std::string first;
        for (const auto& size : sizes_) {
            if (size && first.empty()) first = *size;
            if (size && *size != first) return first + " and others";
        }
        return first;
    }

  private:
    std::vector<std::optional<std::string>> sizes_;
    int found_ = 0;
};

}  // namespace

void Preview::read(std::span<const NamedInput> inputs, Fit fit) {
    std::optional<Sizes> foreground;
    for (const auto& [input, name] : inputs) {
        if (name.empty()) continue;
        const Sizes sizes(name, frames_, faults_);
        const std::string size = sizes.text();
        reads_.push_back(std::string(input) + "  " + files_text(name.pattern(), frames_, sizes.found()) +
                         (size.empty() ? "" : ", " + size));
        if (!foreground) {
            foreground = sizes;
            continue;
        }
        const int pairs = sizes.each_frame() || foreground->each_frame() ? frames_.count() : 1;
        for (int n = 0; fit == Fit::kRefuse && n < pairs; ++n) {
            const auto& own = sizes.at(n);
            const auto& wanted = foreground->at(n);
            if (!own || !wanted || *own == *wanted) continue;
            faults_.push_back(name.at(frames_.at(n)) + ": is " + *own + ", but the foreground is " + *wanted +
                              "; --fit brings it to that size");
            if (!sizes.each_frame()) break;
        }
    }
}

void Preview::read(std::string_view option, const std::string& path) {
    if (path.empty()) return;
    reads_.push_back(std::string(option) + "  " + path);
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) faults_.push_back(path + ": does not exist");
}

void Preview::set(const Node& node, const ScreenOptions& screen, bool chosen) {
    for (const auto& knob : node.panel().knobs()) {
        if (knob->kind() == Knob::Kind::kLink || !knob->takes_value() || !knob->differs_from_default())
            continue;
        sets_.push_back(knob->name() + " " + knob->text(true));
    }
    if (!screen.pick.empty()) {
        sets_.push_back("screen_color, the mean of the box " + screen.pick);
    } else if (!screen.screen.empty() || !chosen) {
        const bool named = !screen.screen.empty() && screen.screen != kScreenChoices.front();
        sets_.push_back("screen_color, as the foreground's " + (named ? screen.screen + " " : "") +
                        "backing is found to be");
    }
}

void Preview::set(const Node& node, const SetupOptions& options) {
    set(node, options.screen, has_screen_color(node.panel(), options.settings.sets));
    if (options.automatic)
        sets_.emplace_back("what --auto finds fit for the foreground; it is not tried here");
    for (const std::string& stroke : options.strokes) sets_.push_back("what the stroke " + stroke + " asks");
}

template <class Check>
bool Preview::attempt(const Check& check) {
    try {
        check();
        return true;
    } catch (const Error& error) {
        faults_.emplace_back(error.what());
        return false;
    }
}

void Preview::make(const FramePattern& output, const WriteOptions& how, std::span<const NamedInput> inputs) {
    makes_.push_back(files_text(output, frames_, frames_.count()));
    for (int n = 0; n < frames_.count(); ++n) {
        const std::string path = output.at(frames_.at(n));
        for (const NamedInput& input : inputs) refuse_input(path, {&input.name, 1}, frames_.at(n));
    }
    const std::size_t before = faults_.size();
    for (int n = 0; n < (output.has_frame() ? frames_.count() : 1); ++n) {
        const std::string path = output.at(frames_.at(n));
        std::error_code ignored;
        // What is wrong where there is no file yet, with the folder, is wrong for every frame.
        if (!attempt([&] { AtomicFile::check(path, how.overwrite); }) &&
            !std::filesystem::exists(path, ignored)) {
            return;
        }
    }
    WriteOptions again = how;
    again.overwrite |= faults_.size() > before;  // that was told
    attempt([&] { check_writable(output.at(frames_.first), again); });
}

void Preview::make(const std::string& output, const WriteOptions& how) {
    makes_.push_back(output);
    attempt([&] { check_writable(output, how); });
}

void Preview::make(const std::string& output, bool overwrite) {
    if (output.empty()) return;
    makes_.push_back(output);
    attempt([&] { AtomicFile::check(output, overwrite); });
}

std::string Preview::text() const {
    std::string all;
    const auto add = [&](const char* title, const std::vector<std::string>& lines) {
        all += std::string(title) + "\n";
        for (const std::string& line : lines) all += "  " + line + "\n";
        if (lines.empty()) all += "  nothing\n";
    };
    add("would read", reads_);
    add("would set", sets_);
    add("would make", makes_);
    return all;
}

}  // namespace veloxa
