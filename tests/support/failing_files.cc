#include "support/failing_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <optional>

namespace {

struct Plan {
  FileFault fault;
  int callsLeft;  // up to the one that goes wrong
  std::size_t most;
  std::size_t written = 0;
  std::vector<std::size_t> ends{};
};

std::optional<Plan> plan;

bool strikes(FileCall call) { return plan->fault.call == call && --plan->callsLeft == 0; }

// fail makes the call on a descriptor that refuses it, so that the stream itself notes the error.
template <typename Call>
void fail(Call call, std::FILE* file, int mode) {
  const int own = dup(fileno(file));
  const int refusing = open("/dev/null", mode);
  dup2(refusing, fileno(file));
  char unit = 0;
  call(&unit, 1, 1, file);
  dup2(own, fileno(file));
  close(own);
  close(refusing);
  errno = plan->fault.error;
}

template <typename Call, typename Data>
std::size_t move(FileCall kind, Call call, Data data, std::size_t count, std::FILE* file) {
  const bool struck = strikes(kind);
  const std::size_t moved =
      call(data, 1, std::min({count, plan->most, struck ? plan->fault.moved : count}), file);
  if (kind == FileCall::WRITE) plan->written += moved;
  if (struck && plan->fault.error != 0 && moved < count) {
    fail(call, file, kind == FileCall::READ ? O_WRONLY : O_RDONLY);
  }
  return moved;
}

}  // namespace

// The linker gives these names to the wrapped functions and to the real ones.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

std::size_t __real_fread(void* data, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __real_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file);
int __real_fclose(std::FILE* file);

std::size_t __wrap_fread(void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (!plan) return __real_fread(data, size, count, file);
  return move(FileCall::READ, __real_fread, data, count, file);
}

std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (!plan) return __real_fwrite(data, size, count, file);
  return move(FileCall::WRITE, __real_fwrite, data, count, file);
}

int __wrap_fclose(std::FILE* file) {
  const int result = __real_fclose(file);
  if (!plan) return result;
  plan->ends.push_back(plan->written);
  if (!strikes(FileCall::CLOSE)) return result;
  errno = plan->fault.error;
  return EOF;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

FailingFiles::FailingFiles(const FileFault& fault, int number, std::size_t most) {
  plan = {.fault = fault, .callsLeft = number, .most = most};
}

FailingFiles::~FailingFiles() { plan.reset(); }

bool FailingFiles::struck() { return plan->callsLeft <= 0; }

std::vector<std::size_t> FailingFiles::ends() { return plan->ends; }
