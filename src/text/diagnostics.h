#ifndef RUNNER_TEXT_DIAGNOSTICS_H_
#define RUNNER_TEXT_DIAGNOSTICS_H_

namespace runner {

// Every diagnostic is one line on standard output. These functions all return -1, the result of a
// failed step, so that a failure site is one statement.

// failAt prints "err happens!! (N)" with the number of the failure site.
int failAt(int site);

// mallocFailedAt prints "malloc err!! (N)" with the number of the allocation site.
int mallocFailedAt(int site);

// failWith prints `message` as a line of its own.
int failWith(const char* message);

// failOpening, failReading and failWriting print "can't open PATH", "can't read PATH" and "can't
// write PATH".
int failOpening(const char* path);
int failReading(const char* path);
int failWriting(const char* path);

// failIn prints "NAME : MESSAGE", the form in which an adapter names itself; `message` is the
// text that follows the name and the colon.
int failIn(const char* name, const char* message);

}  // namespace runner

#endif  // RUNNER_TEXT_DIAGNOSTICS_H_
