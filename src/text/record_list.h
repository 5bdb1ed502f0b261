#ifndef RUNNER_TEXT_RECORD_LIST_H_
#define RUNNER_TEXT_RECORD_LIST_H_

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "text/buffer.h"

namespace runner {

template <typename Record>
struct RecordDeleter {
  void operator()(Record* record) const noexcept {
    std::destroy_at(record);
    std::free(record);
  }
};

// RecordPtr owns one record that stands in memory from allocateZeroed.
template <typename Record>
using RecordPtr = std::unique_ptr<Record, RecordDeleter<Record>>;

// RecordList owns a singly linked list of records in the order in which they were appended. A
// Record is a plain struct with a member `RecordPtr<Record> next`. Appending takes constant time,
// and the list is released record by record, so its length is limited by memory only. A list that
// is const hands out const records.
template <typename Record>
class RecordList {
 public:
  template <typename Element>
  class Iterator {
   public:
    explicit Iterator(Element* record) : record_(record) {}
    Element& operator*() const { return *record_; }
    Iterator& operator++() {
      record_ = record_->next.get();
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    Element* record_;
  };

  RecordList() = default;
  RecordList(const RecordList&) = delete;
  RecordList& operator=(const RecordList&) = delete;
  ~RecordList() {
    while (head_) head_ = std::move(head_->next);
  }

  // append adds a zero-filled record at the end and returns it, still owned by the list; null, with
  // the list unchanged, when there is no memory.
  [[nodiscard]] Record* append() {
    static_assert(alignof(Record) <= kAlignment);
    void* const memory = allocateZeroed(sizeof(Record));
    if (memory == nullptr) return nullptr;
    RecordPtr<Record> record(new (memory) Record{});
    Record* const added = record.get();
    (tail_ != nullptr ? tail_->next : head_) = std::move(record);
    tail_ = added;
    return added;
  }

  [[nodiscard]] bool empty() const { return !head_; }
  [[nodiscard]] Iterator<Record> begin() { return Iterator<Record>(head_.get()); }
  [[nodiscard]] Iterator<Record> end() { return Iterator<Record>(nullptr); }
  [[nodiscard]] Iterator<const Record> begin() const { return Iterator<const Record>(head_.get()); }
  [[nodiscard]] Iterator<const Record> end() const { return Iterator<const Record>(nullptr); }

 private:
  RecordPtr<Record> head_;
  Record* tail_ = nullptr;
};

}  // namespace runner

#endif  // RUNNER_TEXT_RECORD_LIST_H_
