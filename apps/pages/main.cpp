// Writes the programs' manual pages and completions below a folder: man/ and completions/. Run by the build.
// usage: veloxa-pages FOLDER
#include <filesystem>
#include <string>

#include "Describe.h"
#include "Program.h"
#include "Terminal.h"
#include "ViewOptions.h"
#include "Writers.h"
#include "shot/files/AtomicFile.h"

namespace {

void write_pages(const std::filesystem::path& folder, const veloxa::CommandLine& all) {
    const auto write = [&](const std::string& name, const std::string& text) {
        veloxa::write_text((folder / name).string(), text, true);
    };
    for (const veloxa::CommandText& command : all.lines()) {
        write("man/" + veloxa::page_name(all, command) + ".1",
              veloxa::manual_page(all, command, VELOXA_VERSION));
    }
    write("completions/" + all.name, veloxa::bash_completion(all));
    write("completions/_" + all.name, veloxa::zsh_completion(all));
    write("completions/" + all.name + ".fish", veloxa::fish_completion(all));
}

void write_all(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder / "man");
    std::filesystem::create_directories(folder / "completions");
    const veloxa::Node node;

    CLI::App program;
    veloxa::Run run;
    veloxa::add_program(program, run);
    veloxa::CommandLine all = veloxa::describe(program, node);

    CLI::App viewer;
    veloxa::ViewOptions options;
    veloxa::add_viewer(viewer, options);
    veloxa::CommandLine viewers = veloxa::describe(viewer, node);

    all.related = {viewers.name};
    viewers.related = {all.name, all.name + "-view"};
    write_pages(folder, all);
    write_pages(folder, viewers);
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        veloxa::report("usage: veloxa-pages FOLDER");
        return veloxa::kExitUsage;
    }
    write_all(argv[1]);
    return veloxa::kExitOk;
} catch (const std::exception& error) {
    veloxa::report(error.what());
    return veloxa::kExitFailure;
}
