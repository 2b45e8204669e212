#include "render/FrameStore.h"

#include <sys/stat.h>

#include <algorithm>

#include "render/Priority.h"
#include "shot/Errors.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

FrameLoader::Names names_of(const ShotFiles& files) {
    FrameLoader::Names names;
    for (std::size_t n = 0; n < kInputCount; ++n) {
        names[n] = PictureName(files.inputs[n]);
        if (names[n].is_stream())
            throw UsageError("-: a stream cannot be looked at twice; write its frames first");
    }
    static_cast<void>(frames_of(files.frames, names));
    return names;
}

std::vector<FileMark> marks_of(const ShotFiles& files, int frame) {
    std::vector<FileMark> marks;
    for (const std::string& input : files.inputs) {
        try {
            if (!input.empty()) marks.push_back(FileMark::of(PictureName(input).at(frame)));
        } catch (const Error&) {
            continue;  // no name of a file
        }
    }
    return marks;
}

std::size_t bytes_of(const Image& image) {
    std::vector<const float*> planes;
    for (const Plane& plane : image.planes) {
        if (plane && std::ranges::find(planes, plane.get()) == planes.end()) planes.push_back(plane.get());
    }
    return planes.size() * image.width() * image.height() * sizeof(float);
}

}  // namespace

FileMark FileMark::of(std::string path) {
    FileMark mark{std::move(path)};
    struct stat status {};
    if (::stat(mark.path.c_str(), &status) != 0) return mark;
    mark.size = status.st_size;
    mark.seconds = status.st_mtim.tv_sec;
    mark.nanoseconds = status.st_mtim.tv_nsec;
    return mark;
}

FrameStore::FrameStore(std::size_t budget, Calls calls)
    : budget_(budget), calls_(std::move(calls)), reader_([this] { run(); }) {}

FrameStore::~FrameStore() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        abort_.raise();
    }
    wake_.notify_all();
    reader_.join();
}

void FrameStore::open(const ShotFiles& files) {
    const std::lock_guard lock(mutex_);
    files_ = files;
    ++shot_;
    kept_.clear();
    wanted_.clear();
    checks_.clear();
    abort_.raise();
}

FramePtr FrameStore::find(int frame) {
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find(kept_, frame, [](const FramePtr& f) { return f->number; });
    if (found == kept_.end()) return nullptr;
    kept_.splice(kept_.begin(), kept_, found);
    return kept_.front();
}

void FrameStore::want(std::vector<int> frames) {
    {
        const std::lock_guard lock(mutex_);
        wanted_ = std::move(frames);
        if (busy_ && !is_wanted(reading_)) abort_.raise();
    }
    wake_.notify_all();
}

void FrameStore::recheck(int frame) {
    {
        const std::lock_guard lock(mutex_);
        if (std::ranges::find(checks_, frame) == checks_.end()) checks_.push_back(frame);
    }
    wake_.notify_all();
}

std::vector<FramePtr> FrameStore::held() const {
    std::vector<FramePtr> held;
    {
        const std::lock_guard lock(mutex_);
        held.assign(kept_.begin(), kept_.end());
    }
    std::ranges::sort(held, {}, [](const FramePtr& frame) { return frame->number; });
    return held;
}

bool FrameStore::is_wanted(int frame) const {
    return std::ranges::find(wanted_, frame) != wanted_.end();
}

void FrameStore::run() {
    step_back();
    std::unique_lock lock(mutex_);
    while (next(lock)) {
    }
}

bool FrameStore::next(std::unique_lock<std::mutex>& lock) {
    wake_.wait(lock, [this] { return ending_ || !wanted_.empty() || !checks_.empty(); });
    if (ending_) return false;
    if (!checks_.empty()) {
        const int frame = checks_.front();
        checks_.erase(checks_.begin());
        look_again(frame, lock);
        return true;
    }
    const int frame = wanted_.front();
    const bool here =
        std::ranges::find(kept_, frame, [](const FramePtr& f) { return f->number; }) != kept_.end();
    if (here) {
        wanted_.erase(wanted_.begin());
    } else {
        read(frame, lock);
    }
    return true;
}

