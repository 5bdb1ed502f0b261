#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocator.h"
#include "support/request_tables.h"
#include "support/run_request.h"

// Value-list signature verification through both engines: the examples, with NIST's verdicts, and
// what becomes of them after an edit. They have six records, messages of 128 bytes, P-256 and
// SHA-256, or L = 2048 and N = 256.

namespace {

using runner::CryptEngine;

const std::vector<CryptEngine> kBothEngines{CryptEngine::GNUTLS, CryptEngine::OPENSSL};
const std::vector<CryptEngine> kGnutls{CryptEngine::GNUTLS};
const std::vector<CryptEngine> kOpenssl{CryptEngine::OPENSSL};
const std::vector<CryptEngine> kUnsupported{CryptEngine::HDD};
const std::string kCurve = "curveid: 2\n";
const std::string kFinished = "procVerify finish normally\n";

const std::string kEcdsa = example("ecdsa-p-256-value-list", ".req");
const std::string kDsa = example("dsa-2048-256-value-list", ".req");

// responseOf returns the expected response to an example, without the program's own lines.
std::string responseOf(const std::string& name) {
  const std::string response = example(name, ".rsp");
  return response.substr(response.find("\n#\n") + 3);
}

// afterHeader returns what a test printed, after the report of the header.
std::string afterHeader(const std::string& console) {
  const std::size_t report = console.find("message num : ");
  return report == std::string::npos ? "no header" : console.substr(console.find('\n', report) + 1);
}

// inTwoGroups makes two groups of the six records.
std::string inTwoGroups(std::string text) {
  const std::size_t group = text.find(text.find("[P-") != std::string::npos ? "[P-" : "[L=");
  const std::string opening = text.substr(group, text.find("\n\n", group) - group);
  text = edited(text, "Messages = 6", "Messages = 3");
  text = edited(text, "\nCOUNT = 3", "COUNT = 3\n" + opening + "\nCOUNT = 0");
  return edited(edited(text, "COUNT = 4", "COUNT = 1"), "COUNT = 5", "COUNT = 2");
}

TEST(ValueListRecords, AreCopiedWithTheirVerdicts) {
  for (const std::string name : {"ecdsa-p-256-value-list", "dsa-2048-256-value-list"}) {
    const std::string request = example(name, ".req");
    for (const CryptEngine engine : kBothEngines) {
      EXPECT_EQ(runInProcess(request, engine).response, responseOf(name));
      const Outcome groups = runInProcess(inTwoGroups(request), engine);
      EXPECT_EQ(groups.response, inTwoGroups(responseOf(name)));
      EXPECT_EQ(afterHeader(groups.console),
                request == kEcdsa ? kCurve + kCurve + kFinished : kFinished);
    }
  }
}

TEST(ValueListRecords, LoseCommentsCaseAndExcess) {
  std::string request = edited(kEcdsa, "Msg = e4", "Msg = E4");
  request = edited(request, "\nQx", "0\nQx");
  request = edited(request, "Result = ?\n", "Result = P (0)\n# comment\n");
  EXPECT_EQ(runInProcess(request).response, responseOf("ecdsa-p-256-value-list"));
}

struct Edit {
  std::string from;
  std::string to;
  const char* end;      // how the last line of the response begins
  std::string console;  // after the report of the header
  std::vector<CryptEngine> engines = kBothEngines;
};

// As the new text of an edit: the request ends before the old one.
const char* const kCut = "(end)";

void expectOutcomes(const std::string& request, const std::vector<Edit>& edits) {
  for (const Edit& row : edits) {
    SCOPED_TRACE(row.from + " -> " + row.to);
    std::string changed = edited(request, row.from, row.to);
    if (row.to == kCut) changed.resize(changed.find(kCut));
    for (const CryptEngine engine : row.engines) {
      const Outcome outcome = runInProcess(changed, engine);
      EXPECT_TRUE(lastLines(outcome.response, 1).starts_with(row.end)) << outcome.response;
      EXPECT_EQ(afterHeader(outcome.console), row.console);
    }
  }
}

std::string endOfFile(int site) { return "unexpected EOF!! (" + std::to_string(site) + ")\n"; }

std::string notFound(const std::string& name, int site, const std::string& line) {
  return "\"" + name + "\" is not found!! (" + std::to_string(site) + ")\n" + line + "\n\n";
}

std::string notHex(const std::string& where, int site) {
  return "\nillegal data!! (" + where + "\n" + errAt(site);
}

// padded puts zeros in front of the 64 digits of a value, up to a line of `length` characters.
std::string padded(const std::string& name, std::size_t length) {
  return name + std::string(length - name.size() - 64, '0');
}

const std::string kNotEncoded = "signature size is too large!!\nencoding signature(rs) failed!!\n";

// A line of the group has at most 264 characters.
TEST(ValueListRecords, EcdsaFaults) {
  const std::vector<Edit> edits{
      {"[P-", "[K-", "Result = ?", ""},
      {"COUNT = 0", kCut, "\n", kFinished},
      {"COUNT = 0", "COUNT = 1", "COUNT = 1", "[ERR]count 0 is not found!!\n"},
      {"COUNT = 1", "COUNT =  1", "COUNT =  1", kCurve + "[ERR]count 1 is not found!!\n"},
      {"COUNT = 1", kCut, "\n", kCurve + kFinished},
      {"Messages = 6", "Messages = 0", "Result = F", kCurve + kFinished},
      {"Messages = 6", "Messages = 1", "Result = ?", kCurve + kFinished},
      {"Msg", kCut, "COUNT = 0", endOfFile(4778)},
      {"Msg", "\nMsg", "COUNT = 0", notFound("Msg = ", 4778, "")},
      {"Msg = e4", "Msg = e", "COUNT = 0", notHex("\n)\nnum=128, i=127, j=1", 4780)},
      {"\nQx", "00\nQx", "Msg = ", notFound("Qx = ", 4796, "")},
      {"Qx", kCut, "Msg = ", endOfFile(4796)},
      {"Qx", "#\nQx", "Msg = ", notFound("Qx = ", 4796, "#")},
      {"Qx = ", padded("Qx = ", 264), "Msg = ", notHex(")\nnum=130, i=129, j=1", 4799)},
      {"Qy = e", "Qy = ", "Qx = ", notHex("\n)\nnum=32, i=31, j=1", 4799)},
      {"R = ", "S = \nR = ", "Qy = ", notFound("R = ", 4796, "S = ")},
      {"Result", kCut, "S = ", kCurve + endOfFile(4836)},
      {"Result", "#\nResult", "S = ", kCurve + notFound("Result = ", 4836, "#")},
  };
  expectOutcomes(kEcdsa, edits);
}

// A line of the group has at most 520 characters.
TEST(ValueListRecords, DsaFaults) {
  const std::string warning = "[WARNING]unexpected data length!! data:";
  const std::vector<Edit> edits{
      {", SHA-", ",SHA-", "Result = ?", ""},
      {"P = ", kCut, "[L=2048", endOfFile(4013)},
      {"Q = ", "\nQ = ", "P = ", notFound("Q = ", 4013, "")},
      {"Q = ", "Q = 00", "Result = F", warning + "33, expected:32\n" + kFinished},
      {"[N = 256]", "[N = -256]", "Result = F", warning + "32, expected:-32\n" + kFinished},
      {"Q = daf3ebd85f57a8731538596876e8a34e73c732bc69b4d64b010bd7d5b63a09ef", "Q = ", "S = ",
       warning + "0, expected:32\npubkey_import_dsa_raw failed!!\nerr happens!! (4068)\n", kGnutls},
      {"G = 6", "G = ", "Q = ", notHex("\n)\nnum=256, i=255, j=1", 4020)},
      {"COUNT = 1", "COUNT = 3", "COUNT = 3", "[ERR]count 1 is not found!!\n"},
      {"COUNT = 1", kCut, "\n", kFinished},
      {"Msg", kCut, "COUNT = 0", endOfFile(4042)},
      {"Msg", "\nMsg", "COUNT = 0", notFound("Msg = ", 4042, "")},
      {"Msg = b", "Msg = ", "COUNT = 0", notHex("\n)\nnum=128, i=127, j=1", 4044)},
      {"Y = ", kCut, "Msg = ", endOfFile(4059)},
      {"R = ", "#\nR = ", "Y = ", notFound("R = ", 4059, "#")},
      {"R = 5", "R = ", "Y = ", notHex("\n)\nnum=32, i=31, j=1", 4062)},
      {"S = ", padded("S = ", 520), "S = 00", kNotEncoded + "???\n"},
      {"Result", kCut, "S = ", ""},
      {"Result = ", "Result=", "S = ", "???\n"},
  };
  expectOutcomes(kDsa, edits);
}

// The fourth record is a good one.
TEST(ValueListRecords, FailWhenTheSignatureCannotBeEncoded) {
  const std::string request = edited(kEcdsa, "S = 17", padded("S = ", 260) + "17");
  expectOutcomes(request,
                 {{"\nCOUNT = 4", kCut, "Result = F", kCurve + kNotEncoded + kFinished, kGnutls},
                  {"\nCOUNT = 4", kCut, "Result = P", kCurve + kFinished, kOpenssl}});
}

// refusedByOpenssl is what a refused key prints, with the library's text.
std::string refusedByOpenssl(const std::string& error, const std::string& complaint) {
  return kCurve + "EC_KEY_set_public_key failed!!\n  error:" + error +
         "\n    COUNT0: " + complaint + "\n" + kFinished;
}

TEST(ValueListRecords, KeysThatTheEngineRefuses) {
  const std::string x = "Qx = 87f8f2b218f49845f6f10eec3877136269f5c1a54736dbdf69f89940cad41555";
  const std::string plusP =
      "Qx = 0187f8f2b118f49846f6f10eec3877136269f5c1a64736dbdf69f89940cad41554";
  const std::string offCurve = refusedByOpenssl(
      "0800006B:elliptic curve routines::point is not on curve", "illegal public key?");
  const std::string outOfRange = refusedByOpenssl(
      "08000092:elliptic curve routines::coordinates out of range", "something wrong?");
  const std::string site = "COUNT0: " + errAt(4823);
  const std::vector<Edit> edits{
      {x, "Qx = ", "S = ", kCurve + "pubkey_import_ecc_raw failed(-23)!!\n" + site, kGnutls},
      {x, "Qx = 01", "Result = F", offCurve, kOpenssl},
      {x, plusP, "Result = F", outOfRange, kOpenssl},
      {x, x, "S = ", kCurve + "unsupported engine!!\n" + site, kUnsupported},
  };
  expectOutcomes(kEcdsa, edits);
}

void expectAllocationFailures(const std::string& request, const std::vector<int>& sites) {
  for (std::size_t i = 0; i < sites.size(); ++i) {
    const FailingAllocator allocator(static_cast<int>(i));
    EXPECT_EQ(afterHeader(runInProcess(request).console),
              "malloc err!! (" + std::to_string(sites[i]) + ")\n");
  }
}

// The last site of each is that of a value that grows.
TEST(ValueListRecords, AllocationFailures) {
  expectAllocationFailures(edited(kEcdsa, "Qy = ", "Qy = 00"),
                           {4754, 4755, 4756, 4757, 4758, 4759, 4757});
  expectAllocationFailures(edited(kDsa, "R = ", "R = 00"),
                           {3998, 3998, 3998, 3998, 4001, 4001, 4006, 4007, 4001});
}

}  // namespace
