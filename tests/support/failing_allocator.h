#ifndef RUNNER_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
#define RUNNER_TESTS_SUPPORT_FAILING_ALLOCATOR_H_

// FailingAllocator makes the aligned allocator of this process fail once, after `successes` further
// allocations, for as long as it lives. The test program is linked with --wrap=aligned_alloc.
class FailingAllocator {
 public:
  explicit FailingAllocator(int successes);
  ~FailingAllocator();
  FailingAllocator(const FailingAllocator&) = delete;
  FailingAllocator& operator=(const FailingAllocator&) = delete;

  // hasFailed tells whether the allocation that was to fail was asked for.
  [[nodiscard]] bool hasFailed() const;
};

#endif  // RUNNER_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
