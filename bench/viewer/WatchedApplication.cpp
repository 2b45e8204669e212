#include "viewer/WatchedApplication.h"

#include <time.h>

#include <QEvent>
#include <QMetaEnum>
#include <algorithm>

namespace bench {

namespace {

constexpr std::size_t kSlowest = 8;
constexpr int kBeat = 5;  // milliseconds

double processor_ms(clockid_t whose) {
    timespec time{};
    ::clock_gettime(whose, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

}  // namespace

Stamp Stamp::now() {
    return {Clock::now(), processor_ms(CLOCK_PROCESS_CPUTIME_ID)};
}

void EventTimes::add(double ms) {
    const auto limit = std::ranges::lower_bound(kLimits, ms);
    ++counts[static_cast<std::size_t>(limit - kLimits.begin())];
}

WatchedApplication::WatchedApplication(int& argc, char** argv) : QApplication(argc, argv) {
    beat_.setTimerType(Qt::PreciseTimer);
    connect(&beat_, &QTimer::timeout, this, [this] {
        const auto now = Clock::now();
        const double processor = processor_ms(CLOCK_THREAD_CPUTIME_ID);
        const Delay gap{milliseconds(now - last_beat_), processor - beat_processor_};
        if (watching_ && gap.clock > longest_gap_.clock) longest_gap_ = gap;
        last_beat_ = now;
        beat_processor_ = processor;
    });
    beat_.start(kBeat);
}

bool WatchedApplication::notify(QObject* receiver, QEvent* event) {
    if (receiver == &beat_ || depth_ > 0) {
        const bool result = QApplication::notify(receiver, event);
        painted_ = painted_ || (receiver == area_ && event->type() == QEvent::Paint);
        return result;
    }
    // The receiver may be gone afterwards.
    const char* const name = QMetaEnum::fromType<QEvent::Type>().valueToKey(event->type());
    const std::string what =
        std::string(name != nullptr ? name : "event") + " of " + receiver->metaObject()->className();
    const double processor = processor_ms(CLOCK_THREAD_CPUTIME_ID);
    const auto began = Clock::now();
    ++depth_;
    const bool result = QApplication::notify(receiver, event);
    --depth_;
    if (watching_)
        note(what, milliseconds(Clock::now() - began), processor_ms(CLOCK_THREAD_CPUTIME_ID) - processor);
    if (std::exchange(painted_, false) && after_paint_) after_paint_();
    return result;
}

void WatchedApplication::after_paint(QObject* receiver, std::function<void()> call) {
    area_ = receiver;
    after_paint_ = std::move(call);
}

void WatchedApplication::note(const std::string& what, double ms, double processor_ms) {
    wall_.add(ms);
    processor_.add(processor_ms);
    const auto place = std::ranges::find_if(slowest_, [&](const Slow& s) { return s.ms < ms; });
    slowest_.insert(place, {ms, processor_ms, what});
    if (slowest_.size() > kSlowest) slowest_.pop_back();
}

bool WatchedApplication::until(const std::function<bool()>& done, double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (Clock::now() > end) return false;
        processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void WatchedApplication::start_watching() {
    watching_ = true;
    last_beat_ = Clock::now();
    beat_processor_ = processor_ms(CLOCK_THREAD_CPUTIME_ID);
    wall_ = processor_ = {};
    longest_gap_ = {};
    slowest_.clear();
}

}  // namespace bench
