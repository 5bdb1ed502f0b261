#include "support/failing_allocator.h"

#include <cstddef>

namespace {

constexpr int kNever = -1;
int successesLeft = kNever;

}  // namespace

// The linker gives these names to the wrapped function and to the real one.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

void* __real_aligned_alloc(std::size_t alignment, std::size_t size);

void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size) {
  if (successesLeft >= 0 && successesLeft-- == 0) return nullptr;
  return __real_aligned_alloc(alignment, size);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

FailingAllocator::FailingAllocator(int successes) { successesLeft = successes; }
FailingAllocator::~FailingAllocator() { successesLeft = kNever; }
bool FailingAllocator::hasFailed() const { return successesLeft == kNever; }
