#include "host/PayloadCopy.h"

#include "engine/Handles.h"

namespace {

constexpr size_t kBlock = 1 << 20;

uint64_t SizeOf(const WideString& path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return 0;
  return (uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
}

class Copier {
 public:
  Copier(const std::vector<FileToCopy>& all, const CopyProgress& told) : files(all), progress(told) {
    for (const FileToCopy& file : files) total += SizeOf(file.source);
  }

  CopyOutcome Run() {
    for (const FileToCopy& file : files) {
      outcome.error = Copy(file);
      if (outcome.error == ERROR_SUCCESS) continue;
      outcome.failed = file.destination;
      break;
    }
    return outcome;
  }

 private:
  DWORD Copy(const FileToCopy& file) {
    const WideString fresh = file.destination + L".new";
    DWORD error = Write(file, fresh);
    if (error == ERROR_SUCCESS) error = PutInPlace(fresh, file.destination);
    if (error != ERROR_SUCCESS) DeleteFileW(fresh.c_str());
    if (error == ERROR_SUCCESS) progress(done, total, file.destination, true);
    return error;
  }

  DWORD Write(const FileToCopy& file, const WideString& fresh) {
    const FileHandle in(CreateFileW(file.source.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!in) return GetLastError();
    const FileHandle out(CreateFileW(fresh.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    if (!out) return GetLastError();
    std::vector<char> block(kBlock);
    DWORD read = 0;
    DWORD written = 0;
    while (ReadFile(in.Get(), block.data(), static_cast<DWORD>(block.size()), &read, nullptr)) {
      if (read == 0) return ERROR_SUCCESS;
      if (!WriteFile(out.Get(), block.data(), read, &written, nullptr)) return GetLastError();
      done += read;
      progress(done, total, file.destination, false);
    }
    return GetLastError();
  }

  DWORD PutInPlace(const WideString& fresh, const WideString& destination) {
    // An installed file is kept read-only, and stays so when it cannot be replaced.
    const DWORD attributes = GetFileAttributesW(destination.c_str());
    SetFileAttributesW(destination.c_str(), FILE_ATTRIBUTE_NORMAL);
    const DWORD error = Replace(fresh, destination);
    if (error != ERROR_SUCCESS && attributes != INVALID_FILE_ATTRIBUTES) {
      SetFileAttributesW(destination.c_str(), attributes);
    }
    return error;
  }

  DWORD Replace(const WideString& fresh, const WideString& destination) {
    if (MoveFileExW(fresh.c_str(), destination.c_str(), MOVEFILE_REPLACE_EXISTING)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    // A file that is open as a program or library can still be renamed.
    const WideString old = FreeName(destination);
    if (!MoveFileExW(destination.c_str(), old.c_str(), 0)) return error;
    if (!MoveFileExW(fresh.c_str(), destination.c_str(), 0)) {
      const DWORD second = GetLastError();
      MoveFileExW(old.c_str(), destination.c_str(), 0);
      return second;
    }
    if (!DeleteFileW(old.c_str())) {
      MoveFileExW(old.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
      outcome.restartNeeded = true;
    }
    return ERROR_SUCCESS;
  }

  static WideString FreeName(const WideString& destination) {
    WideString name;
    int number = 0;
    do {
      name = destination + L"." + WidenAscii(std::to_string(++number)) + L".old";
    } while (GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES);
    return name;
  }

  const std::vector<FileToCopy>& files;
  const CopyProgress& progress;
  uint64_t done = 0;
  uint64_t total = 0;
  CopyOutcome outcome;
};

}  // namespace

CopyOutcome CopyFiles(const std::vector<FileToCopy>& files, const CopyProgress& progress) {
  return Copier(files, progress).Run();
}
