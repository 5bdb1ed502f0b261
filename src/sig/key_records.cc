#include "sig/key_records.h"

#include <array>
#include <cstdio>
#include <optional>

#include "text/diagnostics.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

// nextEntry reads the next line of the list; nothing after the list's complaint.
std::optional<std::string_view> nextEntry(TestFiles& files, const ListSection& list) {
  if (list.complaint == nullptr) return nextValue(files);
  return nextListLine(files, list.complaint);
}

}  // namespace

void writeHashName(TextWriter& stream, HashId hashId) {
  writeLine(stream, "[Hash]");
  if (const HashProperties* const hash = findHash(hashId)) {
    writeLine(stream, hash->name);
    return;
  }
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "unknown(%d)", static_cast<int>(hashId));
  writeLine(stream, text.data());
}

int readKeys(TestFiles& files, const ListSection& list, int recordSite, int count,
             RecordList<KeyRecord>& records) {
  if (echoSection(files, list.key, list.sites.section) < 0) return -1;
  for (int i = 0; i < count; ++i) {
    const auto line = nextEntry(files, list);
    if (!line) return -1;
    KeyRecord* const record = records.append();
    if (record == nullptr) return mallocFailedAt(recordSite);
    if (echoMeasured(files, *line, record->key, list.sites.line) < 0) return -1;
  }
  return 0;
}

int readMessages(TestFiles& files, const ListSection& list, std::size_t length,
                 RecordList<KeyRecord>& records) {
  if (echoSection(files, list.key, list.sites.section) < 0) return -1;
  for (KeyRecord& record : records) {
    const auto line = nextEntry(files, list);
    if (!line) return -1;
    if (echoSized(files, *line, record.message, length, list.sites.line) < 0) return -1;
  }
  return 0;
}

int readSignatures(TestFiles& files, const ListSection& list, RecordList<KeyRecord>& records) {
  if (echoSection(files, list.key, list.sites.section) < 0) return -1;
  for (KeyRecord& record : records) {
    const auto line = nextEntry(files, list);
    if (!line) return -1;
    if (echoMeasured(files, *line, record.signature, list.sites.line) < 0) return -1;
  }
  return 0;
}

int readRecords(TestFiles& files, HashId hashId, const RecordSites& sites,
                RecordList<KeyRecord>& records) {
  const ListSection keys{"[Public Keys]", "lack of public key!!", sites.keys};
  const ListSection messages{"[Plaintexts]", "lack of planetext!!", sites.messages};
  const ListSection signatures{"[Signatures]", "lack of signature!!", sites.signatures};
  int bits = 0;
  int count = 0;
  writeHashName(files.response, hashId);
  if (echoCount(files, "[Bitlength of Plaintexts]", bits, sites.messageBits) < 0) return -1;
  if (echoCount(files, "[Number of Plaintexts]", count, sites.count) < 0) return -1;
  if (readKeys(files, keys, sites.record, count, records) < 0) return -1;
  if (readMessages(files, messages, bytesForBits(bits), records) < 0) return -1;
  return readSignatures(files, signatures, records);
}

SignatureHalves splitSignature(const KeyRecord& record) {
  const auto signature = record.signature.bytes();
  const std::size_t half = signature.size() / 2;
  return {.r = signature.first(half), .s = signature.subspan(half, half)};
}

int writeResultNumber(TestFiles& files, Verdict verdict) {
  if (verdict == Verdict::STOP) return -1;
  writeDecimal(files.response, verdict == Verdict::PASS ? kVerified : kNotVerified);
  return 0;
}

}  // namespace runner