void FrameStore::read(int frame, std::unique_lock<std::mutex>& lock) {
    const std::uint64_t shot = shot_;
    const ShotFiles files = files_;
    busy_ = true;
    reading_ = frame;
    abort_.clear();
    lock.unlock();
    // As they are before they are read: what changes meanwhile is read again.
    std::vector<FileMark> marks = marks_of(files, frame);
    FramePtr result;
    try {
        if (!loader_ || loaders_shot_ != shot) {
            loader_.reset();
            stills_.clear();
            FrameLoader::Names names = names_of(files);
            for (const PictureName& name : names) {
                if (!name.empty() && !name.has_frame()) stills_.push_back(FileMark::of(name.at(0)));
            }
            Caller caller;
            caller.abort = &abort_;
            caller.warn = caller.tell = calls_.told;
            auto loader = std::make_unique<FrameLoader>(
                std::move(names), fit_named(files.fit).value_or(Fit::kRefuse), files.colour, caller);
            loader->load_stills();
            loader_ = std::move(loader);
            loaders_shot_ = shot;
        }
        result = std::make_shared<const Frame>(load(frame, marks));
    } catch (const Interrupted&) {
    } catch (const std::exception& error) {
        Frame failed;
        failed.number = frame;
        failed.error = error.what();
        failed.files = std::move(marks);
        result = std::make_shared<const Frame>(std::move(failed));
    }
    lock.lock();
    busy_ = false;
    if (!result || shot != shot_) return;
    std::erase(wanted_, frame);
    keep(std::move(result));
    lock.unlock();
    calls_.changed(frame);
    lock.lock();
}

Frame FrameStore::load(int number, const std::vector<FileMark>& marks) {
    Frame frame;
    frame.number = number;
    frame.files = marks;
    const FrameLoader::Names& names = loader_->names();
    frame.inputs = loader_->load(number);
    for (std::size_t n = 0; n < kInputCount; ++n) {
        if (!frame.inputs[n].image) continue;
        frame.identity.append(static_cast<std::int32_t>(n));
        frame.identity.append(frame.inputs[n].identity);
        if (names[n].has_frame()) frame.bytes += bytes_of(*frame.inputs[n].image);
    }
    return frame;
}

void FrameStore::look_again(int number, std::unique_lock<std::mutex>& lock) {
    const auto of_number = [&] {
        return std::ranges::find(kept_, number, [](const FramePtr& f) { return f->number; });
    };
    const auto found = of_number();
    if (found == kept_.end()) return;
    const FramePtr frame = *found;
    const std::vector<FileMark> stills = stills_;
    lock.unlock();
    const auto as_it_was = [](const FileMark& mark) { return FileMark::of(mark.path) == mark; };
    const bool same = std::ranges::all_of(frame->files, as_it_was);
    const bool still_same = std::ranges::all_of(stills, as_it_was);
    lock.lock();
    if (same && still_same) return;
    if (!still_same) {
        loader_.reset();
        kept_.clear();
    } else if (const auto now = of_number(); now != kept_.end() && *now == frame) {
        kept_.erase(now);
    }
    wanted_.insert(wanted_.begin(), number);
    lock.unlock();
    calls_.changed(number);
    lock.lock();
}

void FrameStore::keep(FramePtr frame) {
    std::erase_if(kept_, [&](const FramePtr& f) { return f->number == frame->number; });
    kept_.push_front(std::move(frame));
    std::size_t bytes = 0;
    for (auto it = kept_.begin(); it != kept_.end(); ++it) {
        bytes += (*it)->bytes;
        if (bytes > budget_ && it != kept_.begin()) {
            kept_.erase(it, kept_.end());
            return;
        }
    }
}

}  // namespace veloxa::viewer
