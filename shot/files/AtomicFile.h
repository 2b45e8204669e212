// A file that appears under its name only when it is complete.
//
// It is written under a hidden temporary name in the same folder, with the same extension; see
// TemporaryFile.h. commit renames it; a file that is not committed is removed by the destructor.
#pragma once

#include <string>
#include <string_view>

#include "shot/files/TemporaryFile.h"

namespace veloxa {

class AtomicFile {
  public:
    // Throws Error when the folder is missing or something other than a file has the name, or, unless
    // `overwrite`, when the file exists; TryAgain, here and in commit, where what is in the way may pass.
    AtomicFile(std::string path, bool overwrite);

    const std::string& path() const { return path_; }
    const std::string& temporary() const { return temporary_.name(); }
    // Of the temporary file, open for reading and writing.
    int handle() const { return temporary_.handle(); }

    // Gives the file its name. Never replaces one that came into being meanwhile unless `overwrite`.
    void commit();

    // The checks of the constructor alone.
    static void check(const std::string& path, bool overwrite);

  private:
    std::string path_;
    bool overwrite_;
    TemporaryFile temporary_;
};

// Writes a whole file of text. Throws Error as above, and when a byte could not be written.
void write_text(const std::string& path, std::string_view text, bool overwrite);

}  // namespace veloxa
