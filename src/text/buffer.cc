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

void* allocateBytes(std::size_t size) {
  if (size > SIZE_MAX - kAlignment) return nullptr;
  // aligned_alloc wants a multiple of the alignment.
  const std::size_t blocks = std::max<std::size_t>(1, (size + kAlignment - 1) / kAlignment);
  void* const memory = std::aligned_alloc(kAlignment, blocks * kAlignment);
  if (memory != nullptr && size >= kLargeSize) preferHugePages(memory, size);
  return memory;
}

void* allocateZeroed(std::size_t size) {
  void* const memory = allocateBytes(size);
  return memory != nullptr ? std::memset(memory, 0, size) : nullptr;
}

bool Buffer::hold(void* memory, std::size_t size) {
  bytes_.reset(static_cast<std::uint8_t*>(memory));
  size_ = bytes_ ? size : 0;
  return bytes_ != nullptr;
}

bool Buffer::allocate(std::size_t size) {
  bytes_.reset();
  return hold(allocateZeroed(size), size);
}

bool Buffer::allocateUnfilled(std::size_t size) {
  bytes_.reset();
  return hold(allocateBytes(size), size);
}

bool Buffer::grow(std::size_t size) { return size <= size_ || allocate(std::max(size, 2 * size_)); }

}  // namespace runner
