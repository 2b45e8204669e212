// Movies come as streams of frames; what to say to who names one as a file.
#pragma once

#include <string>

#include "shot/Errors.h"

namespace veloxa {

// A word for a shell that stands for the name.
std::string quoted_for_shell(std::string name);

// The command that makes a stream of a movie's frames, its name quoted for a shell.
std::string frames_command(const std::string& movie, bool alpha = false);

// For a file that is a movie, by its content: that it is one, and the commands that give its frames to
// `veloxa key` as the input of this name, such as "fg", or make files of them. Empty for any other file,
// stills that move a little among them.
std::string movie_to_read(const std::string& path, const std::string& input);

// What reading a movie as an image throws.
class MovieError : public Error {
  public:
    MovieError(const std::string& path, const std::string& what) : Error(path, what), path_(path) {}
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// For a name that a movie would have, by its extension: how its frames get there. Empty for any other.
std::string movie_to_write(const std::string& path);

}  // namespace veloxa
