// What the library throws.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "ZoImage/Render.h"

namespace veloxa {

// What is wrong, in a line for the user.
class Error : public std::runtime_error {
  public:
    using runtime_error::runtime_error;
    // FILE: what is wrong.
    Error(std::string_view file, std::string_view what)
        : runtime_error(std::string(file) + ": " + std::string(what)) {}
};

// What may be gone at another try, here or on another machine, though nothing about it is changed: a full
// disk, a file server that does not answer.
class TryAgain : public Error {
  public:
    using Error::Error;
};

// What was asked for makes no sense, whatever the files hold.
class UsageError : public Error {
  public:
    using Error::Error;
};

// What was begun is given up, for the flag was raised.
class Interrupted : public Error {
  public:
    Interrupted() : Error("interrupted") {}
};

inline void give_up_if_raised(const Zo::Image::AbortFlag* abort) {
    if (abort && abort->raised()) throw Interrupted();
}

}  // namespace veloxa
