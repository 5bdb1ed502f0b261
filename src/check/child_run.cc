#include "check/child_run.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "check/descriptors.h"
#include "driver/process.h"

namespace runner {
namespace {

[[noreturn]] void giveUp(const char* what) {
  std::perror(what);
  std::exit(2);  // NOLINT(concurrency-mt-unsafe): there is one thread
}

// becomeRun is the child, prepared as the command `runner` is.
[[noreturn]] void becomeRun(const std::function<int()>& run, int console, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent || dup2(console, STDOUT_FILENO) < 0) _exit(2);
  if (!prepareProcess()) _exit(2);
  const int status = run();
  std::fflush(stdout);
  _exit(status);
}

std::string readFromStart(int number) {
  std::string text;
  std::array<char, 4096> block{};
  ssize_t count = 0;
  while ((count = pread(number, block.data(), block.size(), static_cast<off_t>(text.size()))) > 0) {
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

ChildRun runInChild(const std::function<int()>& run) {
  const Descriptor console(memfd_create("console", MFD_CLOEXEC));
  if (!console.isOpen()) giveUp("runner-check: memory for the console");
  // What is still buffered would be written by the child as well.
  std::fflush(nullptr);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) giveUp("runner-check: fork");
  if (child == 0) becomeRun(run, console.number(), parent);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) giveUp("runner-check: waitpid");
  }
  ChildRun result;
  result.console = readFromStart(console.number());
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

}  // namespace runner
