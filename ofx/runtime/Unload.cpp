// Only for a module with a C++ runtime of its own. As it is loaded, that runtime sets memory aside for
// exceptions that are thrown when there is no other left, which it gives back only when told to.
#include <exception>

#ifdef __GLIBCXX__

namespace __gnu_cxx {
void __freeres();
}

namespace {

// The lowest priority that is free for use: after all static objects are gone.
[[gnu::destructor(101)]] void free_runtime() {
    __gnu_cxx::__freeres();
}

}  // namespace

#endif
