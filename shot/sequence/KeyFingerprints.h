// The fingerprints of what a key makes.
#pragma once

#include <memory>
#include <string>

#include "shot/farm/Fingerprint.h"
#include "shot/sequence/KeyPipeline.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

// What the fingerprints are made of besides the set-up and the plan.
struct FingerprintSource {
    ShotSource shot;    // where the node may yet take the shot from
    std::string stage;  // the operator that is written; empty for the node
    FileIs files = FileIs::kStatus;
};

// Before anything is set up, shown or measured: of the set-up as `options` asked for it, and of what was
// turned since. Set-ups that look at frames depend on the files of these: the first foreground that is there,
// frames with strokes, those that the shot is measured on. Null where a stream is read. Throws Error for
// files that are asked for and cannot be read, and Interrupted.
std::shared_ptr<const Fingerprints> fingerprints_of(KeySetup& setup, const SetupOptions& options,
                                                    const KeyPlan& plan, const FingerprintSource& source,
                                                    const Zo::Image::AbortFlag* abort);

}  // namespace veloxa
