// Files of a session: shots, scripts, what is written.

#include <filesystem>
#include <utility>

#include "session/Project.h"
#include "session/Sequence.h"
#include "session/Session.h"
#include "shot/Errors.h"
#include "shot/files/Formats.h"
#include "shot/files/ImageFile.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

// What no writer or reader of pictures knows by its name.
bool is_script(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    if (extension.empty()) return true;
    extension.erase(0, 1);
    return !formats().knows_extension(extension);
}

ShotFiles files_of(const SetupOptions& options) {
    ShotFiles files;
    files.inputs = options.inputs;
    files.frames = options.frames;
    files.fit = options.fit;
    files.colour = options.colour;
    return files;
}

}  // namespace

void Session::put_in_place(const ShotFiles& files) {
    files_ = files;
    ++shot_;
    former_ = request_;
    compared_[static_cast<std::size_t>(Against::kDefault)].reset();
    compared_[static_cast<std::size_t>(Against::kAutomatic)].reset();
    finding_ = {};
    try {
        // Whether the names go with that the reader says, who may look at files.
        range_ = files.frames.empty() ? FrameRange{} : parse_frames(files.frames);
    } catch (const Error& error) {
        tell(error.what());
        range_ = {};
    }
    if (frame_ < range_.first || frame_ > range_.last || (frame_ - range_.first) % range_.step != 0) {
        frame_ = range_.first;
    }
    frames_.open(files);
    if (events.shot) events.shot();
    read_around();
    for (const Sight& sight : sights_) find_settings(sight.against);
}

void Session::start(State state, const std::string& document) {
    give_up();
    state.settings.give(panel());
    settings_ = Settings(panel());
    mattes_ = std::move(state.mattes);
    memory_ = nullptr;
    document_ = document;
    ++opening_;
    compared_ = {};
    put_in_place(state.files);
    history_.start({this->state(), nullptr});
    keep_safe();
    if (events.settings) events.settings();
    look();
}

void Session::open(const SetupOptions& options) {
    State state;
    state.files = files_of(options);
    state.settings = defaults_;
    start(std::move(state), options.settings.script);
    set_up(options, [this, opening = opening_](const Ready& ready) {
        if (opening != opening_) return;
        ready.settings.give(panel());
        settings_ = Settings(panel());
        mattes_ = ready.mattes;
        // What the user turned meanwhile would be lost, so it is a step; else it is where one begins.
        if (history_.undo_name().empty()) {
            history_.start({this->state(), nullptr});
            if (events.settings) events.settings();
        } else {
            commit("set up");
        }
        look();
    });
}

void Session::open_file(const std::string& path) {
    SetupOptions options;
    options.inputs[kFg] = path;
    open_as_named(options);
}

void Session::open_as_named(const SetupOptions& options) {
    const std::string& plate = options.inputs[kFg];
    if (is_script(plate)) return open_project(plate);
    if (!options.frames.empty()) return open(options);
    errands_.add([this, options](const AbortFlag&) {
        SetupOptions found = options;
        try {
            const PictureName name(options.inputs[kFg]);
            const FoundSequence sequence = find_sequence(name.at(0));
            found.frames = sequence.frames;
            if (!name.has_frame() && !name.choice().empty()) {
                found.frames.clear();  // a part of a file is named, and that file alone
            } else if (!name.has_frame() && !sequence.frames.empty()) {
                found.inputs[kFg] = sequence.name;
            }
        } catch (const Error& error) {
            return post([this, line = std::string(error.what())] { tell(line); });
        }
        post([this, found] { open(found); });
    });
}

void Session::open_input(Input input, const std::string& path) {
    const std::string name =
        path.empty() ? std::string("close ") + kInputNames[input] : std::string("open ") + kInputNames[input];
    if (path.empty() || files_.frames.empty()) {
        ShotFiles files = files_;
        files.inputs[input] = path;
        return set_files(files, name);
    }
    errands_.add([this, input, path, name](const AbortFlag&) {
        const FoundSequence found = find_sequence(path);
        post([this, input, found, name] {
            ShotFiles files = files_;
            files.inputs[input] = found.name;
            set_files(files, name);
        });
    });
}

