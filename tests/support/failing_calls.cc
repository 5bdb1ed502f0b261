#include "support/failing_calls.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

Disturbance* disturbance = nullptr;

namespace {

bool strikes(Call call) {
  return disturbance != nullptr && disturbance->fault.call == call && --disturbance->callsLeft == 0;
}

// fail makes the call on a descriptor that refuses it, so that the stream itself notes the error.
template <typename Move>
void fail(Move real, std::FILE* file, int mode) {
  const int own = dup(fileno(file));
  const int refusing = open("/dev/null", mode);
  dup2(refusing, fileno(file));
  char unit = 0;
  real(&unit, 1, 1, file);
  dup2(own, fileno(file));
  close(own);
  close(refusing);
  errno = disturbance->fault.error;
}

template <typename Move, typename Data>
std::size_t move(Call call, Move real, Data data, std::size_t count, std::FILE* file) {
  const bool struck = strikes(call);
  const std::size_t most = struck ? disturbance->fault.moved : disturbance->most;
  const std::size_t moved = real(data, 1, std::min(count, most), file);
  if (call == Call::WRITE) disturbance->written += moved;
  if (struck && disturbance->fault.error != 0 && moved < count) {
    fail(real, file, call == Call::READ ? O_WRONLY : O_RDONLY);
  }
  return moved;
}

}  // namespace

// The linker gives these names to the wrapped functions and to the real ones.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

void* __real_aligned_alloc(std::size_t alignment, std::size_t size);
std::FILE* __real_fopen(const char* path, const char* mode);
std::size_t __real_fread(void* data, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __real_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file);
int __real_fclose(std::FILE* file);

void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size) {
  return strikes(Call::ALLOCATE) ? nullptr : __real_aligned_alloc(alignment, size);
}

std::FILE* __wrap_fopen(const char* path, const char* mode) {
  return strikes(Call::OPEN) ? nullptr : __real_fopen(path, mode);
}

std::size_t __wrap_fread(void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (disturbance == nullptr) return __real_fread(data, size, count, file);
  return move(Call::READ, __real_fread, data, size * count, file);
}

std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (disturbance == nullptr) return __real_fwrite(data, size, count, file);
  return move(Call::WRITE, __real_fwrite, data, size * count, file);
}

int __wrap_fclose(std::FILE* file) {
  const bool isWritten = (fcntl(fileno(file), F_GETFL) & O_ACCMODE) != O_RDONLY;
  const int result = __real_fclose(file);
  if (disturbance == nullptr || !isWritten) return result;
  disturbance->ends.push_back(disturbance->written);
  if (!strikes(Call::CLOSE)) return result;
  errno = disturbance->fault.error;
  return EOF;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
