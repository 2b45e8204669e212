// One window's work: a shot, the keyer's settings for it, what is drawn on it, and what is looked at.
//
// Lives on the window's thread and never makes it wait: files, renders and tools work on threads of their own
// and come back by `post`. Knows no widget.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "render/Errands.h"
#include "render/FrameStore.h"
#include "render/ToolWorker.h"
#include "render/ViewWorker.h"
#include "session/Autosave.h"
#include "session/History.h"
#include "session/PanelEdits.h"
#include "session/State.h"
#include "shot/setup/KeySetup.h"

namespace veloxa::viewer {

// Which settings a pane shows.
enum class Against { kNow, kA, kB, kDefault, kAutomatic };
inline constexpr int kAgainst = 5;

struct Sight {
    Against against = Against::kNow;
    std::string picture = "result";
    View view;
    Geometry geometry;
};

enum class Layout { kSingle, kWipe, kSideBySide, kDifference };

// What a session tells; window thread. All may be empty.
struct SessionEvents {
    std::function<void()> settings;  // knobs, mattes, undo or the document's state
    std::function<void()> shot;      // the files or the range of frames
    std::function<void()> frames;    // which frames are here or failed, and the frame that is looked at
    std::function<void()> modes;     // the active tool, and what is picked for
    std::function<void()> busy;      // what works in the background
    std::function<void(ViewResult&)> shown;  // which may take the pixels
    std::function<void(const std::vector<Zo::Image::ToolReport>&, bool preview)> tool;
    std::function<void(const std::string&)> message;  // FILE: what is wrong, or what was found
};

struct SessionPlace {
    // Has the window's thread do something, soon and in order. Any thread calls.
    std::function<void(std::function<void()>)> post;
    std::string rescue_folder;  // empty to keep nothing
    std::size_t frame_budget = std::size_t{2} << 30;
    std::size_t row_budget = std::size_t{1} << 30;
    std::size_t picture_budget = std::size_t{2} << 30;
};

// With budgets that leave this machine's memory room for others.
SessionPlace place_on_this_machine();

class Session final : public PanelEdits {
  public:
    explicit Session(SessionPlace place);
    ~Session() override;
    SessionEvents events;

    // The document.
    // Opens a shot as the command line would key it: what that sets up is set up in the background.
    void open(const SetupOptions& options);
    // The same, but where no frames are named the plate's stands for its sequence, and a script that names
    // its files is opened as such.
    void open_as_named(const SetupOptions& options);
    // Opens a plate with the sequence that it belongs to, or a saved session.
    void open_file(const std::string& path);
    // Puts a file, or as many of its sequence as the plate has frames for, on another input; empty for none.
    void open_input(Input input, const std::string& path);
    void open_project(const std::string& path);
    void rescue(const Rescued& rescued);
    // Looks for what killed sessions left below the place's folder; `found` takes them, the newest first.
    void find_rescued(std::function<void(const std::vector<Rescued>&)> found);
    void discard(const Rescued& rescued);
    // Saves as a script; `done` takes what went wrong, empty for nothing.
    void save(const std::string& path, std::function<void(const std::string&)> done);
    // The settings of a script, as one step; files and mattes stay.
    void load_settings(const std::string& path);
    const std::string& document() const { return document_; }  // a script's path; empty for none yet
    bool modified() const { return history_.changed(); }
    const ShotFiles& files() const { return files_; }
    void set_files(const ShotFiles& files, const std::string& name);
    std::string script(const std::string& path) const;  // as save writes it
    State state() const { return {files_, settings_, mattes_}; }

    // The panel.
    Zo::Image::KnobPanel& panel() override { return node_->panel(); }
    const Node& node() const { return *node_; }
    void begin_edit(const std::string& name) override;
    void end_edit() override;
    void set(Zo::Image::Knob& knob, double value, int i = 0) override;
    void reset(Zo::Image::Knob& knob) override;
    void press(Zo::Image::Knob& button) override;
    void use_tool(Zo::Image::Knob* tool) override;
    Zo::Image::Knob* tool() const override { return tool_; }
    void pick_colour(Zo::Image::Knob* knob) override;
    Zo::Image::Knob* picking() const override { return picking_; }
    void reset_all();

    const History& history() const { return history_; }
    bool undo();
    bool redo();

    // The picture, in pixels of the plate's frame.
    void move_stroke(std::vector<Zo::Image::Box> areas);  // of the active tool; starts one
    void end_stroke(std::vector<Zo::Image::Box> areas);
    void cancel_stroke();
    void pick(const Zo::Image::Box& box);  // for what is picked for: the plate's mean, as it is stored
    bool working() const { return running_.has_value() || setting_up_ > 0; }
    // What works in the background on the settings, tools and set-ups.
    void give_up();
    const DrawnMattes& mattes() const { return mattes_; }
    // While `going_on`, what follows is the same step.
    void set_mattes(DrawnMattes mattes, const std::string& name, bool going_on = false);
    // Writes what is drawn of a kind as an image file.
    void write_matte(DrawnMatte::Kind kind, const std::string& path,
                     std::function<void(const std::string&)> done);

