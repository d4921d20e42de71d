// Makes one allocation of C++ code fail on this thread: the one after `after` that succeed. A test executable that
// links FailingAllocation.cpp has its operator new replaced; the platform's own allocations are not touched.
#pragma once

class FailingAllocation {
 public:
  explicit FailingAllocation(int after);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation() { (void)Disarm(); }

  // Ends it. Whether the allocation came and failed.
  bool Disarm();
};
