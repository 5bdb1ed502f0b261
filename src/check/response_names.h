#ifndef RUNNER_CHECK_RESPONSE_NAMES_H_
#define RUNNER_CHECK_RESPONSE_NAMES_H_

#include <string>
#include <vector>

namespace runner {

// responsePathOf returns the path of the response to `requestPath` in `directory`: the request's
// file name with ".rsp" in place of its last extension.
std::string responsePathOf(const std::string& requestPath, const std::string& directory);

// findNameFault looks at the responses to all these requests before any of them runs. Returns what
// is wrong when no file can be made in `directory`, when two responses would have the same name, or
// when one would overwrite a request; otherwise an empty text.
std::string findNameFault(const std::vector<std::string>& requests, const std::string& directory);

}  // namespace runner

#endif  // RUNNER_CHECK_RESPONSE_NAMES_H_
