#include "AbortMessage.h"

#include <unistd.h>

#include <csignal>
#include <string_view>
#include <tuple>

#include "Terminal.h"
#include "shot/files/Hush.h"

namespace veloxa {

namespace {

// Calls nothing that a signal's handler may not. abort goes on once it returns.
extern "C" void name_file(int) {
    const std::string* const file = Hush::file();
    if (file == nullptr) return;
    for (const std::string_view text : {"veloxa: ", file->c_str(), ": the image library gave up over it\n"}) {
        // Nobody is left to tell when a line cannot be printed.
        std::ignore = ::write(message_file(), text.data(), text.size());
    }
}

}  // namespace

void report_aborts() {
    message_file();
    std::signal(SIGABRT, name_file);
}

}  // namespace veloxa