    // Time.
    const FrameRange& range() const { return range_; }
    int frame() const { return frame_; }
    void go_to(int frame);
    std::vector<FramePtr> held_frames() const { return frames_.held(); }
    // Of frames, whether the first pane's picture is there as a whole.
    std::vector<bool> with_result(const std::vector<FramePtr>& frames) const;
    FramePtr current_frame() const { return frames_.find(frame_); }
    // Looks whether the files of the frame in sight changed.
    void recheck() { frames_.recheck(frame_); }

    // Looking.
    const Sight& sight(std::size_t n) const { return sights_[n]; }
    void set_sight(std::size_t n, Sight sight);
    void set_sights(std::array<Sight, 2> sights);
    Layout layout() const { return layout_; }
    void set_layout(Layout layout);
    void set_difference_gain(float gain);
    float difference_gain() const { return difference_gain_; }
    void set_display(DisplayTransform display);
    void set_counts(bool on);
    void save_as(Against slot);  // kA or kB
    bool has(Against slot) const;
    ViewWorker::Stats view_stats() const { return view_.stats(); }
    std::uint64_t latest_request() const { return request_; }

  private:
    struct Stroke {
        FramePtr frame;  // that it was painted on
        std::size_t knob;
        std::vector<Zo::Image::Box> areas;
        double choice = 0.0;
    };

    // What a set-up came to; before it was given up, where it is not whole.
    struct Ready {
        Settings settings;
        DrawnMattes mattes;
        bool whole = true;
        std::string error;
    };

    // Comes back on the window's thread, unless the session is gone.
    void post(std::function<void()> call);
    void tell(const std::string& line);
    void start(State state, const std::string& document);
    // Reads a script beside the window.
    void load(const std::string& path, std::function<void(State)> then);
    void restore(const Moment& moment);
    void put_in_place(const ShotFiles& files);
    void settle();  // after knobs were turned
    void commit(const std::string& name);
    void keep_safe();
    void look();
    PaneRequest request_of(const Sight& sight);
    Settings settings_of(Against against);
    // Has the default or the automatic settings found out, if they are not.
    void find_settings(Against against);
    void read_around();
    void frame_changed(int frame);
    std::size_t number_of(const Zo::Image::Knob& knob) const;
    void give_up_tools();
    void forget_preview();
    ToolJob job_of(const Stroke& stroke, bool preview);
    void work_off();
    void take(const ToolOutcome& outcome);
    // Sets a shot up as the command line does, beside the window, and hands over what its knobs are then.
    void set_up(const SetupOptions& options, std::function<void(const Ready&)> done);

    SessionPlace place_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::unique_ptr<Node> node_;  // the window's: never rendered
    History history_;
    std::string document_;
    ShotFiles files_;
    FrameRange range_;
    int frame_ = 0;
    int direction_ = 1;
    const Settings defaults_;
    Settings settings_;
    DrawnMattes mattes_;
    std::shared_ptr<const Zo::Image::ToolMemory> memory_;

    std::string edit_;  // the name of the step under way
    int editing_ = 0;
    Zo::Image::Knob* tool_ = nullptr;
    Zo::Image::Knob* picking_ = nullptr;
    bool stroking_ = false;
    std::uint64_t stroke_ = 0;  // counts strokes
    std::optional<Settings> preview_;
    std::deque<Stroke> strokes_;            // that wait for the tool
    std::uint64_t jobs_ = 0;                // counts what tools were given
    std::optional<std::uint64_t> running_;  // the job that is waited for
    int setting_up_ = 0;
    std::uint64_t opening_ = 0;  // counts documents
    std::uint64_t shot_ = 0;     // counts shots
    std::uint64_t former_ = 0;   // the last request of the shot before

    std::array<Sight, 2> sights_;
    Layout layout_ = Layout::kSingle;
    float difference_gain_ = 1.0f;
    DisplayTransform display_;
    bool counts_ = false;
    std::uint64_t request_ = 0;
    std::array<std::optional<Settings>, kAgainst> compared_;
    std::array<bool, kAgainst> finding_{};

    std::unique_ptr<Autosave> autosave_;
    mutable FrameStore frames_;  // finding a frame moves it to the front
    ViewWorker view_;
    ToolWorker tools_;
    Errands errands_;  // files
    Errands set_ups_;
};

}  // namespace veloxa::viewer
