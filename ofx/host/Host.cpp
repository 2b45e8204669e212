#include "host/Host.h"

namespace veloxa::ofx {

namespace {

const OfxHost* the_host = nullptr;
Suites the_suites;
bool loaded = false;

template <class Suite>
void fetch(const Suite*& suite, const char* name, int version) {
    suite = static_cast<const Suite*>(the_host->fetchSuite(the_host->host, name, version));
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

void tell(OfxImageEffectHandle effect, const char* type, const char* text) noexcept {
    if (the_suites.lasting_message != nullptr && the_suites.lasting_message->message != nullptr) {
        the_suites.lasting_message->message(effect, type, "", "%s", text);
    } else if (the_suites.message != nullptr && the_suites.message->message != nullptr) {
        the_suites.message->message(effect, type, "", "%s", text);
    }
}

void show_error(OfxImageEffectHandle instance, const char* text, bool again) noexcept {
    const OfxMessageSuiteV2* const suite = the_suites.lasting_message;
    if (suite != nullptr && suite->setPersistentMessage != nullptr) {
        suite->setPersistentMessage(instance, kOfxMessageError, "", "%s", text);
    } else if (!again) {
        tell(instance, kOfxMessageError, text);
    }
}

void clear_error(OfxImageEffectHandle instance) noexcept {
    const OfxMessageSuiteV2* const suite = the_suites.lasting_message;
    if (suite != nullptr && suite->clearPersistentMessage != nullptr) suite->clearPersistentMessage(instance);
}

}  // namespace veloxa::ofx
