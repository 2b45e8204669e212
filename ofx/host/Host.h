// The host that loaded this plug-in: its suites, and what it can be told.
//
// Written by set_host() and load() only, which the host calls before anything else; read from any thread.
#pragma once

#include <stdexcept>
#include <string>

#include "abi/OfxImageEffect.h"
#include "abi/OfxInteract.h"
#include "abi/OfxMessage.h"
#include "abi/OfxMultiThread.h"
#include "abi/OfxParam.h"
#include "abi/OfxProperty.h"

namespace veloxa::ofx {

// Ends an action with a status for the host; a text, if there is one, is shown to the user.
class Failure : public std::runtime_error {
  public:
    explicit Failure(OfxStatus status, const std::string& text = {})
        : std::runtime_error(text), status_(status) {}
    OfxStatus status() const { return status_; }

  private:
    OfxStatus status_;
};

// There is no image to look at.
class NoPicture : public Failure {
  public:
    using Failure::Failure;
};

// Throws Failure with the status unless it is OK.
inline void check(OfxStatus status, const char* text = "") {
    if (status != kOfxStatOK) throw Failure(status, text);
}

struct Suites {
    // Without these nothing works.
    const OfxPropertySuiteV1* property = nullptr;
    const OfxImageEffectSuiteV1* effect = nullptr;
    const OfxParameterSuiteV1* parameter = nullptr;
    // Null where the host lacks them.
    const OfxMultiThreadSuiteV1* threads = nullptr;
    const OfxMessageSuiteV1* message = nullptr;
    const OfxMessageSuiteV2* lasting_message = nullptr;
    const OfxInteractSuiteV1* interact = nullptr;
    const OfxDrawSuiteV1* draw = nullptr;
};

// Keeps the pointer and calls nothing of the host.
void set_host(const OfxHost* host);
// Fetches the suites; further calls find them fetched. Throws Failure when one of the first three is missing.
void load();
// The suites of the last load(). Throws Failure when there was none that succeeded.
const Suites& suites();
// The host's own properties; valid after load().
OfxPropertySetHandle host_properties();
// Whether its users can draw in its viewers. After load().
bool host_has_overlays();

// Tells the user, where the host can. A null effect is allowed. Any thread.
void tell(OfxImageEffectHandle effect, const char* type, const char* text) noexcept;
// Asks the user; false where the answer is no, or the host cannot ask.
bool ask(OfxImageEffectHandle effect, const char* text) noexcept;
// Errors and warnings of a render stay on the node until they are cleared. Where the host cannot do that the
// user is told, but not `again`: every tile of a frame may fail.
void show(OfxImageEffectHandle instance, const char* type, const char* text, bool again) noexcept;
void clear_shown(OfxImageEffectHandle instance) noexcept;

}  // namespace veloxa::ofx
