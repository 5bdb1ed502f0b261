#include "memory_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace runner::fuzz {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

MemoryFile::MemoryFile()
    : descriptor_(memfd_create("fuzz", 0)), path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  require(descriptor_ >= 0);
}

MemoryFile::~MemoryFile() { close(descriptor_); }

void MemoryFile::assign(std::string_view content) { replaceTail(0, content); }

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the file
void MemoryFile::replaceTail(std::size_t size, std::string_view tail) {
  require(ftruncate(descriptor_, static_cast<off_t>(size)) == 0);
  const ssize_t written = pwrite(descriptor_, tail.data(), tail.size(), static_cast<off_t>(size));
  require(written == static_cast<ssize_t>(tail.size()));
}

std::string MemoryFile::content() const {
  struct stat status {};
  require(fstat(descriptor_, &status) == 0);
  std::string content(static_cast<std::size_t>(status.st_size), '\0');
  require(pread(descriptor_, content.data(), content.size(), 0) == status.st_size);
  return content;
}

Console::Console() {
  // Appending, so that what is written after the file was emptied stands at its start.
  require(fcntl(file_.descriptor(), F_SETFL, O_APPEND) == 0);
  std::fflush(stdout);
  require(dup2(file_.descriptor(), STDOUT_FILENO) == STDOUT_FILENO);
}

std::string Console::take() {
  std::fflush(stdout);
  std::string text = file_.content();
  file_.assign("");
  return text;
}

}  // namespace runner::fuzz
