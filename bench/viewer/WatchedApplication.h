// An application that measures how long its thread is held up by each event.
#pragma once

#include <QApplication>
#include <QTimer>
#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

// A time, and the processor time of the whole program until then.
struct Stamp {
    Clock::time_point clock;
    double processor = 0.0;  // milliseconds

    static Stamp now();
};

// How long something took, in milliseconds: as a clock sees it, and the processor time, which other programs
// do not lengthen.
struct Delay {
    double clock = 0.0;
    double processor = 0.0;
};

// What events took: those within each limit, and those beyond the last. Milliseconds.
struct EventTimes {
    static constexpr std::array kLimits{1.0, 2.0, 4.0, 8.0, 16.0, 33.0};
    std::array<int, kLimits.size() + 1> counts{};

    void add(double ms);
};

class WatchedApplication final : public QApplication {
  public:
    struct Slow {
        double ms;
        double processor_ms;
        std::string what;
    };

    WatchedApplication(int& argc, char** argv);

    bool notify(QObject* receiver, QEvent* event) override;
    // Called after each paint event of `receiver`, once what it belongs to is over.
    void after_paint(QObject* receiver, std::function<void()> call);
    // Events until `done` holds; false when that takes longer than `seconds`.
    bool until(const std::function<bool()>& done, double seconds = 120.0);

    // From here on; what came before is forgotten.
    void start_watching();
    void stop_watching() { watching_ = false; }
    const EventTimes& wall() const { return wall_; }
    // Of processor time, which other programs do not lengthen.
    const EventTimes& processor() const { return processor_; }
    // The longest time between two turns of a timer of 5 ms since this was asked last, and what the window's
    // thread took of the processor in it.
    Delay take_gap() { return std::exchange(longest_gap_, {}); }
    const std::vector<Slow>& slowest() const { return slowest_; }

  private:
    void note(const std::string& what, double ms, double processor_ms);

    QTimer beat_;
    Clock::time_point last_beat_;
    bool watching_ = false;
    int depth_ = 0;
    bool painted_ = false;
    QObject* area_ = nullptr;
    std::function<void()> after_paint_;
    EventTimes wall_, processor_;
    Delay longest_gap_;
    double beat_processor_ = 0.0;
    std::vector<Slow> slowest_;
};

}  // namespace bench
