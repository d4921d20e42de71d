// The file methods on a broker object of this process, on real files, with what they leave open counted.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "broker/CoLumenBrokerServer.h"
#include "tests/support/CountFixture.h"
#include "tests/support/TestFiles.h"
#include "tests/support/UnavailableClass.h"

class FileMethodsFixture : public CountFixture {
 protected:
  // One apartment for the whole suite: the shell's file operations and COM's own end do not go together under Wine.
  struct Shared {
    ComInitializer apartment;
    UnavailableClass zoneIdentifier{{0x0968E258, 0x16C7, 0x4DBA, {0xAA, 0x86, 0x46, 0x2D, 0xD6, 0x1E, 0x31, 0xA3}}};
  };

  static void SetUpTestSuite() {
    shared = std::make_unique<Shared>();
    // Loads what the process then keeps.
    const testing_files::CleanDirectory directory(testing_files::PlayerDirectory());
    const ComPtr<ILumenBroker6> broker = NewBroker();
    ULONG cookie = 0;
    ASSERT_EQ(broker->BrokerCreateFile(Name(directory.Path() + L"\\a.sol").Get(), 0, 1, &cookie), S_OK);
    ASSERT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
    ASSERT_EQ(broker->BrokerDeleteBrowsingHistory(Name(directory.Path()).Get()), S_OK);
  }
  static void TearDownTestSuite() { shared.reset(); }

  static BString Name(const WideString& text) { return BString(WideView(text)); }
  static ComPtr<ILumenBroker6> NewBroker() { return Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr)); }
  [[nodiscard]] WideString In(const wchar_t* name) const { return directory.Path() + L"\\" + name; }

  inline static std::unique_ptr<Shared> shared;
  testing_files::CleanDirectory directory{testing_files::PlayerDirectory()};
};
