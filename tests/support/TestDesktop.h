// A desktop for the windows of one test process and of what it starts. Without it they would land on the desktop of
// whoever came first, with that one's display or with none.
//
// Each test that shows windows has DISPLAY in its lumen_test, which runs it by tools/with-display, and registers this:
//   const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

class TestDesktop final : public testing::Environment {
 public:
  // Before the first window of the main thread, which COM's apartments have as well.
  void SetUp() override {
    const std::string name = "LumenTests" + std::to_string(GetCurrentProcessId());
    handle_ = CreateDesktopA(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    ASSERT_NE(handle_, nullptr);
    ASSERT_TRUE(SetThreadDesktop(handle_));
    ASSERT_NE(GetDesktopWindow(), nullptr);  // the program that holds the display is started with it
  }
  // The desktop is left to the end of the process: no thread may be on it when it is closed.

  [[nodiscard]] HDESK Handle() const { return handle_; }

 private:
  HDESK handle_ = nullptr;
};
