// veloxa view: starts the viewer.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "Commands.h"
#include "ViewOptions.h"
#include "shot/Errors.h"

namespace veloxa {

namespace {

constexpr const char* kViewer = "veloxa-viewer";

// The one beside this program goes before one of the system's.
int view(const ViewOptions& options) {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::string beside = (self.parent_path() / kViewer).string();
    const std::string viewer = !error && ::access(beside.c_str(), X_OK) == 0 ? beside : kViewer;
    std::vector<std::string> arguments = view_arguments(options);
    arguments.insert(arguments.begin(), kViewer);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    ::execvp(viewer.c_str(), pointers.data());
    if (errno == ENOENT) {
        throw Error(kViewer, "is not installed; it is a package of its own, and `make viewer` builds it");
    }
    throw Error(viewer, std::strerror(errno));
}

}  // namespace

void add_view_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("view", "Open the interactive viewer.");
    auto options = std::make_shared<ViewOptions>();
    add_view_options(*command, *options);
    command->callback([options, &run] { run = [options] { return view(*options); }; });
}

}  // namespace veloxa
