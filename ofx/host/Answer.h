// What an entry point answers its host, which nothing may be thrown through.
#pragma once

#include <exception>
#include <new>

#include "host/Host.h"

namespace veloxa::ofx {

// The status that `action` returns or ends with; `tell` gets the words of what it threw, where there are any.
template <class Action, class Tell>
OfxStatus answer(const Action& action, const Tell& tell) noexcept {
    const auto fail = [&](OfxStatus status, const char* text) {
        if (text[0] != '\0') tell(text);
        return status;
    };
    try {
        return action();
    } catch (const Failure& failure) {
        return fail(failure.status(), failure.what());
    } catch (const std::bad_alloc&) {
        return kOfxStatErrMemory;
    } catch (const std::exception& error) {
        return fail(kOfxStatFailed, error.what());
    } catch (...) {
        return fail(kOfxStatFailed, "an unknown error");
    }
}

}  // namespace veloxa::ofx
