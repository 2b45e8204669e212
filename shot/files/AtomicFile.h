// A file that appears under its name only when it is complete.
//
// It is written under a hidden temporary name in the same folder, with the same extension. commit renames
// it; a file that is not committed is removed by the destructor.
#pragma once

#include <string>
#include <string_view>

namespace veloxa {

class AtomicFile {
  public:
    // Throws Error when the folder is missing or something other than a file has the name, or, unless
    // `overwrite`, when the file exists.
    AtomicFile(std::string path, bool overwrite);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    const std::string& path() const { return path_; }
    const std::string& temporary() const { return temporary_; }

    // Gives the file its name. Never replaces one that came into being meanwhile unless `overwrite`.
    void commit();

    // The checks of the constructor alone.
    static void check(const std::string& path, bool overwrite);

  private:
    std::string path_;
    std::string temporary_;
    bool overwrite_;
    bool committed_ = false;
};

// Writes a whole file of text. Throws Error as above, and when a byte could not be written.
void write_text(const std::string& path, std::string_view text, bool overwrite);

}  // namespace veloxa
