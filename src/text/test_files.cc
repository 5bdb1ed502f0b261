#include "text/test_files.h"

#include <cstdio>

#include "text/diagnostics.h"

namespace runner {

int openFiles(TestFiles& files, const char* requestPath, const char* responsePath) {
  if (!files.request.open(requestPath)) return failOpening(requestPath);
  if (files.response.append(responsePath)) return 0;
  files.request.close();
  return failOpening(responsePath);
}

int closeWritten(TextWriter& file, const char* path) {
  if (file.close()) return 0;
  std::printf("can't write %s\n", path);
  return -1;
}

int closeFiles(TestFiles& files, const char* responsePath, int result) {
  files.request.close();
  return closeWritten(files.response, responsePath) < 0 ? -1 : result;
}

}  // namespace runner
