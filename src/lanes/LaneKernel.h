// A kernel that has a form for every width of the processor's vectors; called like a function it runs the
// one in use.
//
//   FooKernel.h   using Foo = void(const FooParams& params, const float* in, float* out, std::size_t n);
//                 LANE_KERNEL(Foo, foo);
//   FooLanes.cpp  namespace LANES { void foo(const FooParams& params, ...) { the loop } }
//
// FooLanes.cpp is compiled once a form, with LANES standing for the form's namespace. It must not emit code
// that forms share under one name, or the linker could give an older processor the newer one's: helpers are
// in the unnamed namespace, in LANES, or always inlined.
#pragma once

#include <array>

#include "lanes/Lanes.h"

template <class Function>
class LaneKernel;

template <class Result, class... Args>
class LaneKernel<Result(Args...)> {
  public:
    using Form = Result (*)(Args...);

    // One form for each of Lanes, in their order.
    constexpr explicit LaneKernel(const std::array<Form, kAllLanes.size()>& forms) : forms_(forms) {}

    Result operator()(Args... args) const { return form(lanes_in_use())(args...); }
    Form form(Lanes lanes) const { return forms_[static_cast<std::size_t>(lanes)]; }

  private:
    std::array<Form, kAllLanes.size()> forms_;
};

// The emulated form is weak: a program that does not link it has null there.
#ifdef LANES
#define LANE_KERNEL(Function, name) \
    namespace LANES {               \
    Function name;                  \
    }                               \
    static_assert(true)
#elif defined(__x86_64__)
#define LANE_KERNEL(Function, name)            \
    namespace scalar {                         \
    Function name;                             \
    }                                          \
    namespace sse2 {                           \
    Function name;                             \
    }                                          \
    namespace avx2 {                           \
    Function name;                             \
    }                                          \
    namespace avx512 {                         \
    Function name;                             \
    }                                          \
    namespace emulated {                       \
    [[gnu::weak]] Function name;               \
    }                                          \
    constinit const LaneKernel<Function> name( \
        {scalar::name, sse2::name, avx2::name, avx512::name, emulated::name})
#else
#define LANE_KERNEL(Function, name) \
    namespace scalar {              \
    Function name;                  \
    }                               \
    namespace emulated {            \
    [[gnu::weak]] Function name;    \
    }                               \
    constinit const LaneKernel<Function> name({scalar::name, nullptr, nullptr, nullptr, emulated::name})
#endif
