#include "driver/buffer.h"

#include <algorithm>
#include <cstring>

namespace runner {
namespace {

constexpr std::size_t kAlignment = 8;

}  // namespace

void* allocateZeroed(std::size_t size) {
  // aligned_alloc wants a multiple of the alignment.
  const std::size_t blocks = std::max<std::size_t>(1, (size + kAlignment - 1) / kAlignment);
  void* const memory = std::aligned_alloc(kAlignment, blocks * kAlignment);
  if (memory != nullptr) std::memset(memory, 0, blocks * kAlignment);
  return memory;
}

bool Buffer::allocate(std::size_t size) {
  // What is held goes first, so that a Buffer never needs room for two areas.
  bytes_.reset();
  bytes_.reset(static_cast<std::uint8_t*>(allocateZeroed(size)));
  size_ = bytes_ ? size : 0;
  return bytes_ != nullptr;
}

}  // namespace runner
