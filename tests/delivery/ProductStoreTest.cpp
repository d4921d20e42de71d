// Packages and digests that openssl signed, stored in the user's profile and judged there.
#include "delivery/ProductStore.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>

#include "delivery/ProductDigest.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/ImportHook.h"

namespace {

using testing_files::Exists;
using testing_files::ReadWhole;
using testing_files::WriteWhole;

class ProductStore : public testing::Test {
 protected:
  static StoreResult Install(const wchar_t* name, const std::string& message) {
    return InstallSignedPackage(name, addon::MessageBytes(message + ".p7m"), Anchor().c_str());
  }
  static WideString Anchor() { return addon::Folder(L"messages\\anchor.der"); }

  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  const WideString executable = addon::ProductFile(L"Demo", L"Demo.exe");
};

TEST_F(ProductStore, PackagesAndWhatBecomesOfThem) {
  const std::string program = addon::MessageText("program");
  const struct {
    const char* message;
    StoreResult result;
    std::string content;
  } rows[] = {
      {"good", StoreResult::Stored, program},       {"at-bound", StoreResult::NotWritten, {}},
      {"corrupt", StoreResult::NotWritten, {}},     {"nothing", StoreResult::Stored, ""},
      {"other-magic", StoreResult::NotTrusted, {}}, {"empty", StoreResult::NotTrusted, {}},
      {"untrusted", StoreResult::NotTrusted, {}},   {"content", StoreResult::NotTrusted, {}},
  };
  for (const auto& row : rows) {
    // What stood there before goes with a refused package too: the place is emptied before the package is judged.
    ASSERT_EQ(Install(L"Demo", "good"), StoreResult::Stored);
    const std::string file = row.message == std::string("content") ? "content" : row.message + std::string(".p7m");
    EXPECT_EQ(InstallSignedPackage(L"Demo", addon::MessageBytes(file), Anchor().c_str()), row.result) << row.message;
    EXPECT_EQ(ReadWhole(executable), row.result == StoreResult::Stored ? row.content : "(no file)") << row.message;
  }
}

TEST_F(ProductStore, NamesAndAnchors) {
  for (const wchar_t* const name : {L"", L"a-b", L"a.b", L"..\\b", L"a/b", L"abcdefghijabcdefghijabcdefghij12"}) {
    EXPECT_EQ(Install(name, "good"), StoreResult::NotWritten) << ToUtf8(name);
    EXPECT_EQ(StoreProductDigest(name, {}), StoreResult::NotTrusted) << ToUtf8(name);
  }
  EXPECT_EQ(Install(L"abcdefghijabcdefghijabcdefghij1", "good"), StoreResult::Stored) << "31 letters";
  const std::vector<uint8_t> message = addon::MessageBytes("good.p7m");
  for (const WideString& anchor : {addon::Folder(L"messages\\stranger.der"), addon::Folder(L"messages\\empty.der"),
                                   addon::Folder(L"messages\\none.der"), WideString()}) {
    EXPECT_EQ(InstallSignedPackage(L"Demo", message, anchor.c_str()), StoreResult::NotTrusted) << ToUtf8(anchor);
    EXPECT_FALSE(Exists(executable));
  }
}

TEST_F(ProductStore, WhatTheBuiltInAnchorSignedNeedsNoFile) {
  EXPECT_EQ(InstallSignedPackage(L"DemoAddOn", addon::CommittedBytes("package.p7m"), L""), StoreResult::Stored);
  EXPECT_EQ(StoreProductDigest(L"DemoAddOn", addon::CommittedBytes("digest.p7m")), StoreResult::Stored);
  EXPECT_TRUE(VerifyProductDigest(L"DemoAddOn", nullptr, ProductFolder::PerUser));
  EXPECT_FALSE(VerifyProductDigest(L"DemoAddOn", Anchor().c_str(), ProductFolder::PerUser));
}

size_t g_refusedBlock = 0;
void* RefuseOneSize(size_t size) {
  return size == g_refusedBlock ? nullptr : Own<void*(size_t)>(L"msvcrt.dll", "malloc")(size);
}

BOOL WINAPI WriteOneLess(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
  return Own<decltype(WriteFile)>(L"kernel32.dll", "WriteFile")(file, bytes, size - 1, written, overlapped);
}

TEST_F(ProductStore, FailuresOfThePlatformLeaveNoFile) {
  const std::string program = addon::MessageText("program");
  {
    g_refusedBlock = program.size();
    const ImportHook hook(GetModuleHandleW(nullptr), "malloc", RefuseOneSize);
    EXPECT_EQ(Install(L"Demo", "good"), StoreResult::NoMemory);
  }
  EXPECT_FALSE(Exists(executable));
  EXPECT_EQ(StoreProductDigest(L"Other", addon::MessageBytes("good.p7m")), StoreResult::NotWritten) << "no folder";
  testing_files::MakeDirectories(executable);  // a folder in the executable's place
  EXPECT_EQ(Install(L"Demo", "good"), StoreResult::NotWritten);
  RemoveDirectoryW(executable.c_str());
  const ImportHook hook(GetModuleHandleW(nullptr), "WriteFile", WriteOneLess);
  EXPECT_EQ(Install(L"Demo", "good"), StoreResult::NotWritten);
  EXPECT_FALSE(Exists(executable));
  EXPECT_EQ(StoreProductDigest(L"Demo", addon::MessageBytes("good.p7m")), StoreResult::NotWritten);
}

TEST_F(ProductStore, DigestsHoldTheProductToWhatWasSigned) {
  ASSERT_EQ(Install(L"Demo", "good"), StoreResult::Stored);
  WriteWhole(addon::ProductFile(L"Demo", L"data.txt"), "data");
  testing_files::MakeDirectories(addon::ProductFile(L"Demo", L"sub"));
  WriteWhole(addon::ProductFile(L"Demo", L"sub\\more.txt"), "more");
  const struct {
    const char* name;
    bool good;
  } rows[] = {
      {"good", true},
      {"folder", true},      // a file in a folder of the product's
      {"bare-lf", false},    // no line counts
      {"reordered", false},  // the hash is over the files in another order
      {"no-executable", false},
      {"prefix", true},           // "Demo" is taken for the executable, and is no file
      {"other-case", false},      // "demo.exe" is not, though the platform opens it
      {"missing-counted", true},  // signed without the file that is missing
      {"huge-value", false},
      {"last-value-wins", false},
      {"many", true},
      {"untrusted", false},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(StoreProductDigest(L"Demo", addon::MessageBytes("digest-" + std::string(row.name) + ".p7m")),
              StoreResult::Stored);
    EXPECT_EQ(VerifyProductDigest(L"Demo", Anchor().c_str(), ProductFolder::PerUser), row.good) << row.name;
  }
}

TEST_F(ProductStore, AnyChangeOfTheProductShows) {
  ASSERT_EQ(Install(L"Demo", "good"), StoreResult::Stored);
  const WideString data = addon::ProductFile(L"Demo", L"data.txt");
  const auto verify = [] { return VerifyProductDigest(L"Demo", Anchor().c_str(), ProductFolder::PerUser); };
  WriteWhole(data, "data");
  EXPECT_FALSE(verify()) << "no digest yet";
  ASSERT_EQ(StoreProductDigest(L"Demo", addon::MessageBytes("digest-good.p7m")), StoreResult::Stored);
  EXPECT_TRUE(verify());
  for (const char* const changed : {"Data", "dat", "data ", ""}) {
    WriteWhole(data, changed);
    EXPECT_FALSE(verify()) << changed;
  }
  DeleteFileW(data.c_str());
  EXPECT_FALSE(verify()) << "a listed file is gone";
  WriteWhole(data, "data");
  EXPECT_TRUE(verify());
  WriteWhole(addon::ProductFile(L"Demo", L"unlisted.txt"), "more");
  EXPECT_TRUE(verify()) << "a file that nobody signed is not looked at";
  const std::string digest = ReadWhole(addon::ProductFile(L"Demo", L"digest.s"));
  WriteWhole(addon::ProductFile(L"Demo", L"digest.s"), digest.substr(0, digest.size() - 1));
  EXPECT_FALSE(verify());
  EXPECT_FALSE(VerifyProductDigest(L"Demo", nullptr, ProductFolder::PerUser)) << "another anchor";
}

TEST_F(ProductStore, TheMachinesProductsLieBesideThePlayer) {
  EXPECT_EQ(ToUtf8(*ProductExecutablePath(L"Demo", ProductFolder::ProgramFiles)),
            "C:\\Program Files\\Corva\\\\Lumen Player\\\\AddIns\\Demo\\Demo.exe");
  EXPECT_EQ(ToUtf8(*ProductDigestPath(L"Demo", ProductFolder::ProgramFiles)),
            "C:\\Program Files\\Corva\\\\Lumen Player\\\\AddIns\\Demo\\digest.s");
  EXPECT_EQ(*ProductExecutablePath(L"Demo", ProductFolder::PerUser), executable);
  const testing_files::CleanDirectory folder(L"C:\\Program Files\\Corva\\Lumen Player\\AddIns\\Demo");
  WriteWhole(folder.Path() + L"\\Demo.exe", addon::MessageText("program"));
  WriteWhole(folder.Path() + L"\\data.txt", "data");
  WriteWhole(folder.Path() + L"\\digest.s", addon::MessageText("digest-good.p7m"));
  EXPECT_TRUE(VerifyProductDigest(L"Demo", Anchor().c_str(), ProductFolder::ProgramFiles));
  EXPECT_FALSE(VerifyProductDigest(L"Demo", Anchor().c_str(), ProductFolder::PerUser));
}

}  // namespace
