// Packages and digests that openssl signed, stored in the user's profile and judged there.
#include "delivery/ProductStore.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "delivery/ProductDigest.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/ImportHook.h"

namespace {

using testing_files::Exists;
using testing_files::ReadWhole;
using testing_files::WriteWhole;

class ProductStore : public testing::Test {
 protected:
  static StoreResult Install(const std::string& message, const wchar_t* anchor = L"anchor.der") {
    return InstallSignedPackage(L"Demo", addon::MessageBytes(message), (addon::Folder(L"messages\\") + anchor).c_str());
  }
  static StoreResult StoreDigest(const std::string& message) {
    return StoreProductDigest(L"Demo", addon::MessageBytes("digest-" + message + ".p7m"));
  }
  static bool Verify() {
    return VerifyProductDigest(L"Demo", addon::Folder(L"messages\\anchor.der").c_str(), ProductFolder::PerUser);
  }

  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  const WideString executable = addon::ProductFile(L"Demo", L"Demo.exe");
  const std::string program = ReadWhole(addon::Folder(L"messages\\program"));
};

TEST_F(ProductStore, PackagesAndWhatBecomesOfThem) {
  const std::string none = "(no file)";
  const std::tuple<StoreResult, std::string, std::vector<const char*>> rows[] = {
      {StoreResult::Stored, program, {"good.p7m"}},
      {StoreResult::Stored, "", {"nothing.p7m"}},
      {StoreResult::Stored, "short", {"below-bound.p7m"}},
      {StoreResult::NotWritten, none, {"at-bound.p7m", "too-long.p7m", "corrupt.p7m", "cut.p7m", "header.p7m"}},
      {StoreResult::NotTrusted, none, {"other-magic.p7m", "empty.p7m", "untrusted.p7m", "content"}}};
  for (const auto& [result, content, messages] : rows) {
    for (const char* const message : messages) {
      // What stood there before goes with a refused package too: the place is emptied before the package is judged.
      ASSERT_EQ(Install("good.p7m"), StoreResult::Stored);
      EXPECT_EQ(Install(message), result) << message;
      EXPECT_EQ(ReadWhole(executable), content) << message;
    }
  }
  for (const wchar_t* const anchor : {L"stranger.der", L"empty.der", L"none.der"}) {
    EXPECT_EQ(Install("good.p7m", anchor), StoreResult::NotTrusted) << ToUtf8(anchor);
  }
}

TEST_F(ProductStore, WhatTheBuiltInAnchorSignedNeedsNoFile) {
  const auto committed = [](const char* name) {
    return addon::BytesOf(L"Z:" + WidenAscii(LUMEN_SOURCE_DIR "/tests/delivery/anchor/") + WidenAscii(name));
  };
  EXPECT_EQ(InstallSignedPackage(L"DemoAddOn", committed("package.p7m"), L""), StoreResult::Stored);
  EXPECT_EQ(StoreProductDigest(L"DemoAddOn", committed("digest.p7m")), StoreResult::Stored);
  EXPECT_TRUE(VerifyProductDigest(L"DemoAddOn", nullptr, ProductFolder::PerUser));
  EXPECT_FALSE(VerifyProductDigest(L"DemoAddOn", nullptr, ProductFolder::ProgramFiles));
  EXPECT_EQ(ToUtf8(*ProductDigestPath(L"Demo", ProductFolder::ProgramFiles)),
            "C:\\Program Files\\Corva\\\\Lumen Player\\\\AddIns\\Demo\\digest.s");
  EXPECT_EQ(InstallSignedPackage(L"DemoAddOn", addon::MessageBytes("good.p7m"), nullptr), StoreResult::NotTrusted);
}

size_t g_refusedBlock = 0;
void* RefuseOneSize(size_t size) {
  return size == g_refusedBlock ? nullptr : Own<void*(size_t)>(L"msvcrt.dll", "malloc")(size);
}

BOOL WINAPI WriteOneLess(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
  return Own<decltype(WriteFile)>(L"kernel32.dll", "WriteFile")(file, bytes, size - 1, written, overlapped);
}

TEST_F(ProductStore, FailuresOfThePlatformLeaveNoFile) {
  {
    g_refusedBlock = program.size();
    const ImportHook hook(GetModuleHandleW(nullptr), "malloc", RefuseOneSize);
    EXPECT_EQ(Install("good.p7m"), StoreResult::NoMemory);
  }
  EXPECT_FALSE(Exists(executable));
  RemoveDirectoryW(addon::ProductFile(L"Demo", L"").c_str());
  EXPECT_EQ(StoreDigest("good"), StoreResult::NotWritten) << "no folder";
  testing_files::MakeDirectories(executable);  // a folder in the executable's place
  EXPECT_EQ(Install("good.p7m"), StoreResult::NotWritten);
  RemoveDirectoryW(executable.c_str());
  const ImportHook hook(GetModuleHandleW(nullptr), "WriteFile", WriteOneLess);
  EXPECT_EQ(Install("good.p7m"), StoreResult::NotWritten);
  EXPECT_FALSE(Exists(executable));
  EXPECT_EQ(StoreDigest("good"), StoreResult::NotWritten);
}

TEST_F(ProductStore, DigestsHoldTheProductToWhatWasSigned) {
  ASSERT_EQ(Install("good.p7m"), StoreResult::Stored);
  const WideString data = addon::ProductFile(L"Demo", L"data.txt");
  WriteWhole(data, "data");
  EXPECT_FALSE(Verify()) << "no digest yet";
  testing_files::MakeDirectories(addon::ProductFile(L"Demo", L"sub"));
  WriteWhole(addon::ProductFile(L"Demo", L"sub\\more.txt"), "more");  // looked at only where it is listed
  const std::pair<const char*, bool> rows[] = {
      {"folder", true},      // a file in a folder of the product's
      {"bare-lf", false},    // no line counts
      {"reordered", false},  // the hash is over the files in another order
      {"no-executable", false},
      {"prefix", true},           // "Demo" is taken for the executable, and is no file
      {"other-case", false},      // "demo.exe" is not, though the platform opens it
      {"missing-counted", true},  // signed without the file that is missing
      {"many", true},
      {"untrusted", false},
      {"good", true},
  };
  for (const auto& [name, good] : rows) {
    ASSERT_EQ(StoreDigest(name), StoreResult::Stored);
    EXPECT_EQ(Verify(), good) << name;
  }
  for (const char* const changed : {"Data", "dat", "data ", ""}) {
    WriteWhole(data, changed);
    EXPECT_FALSE(Verify()) << changed;
  }
  DeleteFileW(data.c_str());
  EXPECT_FALSE(Verify()) << "a listed file is gone";
}

}  // namespace
