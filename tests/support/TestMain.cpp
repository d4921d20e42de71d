// The main of the test executables. On Windows every test also leaves the heap as it should be: a block overrun by one
// byte or written after it was freed fails the test that did it.
#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>

#include <vector>

namespace {

class HeapCheck : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo& /*info*/) override {
    std::vector<HANDLE> heaps(256);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (const HANDLE heap : heaps) EXPECT_TRUE(HeapValidate(heap, 0, nullptr)) << "a heap block is damaged";
  }
};

}  // namespace
#endif

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
#ifdef _WIN32
  testing::UnitTest::GetInstance()->listeners().Append(new HeapCheck);
#endif
  return RUN_ALL_TESTS();
}
