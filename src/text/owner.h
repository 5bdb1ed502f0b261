#ifndef RUNNER_TEXT_OWNER_H_
#define RUNNER_TEXT_OWNER_H_

#include <memory>

namespace runner {

// Releaser calls RELEASE, a function of a C library, on the object that its owner lets go of.
template <auto Release>
struct Releaser {
  template <typename Object>
  void operator()(Object* object) const noexcept {
    Release(object);
  }
};

// Owner owns one object of a C library, or nothing.
template <typename Object, auto Release>
using Owner = std::unique_ptr<Object, Releaser<Release>>;

}  // namespace runner

#endif  // RUNNER_TEXT_OWNER_H_
