#include "shot/files/Hush.h"

#include <OpenImageIO/imageio.h>
#include <fcntl.h>
#include <unistd.h>

#include <mutex>

namespace veloxa {

namespace {

std::mutex mutex;  // guards the two below
int hushed = 0;
int unhushed = -1;  // standard error, meanwhile

thread_local const std::string* worked_on = nullptr;

}  // namespace

Hush::Hush(const std::string& file) : outer_(worked_on) {
    worked_on = &file;
    const std::lock_guard hold(mutex);
    if (hushed++ > 0) return;
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    unhushed = nowhere < 0 ? -1 : ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (unhushed >= 0) ::dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) ::close(nowhere);
}

Hush::~Hush() {
    worked_on = outer_;
    const std::lock_guard hold(mutex);
    if (--hushed > 0 || unhushed < 0) return;
    ::dup2(unhushed, STDERR_FILENO);
    ::close(unhushed);
}

const std::string* Hush::file() {
    return worked_on;
}

void silence_library() {
    OIIO::attribute("debug", 0);
    OIIO::attribute("log_times", 0);
}

}  // namespace veloxa
