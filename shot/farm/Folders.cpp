#include "shot/farm/Folders.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace veloxa {

Folders::Folders(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        const std::string folder = std::filesystem::path(file).parent_path().string();
        Place place;
        if (find(folder.empty() ? "." : folder, place)) places_.emplace(folder.empty() ? "." : folder, place);
    }
}

bool Folders::find(const std::string& folder, Place& place) {
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return false;
    place = {status.st_dev, status.st_ino};
    return true;
}

bool Folders::one_went() const {
    return std::ranges::any_of(places_, [](const auto& noted) {
        Place now;
        return !find(noted.first, now) || now != noted.second;
    });
}

}  // namespace veloxa
