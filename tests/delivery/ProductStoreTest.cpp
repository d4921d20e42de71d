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
  static StoreResult Install(const wchar_t* name, const std::string& message, const wchar_t* anchor = L"anchor.der") {
    return InstallSignedPackage(name, addon::MessageBytes(message), (addon::Folder(L"messages\\") + anchor).c_str());
  }
  static StoreResult StoreDigest(const std::string& message) {
    return StoreProductDigest(L"Demo", addon::MessageBytes("digest-" + message + ".p7m"));
  }
  static bool Verify(ProductFolder folder = ProductFolder::PerUser) {
    return VerifyProductDigest(L"Demo", addon::Folder(L"messages\\anchor.der").c_str(), folder);
  }

  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  const WideString executable = addon::ProductFile(L"Demo", L"Demo.exe");
  const std::string program = addon::MessageText("program");
};

TEST_F(ProductStore, PackagesAndWhatBecomesOfThem) {
  const struct {
    const char* message;
    StoreResult result;
    std::string content = "(no file)";
    const wchar_t* anchor = L"anchor.der";
  } rows[] = {
      {"good.p7m", StoreResult::Stored, program},
      {"nothing.p7m", StoreResult::Stored, ""},
      {"at-bound.p7m", StoreResult::NotWritten},
      {"below-bound.p7m", StoreResult::Stored, "short"},
      {"too-long.p7m", StoreResult::NotWritten},
      {"cut.p7m", StoreResult::NotWritten},
      {"header.p7m", StoreResult::NotWritten},
      {"corrupt.p7m", StoreResult::NotWritten},
      {"other-magic.p7m", StoreResult::NotTrusted},
      {"empty.p7m", StoreResult::NotTrusted},
      {"untrusted.p7m", StoreResult::NotTrusted},
      {"content", StoreResult::NotTrusted},
      {"good.p7m", StoreResult::NotTrusted, "(no file)", L"stranger.der"},
      {"good.p7m", StoreResult::NotTrusted, "(no file)", L"empty.der"},
      {"good.p7m", StoreResult::NotTrusted, "(no file)", L"none.der"},
  };
  for (const auto& row : rows) {
    // What stood there before goes with a refused package too: the place is emptied before the package is judged.
    ASSERT_EQ(Install(L"Demo", "good.p7m"), StoreResult::Stored);
    EXPECT_EQ(Install(L"Demo", row.message, row.anchor), row.result) << row.message;
    EXPECT_EQ(ReadWhole(executable), row.content) << row.message;
  }
}

TEST_F(ProductStore, WhatTheBuiltInAnchorSignedNeedsNoFile) {
  EXPECT_EQ(InstallSignedPackage(L"DemoAddOn", addon::CommittedBytes("package.p7m"), L""), StoreResult::Stored);
  EXPECT_EQ(StoreProductDigest(L"DemoAddOn", addon::CommittedBytes("digest.p7m")), StoreResult::Stored);
  EXPECT_TRUE(VerifyProductDigest(L"DemoAddOn", nullptr, ProductFolder::PerUser));
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
    EXPECT_EQ(Install(L"Demo", "good.p7m"), StoreResult::NoMemory);
  }
  EXPECT_FALSE(Exists(executable));
  RemoveDirectoryW(addon::ProductFile(L"Demo", L"").c_str());
  EXPECT_EQ(StoreDigest("good"), StoreResult::NotWritten) << "no folder";
  testing_files::MakeDirectories(executable);  // a folder in the executable's place
  EXPECT_EQ(Install(L"Demo", "good.p7m"), StoreResult::NotWritten);
  RemoveDirectoryW(executable.c_str());
  const ImportHook hook(GetModuleHandleW(nullptr), "WriteFile", WriteOneLess);
  EXPECT_EQ(Install(L"Demo", "good.p7m"), StoreResult::NotWritten);
  EXPECT_FALSE(Exists(executable));
  EXPECT_EQ(StoreDigest("good"), StoreResult::NotWritten);
}

TEST_F(ProductStore, DigestsHoldTheProductToWhatWasSigned) {
  ASSERT_EQ(Install(L"Demo", "good.p7m"), StoreResult::Stored);
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

TEST_F(ProductStore, TheMachinesProductsLieBesideThePlayer) {
  EXPECT_EQ(ToUtf8(*ProductDigestPath(L"Demo", ProductFolder::ProgramFiles)),
            "C:\\Program Files\\Corva\\\\Lumen Player\\\\AddIns\\Demo\\digest.s");
  const testing_files::CleanDirectory folder(L"C:\\Program Files\\Corva\\Lumen Player\\AddIns\\Demo");
  WriteWhole(folder.Path() + L"\\Demo.exe", program);
  WriteWhole(folder.Path() + L"\\data.txt", "data");
  WriteWhole(folder.Path() + L"\\digest.s", addon::MessageText("digest-good.p7m"));
  EXPECT_TRUE(Verify(ProductFolder::ProgramFiles));
  EXPECT_FALSE(Verify(ProductFolder::PerUser));
}

}  // namespace