void Session::set_up(const SetupOptions& options, std::function<void(const Ready&)> done) {
    ++setting_up_;
    if (events.busy) events.busy();
    set_ups_.add([this, options, done = std::move(done)](const AbortFlag& abort) {
        auto ready = std::make_shared<Ready>();
        try {
            Caller caller;
            caller.abort = &abort;
            caller.warn =
                caller.tell = [this](const std::string& line) { post([this, line] { tell(line); }); };
            KeySetup setup(options, caller);
            ready->mattes = setup.loader().drawn();
            ready->settings = Settings(setup.node().panel());
            setup.prepare();
            ready->settings = Settings(setup.node().panel());
        } catch (const Interrupted&) {
            ready->whole = false;
        } catch (const std::exception& fault) {
            ready->error = fault.what();
        }
        post([this, ready, done] {
            --setting_up_;
            if (!ready->error.empty()) tell(ready->error);
            if (!ready->settings.empty()) done(*ready);
            if (events.busy) events.busy();
        });
    });
}

void Session::open_project(const std::string& path) {
    rescue({path, path});
}

void Session::load(const std::string& path, std::function<void(State)> then) {
    ++setting_up_;
    if (events.busy) events.busy();
    errands_.add([this, path, then = std::move(then)](const AbortFlag&) {
        auto state = std::make_shared<State>();
        std::string error;
        try {
            Caller caller;
            caller.warn = [this](const std::string& line) { post([this, line] { tell(line); }); };
            Node node;
            *state = load_project(path, node, caller);
        } catch (const std::exception& fault) {
            error = fault.what();
        }
        post([this, state, error, then] {
            --setting_up_;
            if (events.busy) events.busy();
            error.empty() ? then(std::move(*state)) : tell(error);
        });
    });
}

void Session::rescue(const Rescued& rescued) {
    load(rescued.file, [this, rescued](State state) {
        start(std::move(state), rescued.document);
        if (rescued.file == rescued.document) return;
        history_.mark_unsaved();
        keep_safe();
        // Not before it is kept by this session.
        errands_.add([this, rescued](const AbortFlag&) {
            if (autosave_) autosave_->flush();
            Autosave::remove(rescued);
        });
        if (events.settings) events.settings();
    });
}

void Session::find_rescued(std::function<void(const std::vector<Rescued>&)> found) {
    errands_.add([this, folder = place_.rescue_folder, found = std::move(found)](const AbortFlag&) {
        post([found, left = Autosave::left(folder)] { found(left); });
    });
}

void Session::discard(const Rescued& rescued) {
    errands_.add([rescued](const AbortFlag&) { Autosave::remove(rescued); });
}

std::string Session::script(const std::string& path) const {
    return project_text(state(), node_->panel(), path);
}

void Session::save(const std::string& path, std::function<void(const std::string&)> done) {
    const State saved = state();
    errands_.add([this, saved, path, done = std::move(done)](const AbortFlag&) {
        std::string error;
        try {
            Node node;
            saved.settings.give(node.panel());
            save_project(saved, node, path);
        } catch (const std::exception& fault) {
            error = fault.what();
        }
        post([this, saved, path, error, done] {
            if (error.empty()) {
                document_ = path;
                history_.mark_saved(saved);
                keep_safe();
                if (events.settings) events.settings();
            }
            done(error);
        });
    });
}

void Session::load_settings(const std::string& path) {
    load(path, [this, path](const State& state) {
        state.settings.give(panel());
        settle();
        commit("settings of " + std::filesystem::path(path).filename().string());
    });
}

void Session::set_files(const ShotFiles& files, const std::string& name) {
    put_in_place(files);
    commit(name);
    look();
}

void Session::write_matte(DrawnMatte::Kind kind, const std::string& path,
                          std::function<void(const std::string&)> done) {
    const FramePtr frame = current_frame();
    if (!frame || !frame->error.empty())
        return done(path + ": the plate is not read, so its size is not known");
    errands_.add([this, frame, mattes = mattes_, kind, path, done = std::move(done)](const AbortFlag& abort) {
        std::string error;
        try {
            const auto image = draw(mattes, kind, frame->inputs[kFg].image->info.format, nullptr);
            if (!image) throw Error(path, "nothing of the kind is drawn");
            WriteOptions how;
            how.depth = OIIO::TypeDesc::FLOAT;
            how.overwrite = true;
            how.abort = &abort;
            write_image(path, *image, how);
        } catch (const std::exception& fault) {
            error = fault.what();
        }
        post([done, error] { done(error); });
    });
}

}  // namespace veloxa::viewer
