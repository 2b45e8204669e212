#include "shot/setup/Preview.h"

#include <filesystem>
#include <optional>

#include "ZoImage/Knob.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/files/FileReader.h"
#include "shot/files/PictureParts.h"
#include "shot/movie/StreamWriter.h"
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

// The header of what is chosen of the file.
Header header_of(const std::string& path, const PictureChoice& choice, bool matte) {
    const FileReader there(path, nullptr);  // says what is wrong with a file that cannot be read
    const std::vector<Header> parts = parts_of(path);
    return parts.at(static_cast<std::size_t>(select_picture(path, parts, choice, matte).part));
}

// The sizes of an input's display windows, frame by frame, once for all of them where they are one file;
// nothing where a file cannot be used.
class Sizes {
  public:
    Sizes(const NamedInput& input, std::size_t number, const FrameRange& frames, const ShotColour& colour,
          std::vector<std::string>& faults) {
        const PictureName& name = input.name;
        const int files = name.has_frame() ? frames.count() : 1;
        for (int n = 0; n < files; ++n) {
            const std::string path = name.at(frames.at(n));
            try {
                const Header header = header_of(path, name.choice(), input.matte);
                sizes_.emplace_back(size_text(header.full_width, header.full_height));
                if (found_++ == 0 && !input.matte) space_ = colour.account(header, number, path);
            } catch (const Error& error) {
                faults.emplace_back(error.what());
                sizes_.emplace_back();
            }
        }
    }

    int found() const { return found_; }
    // What is said of the first one's colour space; empty for a matte.
    const std::string& space() const { return space_; }
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
    std::string space_;
    int found_ = 0;
};

}  // namespace

void Preview::read(std::span<const NamedInput> inputs, Fit fit, const ShotColour& colour) {
    if (!colour.out_space().empty()) sets_.push_back("results, converted to " + colour.out_space());
    std::optional<Sizes> foreground;
    for (std::size_t number = 0; number < inputs.size(); ++number) {
        const auto& [input, name, matte] = inputs[number];
        if (name.empty()) continue;
        if (name.is_stream()) {
            reads_.push_back(std::string(input) + "  a stream of frames on standard input");
            continue;
        }
        const Sizes sizes(inputs[number], number, frames_, colour, faults_);
        std::string line = std::string(input) + "  " + files_text(name.pattern(), frames_, sizes.found());
        for (const std::string& text : {sizes.text(), sizes.space()}) line += text.empty() ? "" : ", " + text;
        reads_.push_back(line);
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
    if (output.is_stream()) {
        makes_.emplace_back("a stream of frames on standard output");
        attempt([&] { check_stream("standard output", how); });
        return;
    }
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
