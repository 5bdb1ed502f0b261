#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "support/run_request.h"
#include "text/text_stream.h"

// The built program with its command line, its descriptors, the kinds of files that it is given,
// and its exit status.

namespace {

// Makes descriptor 9 a pipe that nobody reads.
void openPipeWithoutReader() {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  close(ends[0]);
  dup2(ends[1], 9);
  close(ends[1]);
}

TEST(Command, TellsItsOutcome) {
  openPipeWithoutReader();
  const TempDir dir;
  const std::string name = "aes-256-gcm-decryption";
  const std::string request = dir.file("request"), response = dir.file("response");
  const std::string alias = dir.file("alias"), pipe = dir.file("pipe"), folder = dir.file("");
  const std::string missing = dir.file("missing/file");
  writeFile(request, example(name, ".req"));
  std::filesystem::create_symlink(request, alias);
  ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
  const std::string unopened = "can't open ", unwritten = "can't write ";
  const std::string ownLines = "...\n# File: Response file\n#\n", whole = ownLines + answerOf(name);
  const std::string done = "procAEAD finish normally\n";
  const struct {
    std::string before;  // the command
    std::vector<std::string> arguments;
    int status;
    std::string console;
    std::string written;  // as a pattern
  } rows[] = {
      {"", {}, 1, "", ""},
      {"", {request}, 1, "", ""},
      {"", {request, response, "more"}, 0, done, whole},
      {"<&-", {request, response}, 0, done, whole},
      {"2>&-", {request, response}, 0, done, whole},
      {">&-", {request, response}, 0, "", whole},
      {"<&- >&- 2>&-", {request, response}, 0, "", whole},
      {">&9", {request, response}, 0, "", whole},
      {"ulimit -s 512;", {request, response}, 0, done, whole},
      {"umask 0;", {request, response}, 0, done, whole},
      {"ulimit -n 4;", {request, response}, 255, unopened + response, ownLines},
      {"", {missing, response}, 255, unopened + missing, ownLines},
      {"", {folder, response}, 255, unopened + folder, ownLines},
      {"timeout 9", {pipe, response}, 255, unopened + pipe, ownLines},
      {"echo |", {"/dev/stdin", response}, 255, unopened + "/dev/stdin", ownLines},
      {"", {"/dev/null", response}, 255, unopened + "/dev/null", ownLines},
      {"", {request, missing}, 255, unopened + missing + "\n" + unopened + missing, ""},
      {"", {request, alias}, 255, unopened + alias, ""},
      {"ulimit -f 0; timeout 9", {request, response}, 255, unwritten + response, ""},
      {"", {request, "/dev/full"}, 255, unwritten + "/dev/full", ""},
      {"", {request, "/dev/fd/9"}, 255, unwritten + "/dev/fd/9", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.before + " " + row.console);
    std::filesystem::remove(response);
    const Outcome outcome = runCommand(row.arguments, row.before + " " RUNNER_BINARY);
    EXPECT_EQ(outcome.status, row.status);
    EXPECT_EQ(outcome.console, row.console + (row.status == 255 ? "\n" : ""));
    const std::string written = readFile(response);
    EXPECT_EQ(written, filled(row.written, written));
    using std::filesystem::perms;
    EXPECT_TRUE(row.before != "umask 0;" ||
                std::filesystem::status(response).permissions() == perms{0666});
  }
  EXPECT_EQ(readFile(request), example(name, ".req"));
}

TEST(Command, DoesNotWaitForTheReaderOfAPipe) {
  const TempDir dir;
  ASSERT_EQ(mkfifo(dir.file("pipe").c_str(), S_IRUSR | S_IWUSR), 0);
  alarm(9);  // ends a wait
  EXPECT_FALSE(runner::TextWriter().append(dir.file("pipe").c_str()));
  alarm(0);
}

// The last test takes for ever.
TEST(Command, ShowsEachLineOfTheConsoleAtOnce) {
  const TempDir dir;
  const std::string request = dir.file("request"), pipe = dir.file("pipe");
  writeFile(request,
            edited(example("aes-128-cbc-encryption", ".req"), "\n100\n", "\n2147483647\n"));
  const Outcome outcome = runCommand({}, "mkfifo " + pipe + "; timeout 20 " RUNNER_BINARY " " +
                                             request + " " + dir.file("response") + " >" + pipe +
                                             " & read -r line <" + pipe + "; echo $line; kill $!");
  EXPECT_EQ(outcome.console, "procKAT_Text finish normally\n");
}

// A copy of the program asks for a function that no library has.
TEST(Command, MayLackTheFunctionThatValidatesKeys) {
  const TempDir dir;
  const std::string program = dir.file("runner"), quoted = RUNNER_BINARY;
  std::string bytes = readFile(quoted.substr(1, quoted.size() - 2));
  const std::size_t place = bytes.find(std::string("gnutls_pubkey_verify_params") + char{0});
  ASSERT_NE(place, std::string::npos);
  writeFile(program, bytes.replace(place, 6, "absent"));
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);

  const std::string keys = example("ecdsa-p-256-public-key-validation", ".req");
  const Outcome outcome = runBinary(edited(keys, "of Keys]\n8", "of Keys]\n1"), program);
  EXPECT_EQ(outcome.console,
            "curveid: 2\ngnutls_pubkey_verify_params is not supported!!\n"
            "procChkPublicKey finish normally\n");
  EXPECT_TRUE(outcome.response.ends_with("\n[Results]\n1\n")) << outcome.response;
}

}  // namespace
