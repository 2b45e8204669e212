// A session over procedural plates in a folder of its own, and the window's thread that it posts to.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "plates/Set.h"
#include "session/Session.h"
#include "shot/Files.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace test {

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;

inline std::vector<float> samples(const veloxa::Image& image) {
    std::vector<float> all;
    for (const Channel c : kMaskRgba) {
        for (int y = image.info.box.y; y < image.info.box.t; ++y) {
            all.insert(all.end(), image.line(c, y), image.line(c, y) + image.width());
        }
    }
    return all;
}

// What the command line keys of a frame with a script.
inline veloxa::Image keyed(const SetupOptions& options, int frame) {
    KeySetup setup(options, {});
    setup.prepare();
    const std::string& script = options.settings.script;
    if (std::filesystem::exists(shot_beside(script))) load_shot(setup.node(), shot_beside(script));
    setup.inputs().set(setup.loader().load(frame));
    Iop& node = setup.node().image();
    node.validate(true);
    Info info = node.info();
    info.channels = kMaskRgba;
    veloxa::Image image(info);
    Renderer().render(node, info.box, kMaskRgba, [&](int y, const Row& row) {
        for (const Channel c : kMaskRgba) std::copy_n(row[c], row.width(), image.line(c, y));
    });
    return image;
}

// That the settings are those that the command line sets up; what its last stroke came to.
inline ToolReport expect_set_up(const Session& session, const SetupOptions& options) {
    KeySetup setup(options, {});
    setup.prepare();
    EXPECT_TRUE(session.state().settings == Settings(setup.node().panel()));
    return setup.strokes().empty() ? ToolReport() : setup.strokes().back();
}

// How long to wait for what must come; sanitizers on a busy machine take their time.
constexpr std::chrono::minutes kPatience{10};

// Takes calls from any thread and makes them on the test's.
class Desk {
  public:
    void post(std::function<void()> call) {
        {
            const std::lock_guard lock(mutex_);
            calls_.push_back(std::move(call));
        }
        wake_.notify_all();
    }
    // Makes calls until `done` holds; false when it takes too long.
    template <class Done>
    bool until(const Done& done) {
        const auto end = std::chrono::steady_clock::now() + kPatience;
        for (;;) {
            std::unique_lock lock(mutex_);
            while (!calls_.empty()) {
                const auto call = std::move(calls_.front());
                calls_.pop_front();
                lock.unlock();
                call();
                lock.lock();
            }
            lock.unlock();
            if (done()) return true;
            lock.lock();
            if (!wake_.wait_until(lock, end, [this] { return !calls_.empty(); })) return false;
        }
    }

  private:
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> calls_;
};

class SessionRig : public Files {
  protected:
    // Frames 1 to `count` of a plate set; small, for sanitizers.
    void make_plates(int count, int width = 160, int height = 96) const {
        plate::Options options;
        options.width = width;
        options.height = height;
        for (int n = 1; n <= count; ++n) write_plates(options, n);
    }
    void write_plates(const plate::Options& options, int frame) const {
        const plate::Set set = plate::render_set(options, frame, 0, nullptr);
        for (std::size_t i = 0; i < plate::kPictureNames.size(); ++i) {
            const std::string name = plate::kPictureNames[i];
            if (name != "fg" && name != "bg") continue;
            WriteOptions how{.depth = Depth::HALF};
            how.overwrite = true;
            write_image(file(name + "." + std::to_string(frame) + ".exr"), set[i], how);
        }
    }
    SetupOptions shot(int count) const {
        SetupOptions options;
        options.inputs[kFg] = file("fg.#.exr");
        options.inputs[kBg] = file("bg.#.exr");
        options.frames = "1-" + std::to_string(count);
        return options;
    }

    SessionPlace place() {
        SessionPlace place;
        place.post = [this](std::function<void()> call) { desk_.post(std::move(call)); };
        return place;
    }
    void listen(Session& session) {
        session.events.shown = [this](const ViewResult& result) {
            if (!result.picture.image && result.error.empty()) return;
            shown_ = result;
            ++count_;
        };
    }
    // Nothing works, and the latest request is shown whole, or why it cannot be.
    bool at_rest(const Session& session) const {
        return !session.working() && session.current_frame() && (shown_.whole || !shown_.error.empty()) &&
               shown_.number == session.latest_request();
    }
    bool settle(Session& session) {
        return desk_.until([&] { return at_rest(session); });
    }
    void open(Session& session, int frames) {
        listen(session);
        Sight sight = session.sight(0);
        sight.geometry = Geometry{120, 80, 0.75, 1.0, {80.0, 48.0}};
        session.set_sight(0, sight);
        session.open(shot(frames));
        ASSERT_TRUE(settle(session));
    }

    Desk desk_;
    ViewResult shown_;
    int count_ = 0;
};

}  // namespace test
