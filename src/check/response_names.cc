#include "check/response_names.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <utility>

#include "check/descriptors.h"

namespace runner {
namespace {

// The device and the number of an existing file, which all its names have in common.
using FileIdentity = std::pair<dev_t, ino_t>;

bool identify(const std::string& path, FileIdentity& identity) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return false;
  identity = {status.st_dev, status.st_ino};
  return true;
}

}  // namespace

std::string responsePathOf(const std::string& requestPath, const std::string& directory) {
  const std::string name = std::filesystem::path(requestPath).stem().string() + ".rsp";
  return (std::filesystem::path(directory) / name).string();
}

std::string findNameFault(const std::vector<std::string>& requests, const std::string& directory) {
  if (directory.empty()) return "the name of the directory is empty";
  const Descriptor trial(createTemporaryFile(directory));
  if (!trial.isOpen()) {
    return "can't write to " + directory + ": " + std::strerror(errno);  // NOLINT(concurrency-*)
  }
  std::map<std::string, std::string> requestOfResponse;
  std::map<FileIdentity, std::string> requestFiles;
  FileIdentity identity;
  for (const std::string& request : requests) {
    std::string response = responsePathOf(request, directory);
    const auto [entry, isNew] = requestOfResponse.emplace(response, request);
    if (!isNew) return response.append(" would answer ").append(entry->second + " and " + request);
    if (identify(request, identity)) requestFiles.emplace(identity, request);
  }
  for (const auto& [response, request] : requestOfResponse) {
    if (!identify(response, identity)) continue;
    const auto overwritten = requestFiles.find(identity);
    if (overwritten == requestFiles.end()) continue;
    return "the response to " + request + " would overwrite " + overwritten->second;
  }
  return "";
}

}  // namespace runner
