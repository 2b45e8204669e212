// Whether the folders that a run works in are still those that it began with.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace veloxa {

// A folder that goes while frames are made was unmounted, or its server is away: what fails then may pass.
// Any thread.
class Folders {
  public:
    // Notes those that these files are to lie in.
    explicit Folders(const std::vector<std::string>& files);

    // Whether a folder that was there is gone, or something else has its name, as an empty mount point has.
    bool one_went() const;

  private:
    struct Place {
        dev_t device = 0;
        ino_t number = 0;
        bool operator==(const Place&) const = default;
    };
    static bool find(const std::string& folder, Place& place);

    std::map<std::string, Place> places_;
};

}  // namespace veloxa
