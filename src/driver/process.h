#ifndef RUNNER_DRIVER_PROCESS_H_
#define RUNNER_DRIVER_PROCESS_H_

namespace runner {

// prepareProcess readies the process for its run. Standard input, output and error that come closed
// are opened on the null device, so that no file of the run gets their number. A write to a pipe
// without a reader, or beyond a file size limit, fails instead of ending the process. Each line of
// standard output leaves the process when it is complete. Returns false when there is no null
// device.
[[nodiscard]] bool prepareProcess();

}  // namespace runner

#endif  // RUNNER_DRIVER_PROCESS_H_
