// A session of many things done at random, while files come, go and break; then all is well again.
#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "viewer_ui/window/WindowRig.h"

namespace test {
namespace {

constexpr int kActions = 500;
constexpr int kFrames = 4;
const plate::Options kSize{.width = 61, .height = 43};

// Breaks files one after another, as a renderer or a full disk would, until it is told to stop.
class Vandal {
  public:
    explicit Vandal(std::function<void(std::mt19937&)> act)
        : thread_([this, act = std::move(act)] {
              std::mt19937 random(5);
              while (!stop_) {
                  act(random);
                  std::this_thread::sleep_for(std::chrono::milliseconds(20));
              }
          }) {}
    ~Vandal() {
        stop_ = true;
        thread_.join();
    }
    Vandal(const Vandal&) = delete;
    Vandal& operator=(const Vandal&) = delete;

  private:
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

class RandomWindow : public WindowRig {
  protected:
    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    template <class... Names>
    const char* one_of(Names... names) {
        return std::array<const char*, sizeof...(names)>{names...}.at(
            static_cast<std::size_t>(any(sizeof...(names))));
    }
    // Anywhere in the area, on the frame or not.
    Point place() {
        const Geometry& seen = area().picture_geometry();
        return seen.to_picture({0.5 + any(seen.width), 0.5 + any(seen.height)});
    }

    void break_file(std::mt19937& random) const {
        const int frame = 1 + static_cast<int>(random() % kFrames);
        const std::string path = file((random() % 2 == 0 ? "fg." : "bg.") + std::to_string(frame) + ".exr");
        std::error_code error;
        switch (random() % 5) {
            case 0:
                std::filesystem::remove(path, error);
                return;
            case 1:
                if (const auto size = std::filesystem::file_size(path, error); !error)
                    std::filesystem::resize_file(path, size * 2 / 3, error);
                return;
            case 2:
                return write_plates({.width = 40, .height = 51}, frame);
            default:
                return write_plates(kSize, frame);
        }
    }

    void turn_knob() {
        const auto& knobs = session().panel().knobs();
        Knob& knob = *knobs[static_cast<std::size_t>(any(static_cast<int>(knobs.size())))];
        const bool button = knob.kind() == Knob::Kind::kButton || knob.kind() == Knob::Kind::kScriptButton;
        if (button && knob.enabled()) return session().press(knob);
        if (any(6) == 0) return session().reset(knob);
        session().begin_edit("drag");
        for (int n = any(4); n >= 0; --n) session().set(knob, any(1000) / 11.0, any(4));
        session().end_edit();
    }
    void use_pointer() {
        std::vector<QAction*> tools;
        for (const auto& knob : session().panel().knobs()) {
            if (knob->kind() == Knob::Kind::kToolButton)
                tools.push_back(child<QAction>(knob->name().c_str()));
        }
        if (any(2) == 0) {
            tools[static_cast<std::size_t>(any(static_cast<int>(tools.size())))]->trigger();
        } else {
            command(one_of("mode_look", "mode_box", "mode_garbage", "mode_holdout"));
        }
        area().set_brush_size(1 + any(9));
        std::vector<Point> path;
        for (int n = 1 + any(3); n > 0; --n) path.push_back(place());
        switch (any(4)) {
            case 0:  // given up
                press(path.front());
                move(path.back());
                area().setFocus();
                key(Qt::Key_Escape);
                return release(path.back());
            case 1:  // points of a polygon
                for (int n = 0; n < 4; ++n) click(place());
                return key(Qt::Key_Return);
            case 2:
                press(path.front());
                command("undo");
                move(path.back());
                return release(path.back());
            default:
                return paint(path);
        }
    }
    void use_command() {
        command(one_of("undo", "undo", "redo", "fit", "one_to_one", "zoom_in", "zoom_out", "channel_alpha",
                       "channel_red", "channel_colour", "overlay", "false_colours", "counts", "behind_black",
                       "behind_picture", "layout_single", "layout_wipe", "layout_side", "keep_a",
                       "layout_difference", "picture_next", "play", "feather_more", "matte_outside", "reload",
                       "next", "previous", "last", "close_others", "give_up", "reset_all", "picture_previous",
                       "cancel_jobs", "brush_larger", "behind_nothing", "channel_luminance"));
    }
    void act() {
        switch (any(8)) {
            case 0:
                return session().go_to(1 + any(kFrames));
            case 1:
                return turn_knob();
            case 2:
            case 3:
                return use_pointer();
            case 4:
                window_->resize(500 + any(400), 400 + any(300));
                return;
            case 5: {
                Sight sight = session().sight(1);
                sight.against = static_cast<Against>(any(kAgainst));
                sight.picture = one_of("matte", "subject");
                return session().set_sight(1, sight);
            }
            case 6:
                if (any(3) == 0) window_->jobs().find_worst(session().state(), 2, {});
                return;
            default:
                return use_command();
        }
    }
    void expect_undo_and_redo_give_the_same_scripts(const std::string& first) {
        const auto script = [&] { return session().script(file("s")); };
        for (int n = 0; n < 300; ++n) turn_knob();
        std::vector<std::string> back{script()};
        while (session().undo()) back.push_back(script());
        EXPECT_EQ(back.back(), first);
        EXPECT_GT(back.size(), 40U);
        std::vector<std::string> forth{script()};
        while (session().redo()) forth.push_back(script());
        EXPECT_TRUE(std::ranges::equal(forth, std::vector(back.rbegin(), back.rend())));
        // An edit takes the place of what was undone.
        ASSERT_TRUE(session().undo());
        const std::string before = script();
        session().set(session().panel().get("brights"), 77.125);
        EXPECT_FALSE(session().redo());
        EXPECT_TRUE(session().undo());
        EXPECT_EQ(script(), before);
    }

    // --gtest_random_seed tries another session.
    std::mt19937 random_{static_cast<unsigned>(2024 + GTEST_FLAG_GET(random_seed))};
};

TEST_F(RandomWindow, SettlesOnWhatTheCommandLineKeys) {
    for (int n = 1; n <= kFrames; ++n) write_plates(kSize, n);
    make_window();
    session().open(shot(kFrames));
    ASSERT_TRUE(settled()) << shown_.error;
    const std::string first = session().script(file("s"));
    {
        const Vandal vandal([this](std::mt19937& random) { break_file(random); });
        for (int n = 0; n < kActions; ++n) {
            act();
            QTest::qWait(any(3) == 0 ? any(30) : 0);  // what it began goes on for a while, or not
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    for (int n = 1; n <= kFrames; ++n) write_plates(kSize, n);
    window_->time_line().set_playing(false);
    command("cancel_jobs");
    command("reload");
    ASSERT_TRUE(until([&] { return !window_->jobs().running() && !session().working(); }));
    expect_undo_and_redo_give_the_same_scripts(first);
    command("layout_single");
    command("picture result");
    for (int i = 0; i < 3; ++i) session().set(panel_knob("screen_color"), i == 1 ? 0.6 : 0.1, i);
    for (int n = 1; n <= kFrames; ++n) {
        window_->time_line().go_to(n);
        ASSERT_TRUE(settled()) << n;
        expect_shown_as_keyed();
    }
    EXPECT_TRUE(area().message().isEmpty());
}

}  // namespace
}  // namespace test
