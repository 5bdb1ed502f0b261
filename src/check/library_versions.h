#ifndef RUNNER_CHECK_LIBRARY_VERSIONS_H_
#define RUNNER_CHECK_LIBRARY_VERSIONS_H_

#include <string>

namespace runner {

// libraryVersions returns "GnuTLS VERSION, OpenSSL VERSION" with the versions of the libraries that
// this process is running with.
std::string libraryVersions();

}  // namespace runner

#endif  // RUNNER_CHECK_LIBRARY_VERSIONS_H_
