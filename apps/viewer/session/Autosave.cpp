#include "session/Autosave.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/node/Node.h"
#include "shot/setup/ShotModel.h"

namespace veloxa::viewer {

namespace fs = std::filesystem;

namespace {

constexpr const char* kText = ".veloxa";
constexpr const char* kLock = ".lock";
constexpr std::string_view kDocument = "# document ";
constexpr auto kSoon = std::chrono::seconds(1);

// Takes the lock of a session; -1 where another process has it, or there is no such file.
int lock_of(const fs::path& file, int flags) {
    const int handle = ::open(file.c_str(), flags | O_CLOEXEC, 0600);
    if (handle < 0) return -1;
    if (::flock(handle, LOCK_EX | LOCK_NB) == 0) return handle;
    ::close(handle);
    return -1;
}

std::string document_of(const std::string& text) {
    if (!text.starts_with(kDocument)) return {};
    return text.substr(kDocument.size(), text.find('\n') - kDocument.size());
}

}  // namespace

Autosave::Autosave(std::string folder) : folder_(std::move(folder)) {
    std::error_code error;
    fs::create_directories(folder_, error);
    for (int n = 0; lock_ < 0 && n < 1000; ++n) {
        const fs::path name = fs::path(folder_) / (std::to_string(::getpid()) + "-" + std::to_string(n));
        if (fs::exists(name.string() + kText, error)) continue;
        lock_ = lock_of(name.string() + kLock, O_RDWR | O_CREAT);
        if (lock_ < 0 && errno != EWOULDBLOCK) error_ = folder_ + ": " + std::strerror(errno);
        if (!error_.empty()) return;
        file_ = name.string();
    }
    thread_ = std::thread([this] { run(); });
}

Autosave::~Autosave() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    wake_.notify_all();
    thread_.join();
    std::error_code error;
    fs::remove(file_ + kLock, error);
    ::close(lock_);
}

void Autosave::keep(std::function<RescueText()> text, std::string document) {
    {
        const std::lock_guard lock(mutex_);
        latest_ = Kept{std::move(text), std::move(document)};
        changed_ = true;
    }
    wake_.notify_all();
}

void Autosave::drop() {
    {
        const std::lock_guard lock(mutex_);
        latest_.reset();
        changed_ = true;
        at_once_ = true;
    }
    wake_.notify_all();
}

void Autosave::flush() {
    std::unique_lock lock(mutex_);
    if (!thread_.joinable()) return;
    at_once_ = true;
    wake_.notify_all();
    wake_.wait(lock, [this] { return !changed_ && !writing_; });
    at_once_ = false;
}

std::string Autosave::error() const {
    const std::lock_guard lock(mutex_);
    return error_;
}

void Autosave::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return ending_ || changed_; });
        if (!changed_) return;
        wake_.wait_for(lock, kSoon, [this] { return ending_ || at_once_; });
        const std::optional<Kept> kept = latest_;
        changed_ = false;
        writing_ = true;
        lock.unlock();
        write(kept);
        lock.lock();
        writing_ = false;
        wake_.notify_all();
    }
}

void Autosave::write(const std::optional<Kept>& kept) {
    std::string failure;
    try {
        std::error_code error;
        const std::string script = file_ + kText;
        const RescueText text = kept ? kept->text() : RescueText{};
        if (text.shot.empty()) {
            fs::remove(shot_beside(script), error);
        } else {
            write_text(shot_beside(script), text.shot, true);
        }
        if (kept) {
            std::string document = kept->document;
            std::ranges::replace(document, '\n', ' ');
            write_text(script, std::string(kDocument) + document + '\n' + text.script, true);
        } else {
            fs::remove(script, error);
        }
    } catch (const std::exception& error) {
        failure = error.what();
    }
    const std::lock_guard lock(mutex_);
    error_ = std::move(failure);
}

std::vector<Rescued> Autosave::left(const std::string& folder) {
    std::vector<std::pair<fs::file_time_type, Rescued>> found;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() != kText) continue;
        const fs::path lock = fs::path(entry.path()).replace_extension(kLock);
        const int handle = lock_of(lock, O_RDWR);
        if (handle < 0 && fs::exists(lock, error)) continue;  // its process lives
        if (handle >= 0) ::close(handle);
        try {
            const std::string file = entry.path().string();
            found.push_back({entry.last_write_time(error), {file, document_of(read_text(file))}});
        } catch (const Error&) {
            continue;  // went meanwhile
        }
    }
    std::ranges::sort(found, std::greater{}, [](const auto& f) { return f.first; });
    std::vector<Rescued> result;
    result.reserve(found.size());
    for (auto& [time, rescued] : found) result.push_back(std::move(rescued));
    return result;
}

void Autosave::remove(const Rescued& rescued) {
    std::error_code error;
    fs::remove(rescued.file, error);
    fs::remove(shot_beside(rescued.file), error);
    fs::remove(fs::path(rescued.file).replace_extension(kLock), error);
}

}  // namespace veloxa::viewer
