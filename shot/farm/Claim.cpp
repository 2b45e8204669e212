#include "shot/farm/Claim.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <string_view>

#include "shot/files/OpenFile.h"
#include "shot/files/SystemFault.h"
#include "shot/files/TemporaryFile.h"

namespace veloxa {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExtension = ".claim";

std::chrono::nanoseconds touched_at(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return {};
    return std::chrono::seconds(status.st_mtim.tv_sec) + std::chrono::nanoseconds(status.st_mtim.tv_nsec);
}

// Whether the holder lives, as far as this machine can tell; `now` is the file system's.
bool is_held(int file, Lock lock, std::chrono::nanoseconds now) {
    if (lock == Lock::kTaken) return true;
    const ClaimHolder holder = read_holder(file);
    if (holder.machine == machine_name()) {
        return lock == Lock::kUnknown && (::kill(holder.process, 0) == 0 || errno != ESRCH);
    }
    return now - touched_at(file) < Claims::kStaleAfter;
}

}  // namespace

struct Claims::Held {
    explicit Held(const std::string& claim) : file(claim), path(claim) {}

    TemporaryFile file;
    std::string path;
    bool taken_over = false;
};

bool is_claim(const std::string& name) {
    return name.starts_with('.') && name.ends_with(kExtension);
}

ClaimHolder read_holder(int file) {
    std::array<char, 256> bytes{};
    const ssize_t count = ::pread(file, bytes.data(), bytes.size(), 0);
    ClaimHolder holder;
    if (count > 0) {
        std::istringstream(std::string(bytes.data(), static_cast<std::size_t>(count))) >> holder.machine >>
            holder.process;
    }
    return holder;
}

Claims::Claims(std::chrono::milliseconds beat)
    : beat_(beat), toucher_([this](const std::stop_token& stop) { touch(stop); }) {}

Claims::Claim Claims::take(const std::string& output) {
    constexpr int kTries = 100;  // claims that go while they are looked at
    const fs::path file(output);
    const fs::path hidden = '.' + file.filename().string() + std::string(kExtension);
    const std::string path = (file.parent_path() / hidden).string();
    const std::string text = machine_name() + ' ' + std::to_string(::getpid()) + '\n';
    for (int n = 0; n < kTries; ++n) {
        const OpenFile there(path, O_RDWR);
        if (!there && errno != ENOENT) throw_fault(path, errno);
        const Lock lock = there ? take_lock(there.handle()) : Lock::kFree;
        if (lock == Lock::kTaken) return {};
        auto held = std::make_unique<Held>(path);
        const int mine = held->file.handle();
        errno = 0;
        if (::write(mine, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw_fault(path, errno);
        if (there && !is_name_of(path, there.handle())) continue;
        if (there && is_held(there.handle(), lock, touched_at(mine))) return {};
        const int fault = held->file.rename(path, static_cast<bool>(there));
        if (fault == EEXIST) continue;
        if (fault != 0) throw_fault(path, fault);
        held->taken_over = static_cast<bool>(there);
        const std::lock_guard hold(mutex_);
        held_.insert(held.get());
        return Claim(held.release(), {this});
    }
    return {};
}

bool Claims::is_taken_over(const Claim& claim) {
    return claim->taken_over;
}

void Claims::let_go(Held* held) {
    {
        const std::lock_guard hold(mutex_);
        held_.erase(held);
    }
    const std::unique_ptr<Held> owned(held);
    // Another machine may have taken it over while this one stood still.
    if (is_name_of(held->path, held->file.handle())) ::unlink(held->path.c_str());
}

void Claims::touch(const std::stop_token& stop) {
    std::unique_lock hold(mutex_);
    while (!woken_.wait_for(hold, stop, beat_, [] { return false; }) && !stop.stop_requested()) {
        for (const Held* held : held_) ::futimens(held->file.handle(), nullptr);
    }
}

}  // namespace veloxa
