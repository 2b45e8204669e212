// Keeps what would be lost if the program were killed.
//
// Each session has a file of its own below `folder`, locked as long as its process lives. What a process left
// behind without a lock is what it was killed over.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace veloxa::viewer {

struct Rescued {
    std::string file;      // of the text that is left
    std::string document;  // what it was saved as; empty for a session that never was
};

// A script, and what was measured of the shot, which lies beside it; empty for nothing.
struct RescueText {
    std::string script;
    std::string shot;
};

class Autosave {
  public:
    // Makes the folder where it is missing. Where nothing can be written there, error() says why and nothing
    // is kept.
    explicit Autosave(std::string folder);
    ~Autosave();
    Autosave(const Autosave&) = delete;
    Autosave& operator=(const Autosave&) = delete;

    // Writes soon, on a thread of its own, what `text` gives there: what comes within a second is written
    // once. Any thread.
    void keep(std::function<RescueText()> text, std::string document);
    // There is nothing to lose now.
    void drop();
    // Writes what waits. Blocks.
    void flush();
    std::string error() const;

    // What killed sessions left, the newest first; those of running ones are left out.
    static std::vector<Rescued> left(const std::string& folder);
    static void remove(const Rescued& rescued);

  private:
    struct Kept {
        std::function<RescueText()> text;
        std::string document;
    };

    void run();
    void write(const std::optional<Kept>& kept);

    std::string folder_;
    std::string file_;
    int lock_ = -1;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::optional<Kept> latest_;
    bool changed_ = false;
    bool at_once_ = false;
    bool writing_ = false;
    bool ending_ = false;
    std::string error_;
    std::thread thread_;
};

}  // namespace veloxa::viewer
