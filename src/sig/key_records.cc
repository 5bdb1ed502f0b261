#include "sig/key_records.h"

#include <optional>
#include <string_view>

#include "text/diagnostics.h"

namespace runner {
namespace {

// nextEntry reads the next line of the list; nothing after the list's complaint.
std::optional<std::string_view> nextEntry(TestFiles& files, const KeyList& list) {
  if (list.complaint == nullptr) return nextValue(files);
  return nextListLine(files, list.complaint);
}

}  // namespace

int readKeys(TestFiles& files, const KeyList& list, int recordSite, int count,
             RecordList<KeyRecord>& records) {
  if (echoSection(files, list.section, list.sectionSite) < 0) return -1;
  for (int i = 0; i < count; ++i) {
    const auto line = nextEntry(files, list);
    if (!line) return -1;
    KeyRecord* const record = records.append();
    if (record == nullptr) return mallocFailedAt(recordSite);
    if (echoMeasured(files, *line, record->key, list.sites) < 0) return -1;
  }
  return 0;
}

int readMessages(TestFiles& files, const KeyList& list, std::size_t length,
                 RecordList<KeyRecord>& records) {
  if (echoSection(files, list.section, list.sectionSite) < 0) return -1;
  for (KeyRecord& record : records) {
    const auto line = nextEntry(files, list);
    if (!line) return -1;
    if (echoSized(files, *line, record.message, length, list.sites) < 0) return -1;
  }
  return 0;
}

int readSignatures(TestFiles& files, const KeyList& list, RecordList<KeyRecord>& records) {
  if (echoSection(files, list.section, list.sectionSite) < 0) return -1;
  for (KeyRecord& record : records) {
    const auto line = nextEntry(files, list);
    if (!line) return -1;
    if (echoMeasured(files, *line, record.signature, list.sites) < 0) return -1;
  }
  return 0;
}

SignatureHalves splitSignature(const KeyRecord& record) {
  const auto signature = record.signature.bytes();
  const std::size_t half = signature.size() / 2;
  return {.r = signature.first(half), .s = signature.subspan(half, half)};
}

}  // namespace runner
