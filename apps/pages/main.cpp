// Writes the program's manual pages and completions below a folder: man/ and completions/. Run by the build.
// usage: veloxa-pages FOLDER
#include <filesystem>
#include <string>

#include "Describe.h"
#include "Program.h"
#include "Terminal.h"
#include "Writers.h"
#include "shot/files/AtomicFile.h"

namespace {

void write_pages(const std::filesystem::path& folder) {
    CLI::App app;
    veloxa::Run run;
    veloxa::add_program(app, run);
    const veloxa::Node node;
    const veloxa::CommandLine all = veloxa::describe(app, node);

    std::filesystem::create_directories(folder / "man");
    std::filesystem::create_directories(folder / "completions");
    const auto write = [&](const std::string& name, const std::string& text) {
        veloxa::write_text((folder / name).string(), text, true);
    };
    write("man/veloxa.1", veloxa::manual_page(all, all.program, VELOXA_VERSION));
    for (const veloxa::CommandText& command : all.commands) {
        write("man/veloxa-" + command.name + ".1", veloxa::manual_page(all, command, VELOXA_VERSION));
    }
    write("completions/veloxa", veloxa::bash_completion(all));
    write("completions/_veloxa", veloxa::zsh_completion(all));
    write("completions/veloxa.fish", veloxa::fish_completion(all));
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        veloxa::report("usage: veloxa-pages FOLDER");
        return veloxa::kExitUsage;
    }
    write_pages(argv[1]);
    return veloxa::kExitOk;
} catch (const std::exception& error) {
    veloxa::report(error.what());
    return veloxa::kExitFailure;
}
