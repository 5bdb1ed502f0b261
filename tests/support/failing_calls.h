#ifndef RUNNER_TESTS_SUPPORT_FAILING_CALLS_H_
#define RUNNER_TESTS_SUPPORT_FAILING_CALLS_H_

#include <cstddef>
#include <vector>

// The calls of the C library that allocate memory for values, that open files to read them, that
// read and write, and that close what has been written.
enum class Call { ALLOCATE, OPEN, READ, WRITE, CLOSE };

// Fault is what becomes of a call: it moves no more than `moved` bytes and reports `error`. With 0
// for the error it merely comes up short.
struct Fault {
  Call call;
  int error = 0;
  std::size_t moved = 0;
};

// Disturbance lets one of the calls of its kind go wrong, and any other move at most `most` bytes.
// It is for unbuffered streams, read and written in units of 1 byte. The test program is linked
// with --wrap=aligned_alloc,--wrap=fopen,--wrap=fread,--wrap=fwrite,--wrap=fclose.
struct Disturbance {
  Fault fault;
  int callsLeft;  // up to the one that goes wrong; none are left when it has
  std::size_t most;
  std::size_t written = 0;
  std::vector<std::size_t> ends{};  // how much had been written at each close
};

// The disturbance under which this process makes its calls, or none.
extern Disturbance* disturbance;

#endif  // RUNNER_TESTS_SUPPORT_FAILING_CALLS_H_
