#ifndef RUNNER_FUZZ_MEMORY_FILE_H_
#define RUNNER_FUZZ_MEMORY_FILE_H_

#include <string>
#include <string_view>

namespace runner::fuzz {

// MemoryFile is a regular file that stands in memory only, for the life of the process. Everything
// that fails here ends the process: a target can do nothing without its files.
class MemoryFile {
 public:
  MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  // path names the file to this process.
  [[nodiscard]] const char* path() const { return path_.c_str(); }

  [[nodiscard]] int descriptor() const { return descriptor_; }

  // assign replaces the contents.
  void assign(std::string_view content);

  // replaceTail cuts the file to `size` bytes and writes `tail` behind them.
  void replaceTail(std::size_t size, std::string_view tail);

  [[nodiscard]] std::string content() const;

 private:
  int descriptor_;
  std::string path_;
};

// Console catches everything that the process writes to standard output from its construction on.
class Console {
 public:
  Console();

  // take returns what was written since the call before.
  std::string take();

 private:
  MemoryFile file_;
};

}  // namespace runner::fuzz

#endif  // RUNNER_FUZZ_MEMORY_FILE_H_
