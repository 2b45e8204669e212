#include "DryRun.h"

#include "Commands.h"
#include "Terminal.h"

namespace veloxa {

void add_dry_run_option(CLI::App& command, bool& dry_run) {
    command.add_flag("--dry-run", dry_run,
                     "Tell what would be read, set and made, and what is in the way, and make nothing");
}

std::vector<NamedInput> inputs_of(const FrameLoader::Names& names) {
    std::vector<NamedInput> inputs;
    for (std::size_t n = 0; n < kInputCount; ++n)
        inputs.push_back({kInputNames[n], names[n], is_matte_input(n)});
    return inputs;
}

Preview preview_of(KeySetup& setup, const SetupOptions& options, const FrameRange& frames) {
    Preview preview(frames);
    preview.read(inputs_of(setup.names()), fit_named(options.fit).value_or(Fit::kRefuse),
                 setup.loader().colour());
    preview.read("script", options.settings.script);
    preview.set(setup.node(), options);
    return preview;
}

int show(const Preview& preview) {
    print(preview.text());
    for (const std::string& fault : preview.faults()) report(fault);
    return preview.faults().empty() ? kExitOk : kExitFailure;
}

}  // namespace veloxa
