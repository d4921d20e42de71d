// Files that are there, in use, read-only, denied or wanted: what becomes of each, and what the log says.
#include "install/FileReplacement.h"

#include "tests/install/InstallFixture.h"
#include "tests/support/FaultSteps.h"
#include "tests/support/PlatformCounts.h"

namespace {

constexpr wchar_t kSessionManager[] = L"SYSTEM\\CurrentControlSet\\Control\\Session Manager";
constexpr wchar_t kPending[] = L"PendingFileRenameOperations";

FileHandle Hold(const MString& path, DWORD access, DWORD share) {
  return FileHandle(CreateFileW(path.Data(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

class FileReplacement : public InstallFixture {
 protected:
  void TearDown() override {
    Unqueue();
    InstallFixture::TearDown();
  }
  static void Unqueue() { RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kSessionManager, kPending); }
  // Whether the next start of the system would delete `path`.
  static bool IsQueued(const MString& path) {
    wchar_t pending[4096] = {};
    DWORD bytes = sizeof(pending);
    RegGetValueW(HKEY_LOCAL_MACHINE, kSessionManager, kPending, RRF_RT_ANY, nullptr, pending, &bytes);
    return WideView(pending, std::size(pending)).find(WideString(L"\\??\\") + path.Data()) != WideView::npos;
  }
  static std::string NotDeleted(const MString& path, const char* error) { return "1 1015 " + Text(path) + " " + error; }
};

}  // namespace

TEST_F(FileReplacement, FilesThatCanGoAreDeleted) {
  const MString plain = File("plain.dll");
  const MString readOnly = File("readonly.dll");
  SetFileAttributesW(readOnly.Data(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(ReplaceFile(shim, PathOf("missing.dll"), product_kind::ActiveX), 0u);
  EXPECT_EQ(ReplaceFile(shim, plain, product_kind::ActiveX), 0u);
  EXPECT_EQ(host.Reports(), Lines{});
  EXPECT_EQ(ReplaceFile(shim, readOnly, file_kind::Other), 0u);
  EXPECT_EQ(host.Reports(), Lines{NotDeleted(readOnly, "5")});
  for (const MString& path : {plain, readOnly}) EXPECT_FALSE(testing_files::Exists(path.Data())) << Text(path);
}

TEST_F(FileReplacement, FileInUseIsQueuedUnlessItIsAFreshPartOfItsKind) {
  shim->AddExtraActiveXFile(L"Control.ocx");
  shim->AddExtraPluginFile(L"plugin.dll");
  shim->AddExtraPepperFile(L"pepper.dll");
  struct {
    const char* name;
    uint32_t kind;
    bool queued;
  } const rows[] = {
      {"MyControl.ocx", product_kind::ActiveX, false}, {"plugin.dll", product_kind::Plugin, false},
      {"pepper.dll", product_kind::Pepper, false},     {"Control.ocx", product_kind::Plugin, true},
      {"control.ocx", product_kind::ActiveX, true},    {"nplumen.dll", file_kind::ServerFile, true},
  };
  for (const auto& row : rows) {
    Unqueue();
    host.Forget();
    const bool loaded = row.kind == file_kind::ServerFile;
    const MString path = loaded ? Player(row.name) : File(row.name);
    const LibraryHandle program(loaded ? LoadLibraryW(path.Data()) : nullptr);
    const FileHandle user = Hold(path, GENERIC_READ, FILE_SHARE_READ | (loaded ? FILE_SHARE_DELETE : 0));
    EXPECT_EQ(ReplaceFile(shim, path, row.kind), loaded ? 5u : 32u) << row.name;
    EXPECT_EQ(IsQueued(path), row.queued) << row.name << " " << row.kind;
    const std::string report = NotDeleted(path, loaded ? "5" : "20");
    EXPECT_EQ(host.Reports(),
              row.kind == product_kind::ActiveX ? (Lines{report, "0 18", report}) : (Lines{report, report}));
  }
}

// A file that is denied exists, one that nobody else may read does not. Error 2 of the deletion ends the matter; after
// any other a second try decides.
TEST_F(FileReplacement, FirstErrorsDecideHowFarItGoes) {
  const MString path = File("file.dll");
  const std::string at = Text(path);
  const Lines toTheEnd = {"open " + at, "delete " + at, "attributes " + at, "delete " + at};
  struct {
    size_t failing;
    DWORD error;
    uint32_t result;
    Lines steps, reports;
  } const rows[] = {
      {1, 32, 0, {"open " + at}, {}},
      {1, 5, 0, {"open " + at, "delete " + at}, {}},
      {2, 2, 2, {"open " + at, "delete " + at}, {NotDeleted(path, "2")}},
      {2, 32, 0, toTheEnd, {NotDeleted(path, "20")}},
  };
  FaultSteps faults;
  for (const auto& row : rows) {
    (void)File("file.dll");
    host.Forget();
    uint32_t result = 99;
    EXPECT_EQ(faults.Run(
                  row.failing, [&] { result = ReplaceFile(shim, path, file_kind::Other); }, row.error),
              row.steps);
    EXPECT_EQ(result, row.result) << row.failing << " " << row.error;
    EXPECT_EQ(host.Reports(), row.reports) << row.failing << " " << row.error;
  }
}

TEST_F(FileReplacement, LockedMeansReadableAndNotWritable) {
  const MString path = File("applet.cpl", 3);
  const MString empty = File("empty.cpl", 0);
  struct {
    const char* why;
    MString path;
    uint32_t flags;
    DWORD share;  // of a program that reads the file
    FileLock lock;
  } const rows[] = {
      {"in use for reading", path, 512 | 8, FILE_SHARE_READ, FileLock::Locked},
      {"in use and empty", empty, 512, FILE_SHARE_READ, FileLock::LockedAndEmpty},
      {"without the flag", path, 511, FILE_SHARE_READ, FileLock::Free},
      {"shared for writing", path, 512, FILE_SHARE_READ | FILE_SHARE_WRITE, FileLock::Free},
      {"missing", PathOf("missing"), 512, 0, FileLock::Free},
  };
  for (const auto& row : rows) {
    host.Forget();
    const FileHandle user = Hold(row.path, GENERIC_READ, row.share);
    EXPECT_EQ(TestFileLocked(&host, row.flags, row.path), row.lock) << row.why;
    Lines reports = {"0 20 " + Text(row.path)};
    if (row.lock == FileLock::LockedAndEmpty) reports.push_back("1 1046 " + Text(row.path));
    EXPECT_EQ(host.Reports(), reports) << row.why;
  }
}

TEST_F(FileReplacement, TestingAndReplacingLeavesNoHandle) {
  const MString path = File("file.dll");
  const FileHandle user = Hold(path, GENERIC_READ, FILE_SHARE_READ);
  EXPECT_TRUE(LeavesNothing(8, [&](int) {
    (void)TestFileLocked(&host, kTestLock, path);
    (void)ReplaceFile(shim, path, product_kind::Plugin);
    (void)RemoveSystemFile(&host, path);
  }));
}

// What becomes of one that cannot go is shown where a kind is removed.
TEST_F(FileReplacement, SystemFileStaysWhileAnyKindIsInstalled) {
  const MString path = File("LumenPlayerCPLApp.cpl");
  for (const uint32_t kind : kAllKinds) {
    ClearMachine();
    EXPECT_TRUE(shim->RegisterProduct(kind, Player("LumenPlayer.ocx"), PathOf("u.exe"), L"", 0));
    EXPECT_TRUE(RemoveSystemFile(&host, path));
    EXPECT_EQ(host.Reports().size(), 2u) << "each kind that is not installed is told of";
    host.Forget();
    EXPECT_TRUE(testing_files::Exists(path.Data()));
    SetFileAttributesW(PathOf("LumenPlayer.ocx").Data(), 0);
  }
  ClearMachine();
  host.controlPanelAppletName = L"LumenPlayerCPLApp.cpl";
  SetNumber(kAppletCategory, "C:\\windows\\system32\\LumenPlayerCPLApp.cpl", 1);
  EXPECT_TRUE(RemoveSystemFile(&host, PathOf("missing.cpl"))) << "gone, and what is remembered goes too";
  EXPECT_FALSE(RemoveSystemFile(&host, path)) << "nothing is remembered";
  EXPECT_FALSE(testing_files::Exists(path.Data()));
  RegDeleteTreeA(HKEY_LOCAL_MACHINE, kAppletCategory);
}
