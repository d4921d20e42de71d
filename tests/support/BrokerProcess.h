// The broker as a process of its own, as clients meet it: registered by the built host, started by COM, watched by its
// process handle. Tests that use this hold the CTest resource lock `broker`, since a prefix has one registration.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "LumenBroker.h"
#include "engine/ComSupport.h"
#include "engine/Handles.h"
#include "engine/WideText.h"

namespace broker_process {

constexpr DWORD kPatience = 30000;  // milliseconds; far more than anything here needs

// The folder of the build, without a trailing separator: bin, tests and results lie in it.
[[nodiscard]] WideString BuildFolder();
// Runs a command line to its end; its exit code, or STILL_ACTIVE when it could not be started or did not end. With
// `said`, what it wrote to its standard output and error goes there.
[[nodiscard]] DWORD RunToEnd(const WideString& commandLine, std::string* said = nullptr);
// Registers bin\LumenHost.exe as an installer does, and the proxy that Wine needs. Once a process is enough.
[[nodiscard]] bool Register();
// What a client calls. E_FAIL and the like come back as COM gave them, with `broker` null.
[[nodiscard]] HRESULT Activate(ComPtr<ILumenBroker6>& broker);
// The running server, with rights to wait for it and to ask about it; invalid when none runs.
[[nodiscard]] KernelHandle FindServer();
// Waits for the server's own end. False when it is still there after kPatience.
[[nodiscard]] bool EndsByItself(const KernelHandle& server);

// Ends a server that something still holds, by the message that its last release would post. Never terminate it:
// Wine's activation service goes on handing out a class object that was not withdrawn.
void TellToQuit(const KernelHandle& server);

}  // namespace broker_process

// A test with one client and its server. At the test's end the client's reference goes, and the server must end by
// itself with exit code 0.
class BrokerProcessTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_TRUE(broker_process::Register()); }
  void SetUp() override;
  void TearDown() override;

  ComInitializer apartment;
  ComPtr<ILumenBroker6> broker;
  KernelHandle server;
};

// The same with one apartment for the whole suite: the shell's operations and COM's own end do not go together under
// Wine.
class BrokerSuiteTest : public BrokerProcessTest {
 protected:
  static void SetUpTestSuite() {
    BrokerProcessTest::SetUpTestSuite();
    suiteApartment = std::make_unique<ComInitializer>();
  }
  static void TearDownTestSuite() { suiteApartment.reset(); }

  inline static std::unique_ptr<ComInitializer> suiteApartment;
};
