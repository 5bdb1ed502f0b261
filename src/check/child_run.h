#ifndef RUNNER_CHECK_CHILD_RUN_H_
#define RUNNER_CHECK_CHILD_RUN_H_

#include <functional>
#include <string>

namespace runner {

// ChildRun is what a run in a process of its own leaves behind.
struct ChildRun {
  int status = 0;       // its exit status, the low eight bits of what `run` returned
  int signal = 0;       // what stopped it, 0 when it ended by itself
  std::string console;  // what it wrote to standard output
};

// runInChild calls `run` in a child process and waits for its end. Whatever stops the child, a
// crash or a signal from outside, ends this one run, and the lines printed before it are kept. The
// child ends with this process. When no child can be made, the reason goes to standard error and
// the program ends with exit status 2.
ChildRun runInChild(const std::function<int()>& run);

}  // namespace runner

#endif  // RUNNER_CHECK_CHILD_RUN_H_
