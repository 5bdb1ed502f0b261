#ifndef RUNNER_TEXT_BUFFER_H_
#define RUNNER_TEXT_BUFFER_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "text/owner.h"

namespace runner {

// What allocateBytes aligns to, in bytes.
inline constexpr std::size_t kAlignment = 8;

// allocateBytes returns `size` bytes, which hold anything, from the aligned allocator, or null when
// there is no memory. A size of 0 yields a valid pointer too, because GnuTLS does not check its
// data pointers. The caller releases the bytes with std::free.
[[nodiscard]] void* allocateBytes(std::size_t size);

// allocateZeroed does the same and fills the bytes with zeros.
[[nodiscard]] void* allocateZeroed(std::size_t size);

// sizeOf returns a length of the interfaces as the size of a buffer: 0 for a negative one.
constexpr std::size_t sizeOf(int length) {
  return length < 0 ? 0 : static_cast<std::size_t>(length);
}

// Buffer owns a byte area, zero-filled unless it says otherwise, whose size is fixed when it is
// allocated. An unallocated Buffer is empty and its data pointer is null.
class Buffer {
 public:
  // allocate replaces the contents by `size` zero bytes. What is held is released first, so that a
  // Buffer never needs room for two areas. Returns false, with the Buffer empty, when there is no
  // memory.
  [[nodiscard]] bool allocate(std::size_t size);

  // allocateUnfilled is allocate for an area that is written before it is read: its bytes hold
  // anything, and pages that are never written cost nothing.
  [[nodiscard]] bool allocateUnfilled(std::size_t size);

  // grow makes room for at least `size` bytes; when it grows, what is held is lost and the size at
  // least doubles, so that growing step by step costs little. Returns false as allocate does.
  [[nodiscard]] bool grow(std::size_t size);

  [[nodiscard]] std::uint8_t* data() { return bytes_.get(); }
  [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }
  [[nodiscard]] std::size_t size() const { return size_; }

  [[nodiscard]] std::span<std::uint8_t> bytes() { return {bytes_.get(), size_}; }
  [[nodiscard]] std::span<const std::uint8_t> bytes() const { return {bytes_.get(), size_}; }

  // text is the same area seen as characters.
  [[nodiscard]] std::span<char> text() { return {reinterpret_cast<char*>(bytes_.get()), size_}; }

 private:
  bool hold(void* memory, std::size_t size);

  Owner<std::uint8_t, std::free> bytes_;
  std::size_t size_ = 0;
};

}  // namespace runner

#endif  // RUNNER_TEXT_BUFFER_H_
