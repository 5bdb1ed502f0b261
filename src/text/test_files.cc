#include "text/test_files.h"

#include "text/diagnostics.h"

namespace runner {

int openFiles(TestFiles& files) {
  if (!files.request.open(files.requestPath)) return failOpening(files.requestPath);
  if (files.response.append(files.responsePath)) return 0;
  (void)files.request.close();
  return failOpening(files.responsePath);
}

int closeRead(TextReader& file, const char* path) { return file.close() ? 0 : failReading(path); }

int closeWritten(TextWriter& file, const char* path) {
  return file.close() ? 0 : failWriting(path);
}

int closeFiles(TestFiles& files, int result) {
  if (closeRead(files.request, files.requestPath) < 0) result = -1;
  if (closeWritten(files.response, files.responsePath) < 0) result = -1;
  return result;
}

}  // namespace runner
