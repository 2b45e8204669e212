#include "session/Sequence.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <vector>

#include "shot/frames/PictureName.h"

namespace veloxa::viewer {

namespace fs = std::filesystem;

namespace {

struct Numbered {
    std::string head, digits, tail;
};

Numbered split(const std::string& name) {
    const std::size_t end = name.find_last_of("0123456789");
    if (end == std::string::npos) return {name, {}, {}};
    std::size_t begin = end;
    while (begin > 0 && name[begin - 1] >= '0' && name[begin - 1] <= '9') --begin;
    return {name.substr(0, begin), name.substr(begin, end + 1 - begin), name.substr(end + 1)};
}

bool is_one(const Numbered& one, const Numbered& other) {
    const bool padded = one.digits.starts_with('0') || other.digits.starts_with('0');
    return one.head == other.head && one.tail == other.tail && !other.digits.empty() &&
           (!padded || one.digits.size() == other.digits.size());
}

std::vector<int> numbers_beside(const fs::path& file, const Numbered& name) {
    std::vector<int> numbers;
    std::error_code error;
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        const Numbered other = split(entry.path().filename().string());
        if (!is_one(name, other)) continue;
        int number = 0;
        const char* const end = other.digits.data() + other.digits.size();
        if (std::from_chars(other.digits.data(), end, number).ec == std::errc()) numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

}  // namespace

FoundSequence find_sequence(const std::string& file) {
    const fs::path path(file);
    const Numbered name = split(path.filename().string());
    // In an extension, as .jp2, a number counts nothing.
    if (name.digits.empty() || name.tail.find('.') == std::string::npos) return {file, {}};
    const std::vector<int> numbers = numbers_beside(path, name);
    if (numbers.size() < 2) return {file, {}};
    int step = numbers.back() - numbers.front();
    for (std::size_t n = 1; n < numbers.size(); ++n) step = std::min(step, numbers[n] - numbers[n - 1]);
    const bool even = std::ranges::all_of(numbers, [&](int n) { return (n - numbers.front()) % step == 0; });
    const bool padded =
        std::ranges::all_of(numbers, [&](int n) { return std::to_string(n).size() == name.digits.size(); });
    const std::size_t width = padded || name.digits.front() == '0' ? name.digits.size() : 1;
    FoundSequence found;
    found.name = (path.parent_path() / (name.head + std::string(width, '#') + name.tail)).string();
    found.frames = std::to_string(numbers.front()) + "-" + std::to_string(numbers.back());
    if (even && step > 1) found.frames += "x" + std::to_string(step);
    return found;
}

bool is_there(const std::string& name) {
    const PictureName picture(name);
    std::error_code error;
    if (!picture.has_frame()) return fs::exists(picture.name(), error);
    const fs::path file(picture.at(0));
    return !numbers_beside(file, split(file.filename().string())).empty();
}

}  // namespace veloxa::viewer
