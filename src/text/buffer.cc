#include "text/buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace runner {
namespace {

constexpr std::size_t kLargeSize = std::size_t{4} << 20;

// preferHugePages asks the kernel for huge pages behind a large area that is about to be filled:
// page faults would otherwise cost as much as reading a message of many megabytes does. It is a
// hint.
void preferHugePages(void* memory, std::size_t size) {
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::size_t beforePage =
      (pageSize - reinterpret_cast<std::uintptr_t>(memory) % pageSize) % pageSize;
  madvise(static_cast<std::byte*>(memory) + beforePage, size - beforePage, MADV_HUGEPAGE);
}

}  // namespace

void* allocateZeroed(std::size_t size) {
  if (size > SIZE_MAX - kAlignment) return nullptr;
  // aligned_alloc wants a multiple of the alignment.
  const std::size_t blocks = std::max<std::size_t>(1, (size + kAlignment - 1) / kAlignment);
  void* const memory = std::aligned_alloc(kAlignment, blocks * kAlignment);
  if (memory == nullptr) return nullptr;
  if (size >= kLargeSize) preferHugePages(memory, size);
  return std::memset(memory, 0, blocks * kAlignment);
}

bool Buffer::allocate(std::size_t size) {
  bytes_.reset();
  bytes_.reset(static_cast<std::uint8_t*>(allocateZeroed(size)));
  size_ = bytes_ ? size : 0;
  return bytes_ != nullptr;
}

bool Buffer::grow(std::size_t size) { return size <= size_ || allocate(std::max(size, 2 * size_)); }

}  // namespace runner
