// Pins the four tables that a host and the module share: a row added or lost calls the wrong operation in every host.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "ui/toolkit/MorphUI.h"

namespace {

// The place in the table that a pointer to a virtual operation stands for: one more than its offset in bytes.
template <class Class, class Function>
size_t SlotOf(Function Class::*operation) {
  uintptr_t words[2] = {};
  static_assert(sizeof(operation) == sizeof(words));
  std::memcpy(words, &operation, sizeof(words));
  EXPECT_EQ(words[0] % sizeof(void*), 1u) << "not virtual";
  return (words[0] - 1) / sizeof(void*);
}

TEST(TableOrder, LandmarksStandInTheirPlaces) {
  using S = LumenBrokerShim;
  using H = HostCallbacks;
  const std::pair<size_t, size_t> places[] = {
      {SlotOf(&S::Destroy), 0},
      {SlotOf(&S::RemoveProductKind), 10},
      {SlotOf(&S::RunBroker), 20},
      {SlotOf(&S::StoreConflicts), 30},
      {SlotOf(&S::MarkUpdateRejected), 40},
      {SlotOf(&S::WasRegistrationReached), 50},
      {SlotOf(&H::ReportMessage), 0},
      {SlotOf(&H::GetBrowserPaths), 10},
      {SlotOf(&H::GetDownloadSettings), 20},
      {SlotOf(&H::GetTaskCommandPath), 30},
      {SlotOf(&H::StoreUpdateChoice), 33},
      {SlotOf(&MessageLog::Format), 4},
      {SlotOf(&MorphUI::RunMessageLoop), 4},
  };
  for (const auto& [slot, place] : places) EXPECT_EQ(slot, place);
}

}  // namespace
