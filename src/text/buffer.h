#ifndef RUNNER_TEXT_BUFFER_H_
#define RUNNER_TEXT_BUFFER_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

namespace runner {

// allocateZeroed returns `size` zero bytes from the aligned allocator, aligned to 8 bytes, or null
// when there is no memory. A size of 0 yields a valid pointer too, because GnuTLS does not check
// its data pointers. The caller releases the bytes with std::free.
[[nodiscard]] void* allocateZeroed(std::size_t size);

struct FreeDeleter {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

// Buffer owns a zero-filled byte area whose size is fixed when it is allocated. An unallocated
// Buffer is empty and its data pointer is null.
class Buffer {
 public:
  // allocate replaces the contents by `size` zero bytes. Returns false, with the Buffer empty, when
  // there is no memory.
  [[nodiscard]] bool allocate(std::size_t size);

  [[nodiscard]] std::uint8_t* data() { return bytes_.get(); }
  [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }
  [[nodiscard]] std::size_t size() const { return size_; }

  [[nodiscard]] std::span<std::uint8_t> bytes() { return {bytes_.get(), size_}; }
  [[nodiscard]] std::span<const std::uint8_t> bytes() const { return {bytes_.get(), size_}; }

  // text is the same area seen as characters, for reading lines into it.
  [[nodiscard]] std::span<char> text() { return {reinterpret_cast<char*>(bytes_.get()), size_}; }

 private:
  std::unique_ptr<std::uint8_t[], FreeDeleter> bytes_;
  std::size_t size_ = 0;
};

}  // namespace runner

#endif  // RUNNER_TEXT_BUFFER_H_
