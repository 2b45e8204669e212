#include "host/Host.h"

#include "host/Properties.h"

namespace veloxa::ofx {

namespace {

const OfxHost* the_host = nullptr;
Suites the_suites;
bool loaded = false;

template <class Suite>
void fetch(const Suite*& suite, const char* name, int version) {
    suite = static_cast<const Suite*>(the_host->fetchSuite(the_host->host, name, version));
}

OfxStatus message(OfxImageEffectHandle effect, const char* type, const char* text) noexcept {
    if (the_suites.lasting_message != nullptr && the_suites.lasting_message->message != nullptr) {
        return the_suites.lasting_message->message(effect, type, "", "%s", text);
    }
    if (the_suites.message != nullptr && the_suites.message->message != nullptr) {
        return the_suites.message->message(effect, type, "", "%s", text);
    }
    return kOfxStatErrUnsupported;
}

}  // namespace

void set_host(const OfxHost* host) {
    if (host == the_host) return;
    the_host = host;
    loaded = false;
}

void load() {
    if (loaded) return;
    if (the_host == nullptr || the_host->fetchSuite == nullptr) throw Failure(kOfxStatFailed);
    Suites found;
    fetch(found.property, kOfxPropertySuite, 1);
    fetch(found.effect, kOfxImageEffectSuite, 1);
    fetch(found.parameter, kOfxParameterSuite, 1);
    fetch(found.threads, kOfxMultiThreadSuite, 1);
    fetch(found.message, kOfxMessageSuite, 1);
    fetch(found.lasting_message, kOfxMessageSuite, 2);
    fetch(found.interact, kOfxInteractSuite, 1);
    fetch(found.draw, kOfxDrawSuite, 1);
    the_suites = found;
    if (found.property == nullptr || found.effect == nullptr || found.parameter == nullptr) {
        tell(nullptr, kOfxMessageError, "Veloxa needs the property, image effect and parameter suites");
        throw Failure(kOfxStatErrMissingHostFeature);
    }
    loaded = true;
}

const Suites& suites() {
    if (!loaded) throw Failure(kOfxStatErrMissingHostFeature);
    return the_suites;
}

OfxPropertySetHandle host_properties() {
    return the_host->host;
}

bool host_has_overlays() {
    const OfxInteractSuiteV1* const suite = suites().interact;
    return suite != nullptr && suite->interactGetPropertySet != nullptr &&
           Properties(host_properties()).integer(kOfxImageEffectPropSupportsOverlays) != 0;
}

void tell(OfxImageEffectHandle effect, const char* type, const char* text) noexcept {
    message(effect, type, text);
}

bool ask(OfxImageEffectHandle effect, const char* text) noexcept {
    return message(effect, kOfxMessageQuestion, text) == kOfxStatReplyYes;
}

void show(OfxImageEffectHandle instance, const char* type, const char* text, bool again) noexcept {
    const OfxMessageSuiteV2* const suite = the_suites.lasting_message;
    if (suite != nullptr && suite->setPersistentMessage != nullptr) {
        suite->setPersistentMessage(instance, type, "", "%s", text);
    } else if (!again) {
        tell(instance, type, text);
    }
}

void clear_shown(OfxImageEffectHandle instance) noexcept {
    const OfxMessageSuiteV2* const suite = the_suites.lasting_message;
    if (suite != nullptr && suite->clearPersistentMessage != nullptr) suite->clearPersistentMessage(instance);
}

}  // namespace veloxa::ofx
