#include "shot/farm/Leftovers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include "shot/farm/Claim.h"
#include "shot/files/OpenFile.h"
#include "shot/files/TemporaryFile.h"

namespace veloxa {

namespace fs = std::filesystem;

namespace {

using Names = std::set<std::string>;

// Whether a file is one of these outputs, or hidden beside one: .NAME.KIND.
bool is_of(const std::string& file, const Names& outputs) {
    if (outputs.contains(file)) return true;
    const std::size_t dot = file.rfind('.');
    return file.starts_with('.') && dot > 1 && outputs.contains(file.substr(1, dot - 1));
}

bool is_abandoned(const OpenFile& file, const Leftover& by) {
    struct stat status {};
    if (::fstat(file.handle(), &status) != 0) return false;
    const Lock lock = look_at_lock(file.handle());
    if (lock == Lock::kTaken) return false;
    if (by.machine == machine_name() && by.process > 0 && ::kill(by.process, 0) != 0 && errno == ESRCH)
        return true;
    const auto touched = std::chrono::system_clock::from_time_t(status.st_mtim.tv_sec);
    return std::chrono::system_clock::now() - touched > kUntouched;
}

std::optional<Leftover> leftover(const fs::path& path, const Names& outputs) {
    const std::string name = path.filename().string();
    Leftover found{path.string(), Leftover::Kind::kTemporary, {}, 0};
    if (const auto temporary = parse_temporary(name); temporary && is_of(temporary->file, outputs)) {
        found.machine = temporary->machine;
        found.process = temporary->process;
    } else if (is_claim(name) && is_of(name, outputs)) {
        found.kind = Leftover::Kind::kClaim;
    } else {
        return {};
    }
    const OpenFile file(found.path, O_RDONLY);
    if (!file) return {};
    if (found.kind == Leftover::Kind::kClaim) {
        const ClaimHolder holder = read_holder(file.handle());
        found.machine = holder.machine;
        found.process = holder.process;
    }
    if (!is_abandoned(file, found)) return {};
    return found;
}

bool remove(const Leftover& left) {
    const OpenFile file(left.path, O_RDWR);
    if (!file || take_lock(file.handle()) == Lock::kTaken) return false;
    // Somebody may have taken the claim over meanwhile, and let go of it.
    return is_name_of(left.path, file.handle()) && ::unlink(left.path.c_str()) == 0;
}

}  // namespace

std::vector<Leftover> leftovers(const std::vector<std::string>& output_paths) {
    std::map<fs::path, Names> folders;
    for (const std::string& path : output_paths) {
        folders[fs::path(path).parent_path()].insert(fs::path(path).filename().string());
    }
    std::vector<Leftover> found;
    for (const auto& [folder, outputs] : folders) {
        std::error_code error;
        for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
             entry.increment(error)) {
            const fs::path name = entry->path().filename();
            if (!name.string().starts_with('.')) continue;
            if (auto left = leftover(folder / name, outputs)) found.push_back(std::move(*left));
        }
    }
    std::ranges::sort(found, {}, &Leftover::path);
    return found;
}

std::vector<Leftover> leftovers(const std::string& output_path) {
    return leftovers(std::vector{output_path});
}

int remove_leftovers(const std::vector<std::string>& output_paths) {
    return static_cast<int>(std::ranges::count_if(leftovers(output_paths), remove));
}

}  // namespace veloxa
