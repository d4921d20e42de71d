// The file manager of this platform. It also holds the one setting that the machine's configuration decides.
#pragma once

#include "engine/FileManager.h"

namespace SASM {

class WindowsFileManager final : public FileManager {
 public:
  // Reads "EnableLocalAppData" from the system configuration file.
  WindowsFileManager();

  [[nodiscard]] bool DeletePath(const char* path) override;
  bool ExpireFiles(const char* directory, uint32_t youngest, uint32_t oldest) override;
  [[nodiscard]] uint64_t GetPathSize(const char* path) override;
  [[nodiscard]] bool CreateChildDirectory(const char* parent, const char* name) override;
  [[nodiscard]] const char* GetPathSeparator() override { return "\\"; }
  [[nodiscard]] const char* GetAssetCachePath() override;
  [[nodiscard]] const char* GetCacheDirectoryPath() override;
  [[nodiscard]] const char* GetPlayerDataPath() override;
  [[nodiscard]] const char* GetPrivateDataPath() override;
  [[nodiscard]] bool ListDirectory(const char* directory, StringVector& names) override;

  [[nodiscard]] bool EnableLocalAppData() const { return enableLocalAppData != 0; }

 private:
  uint8_t enableLocalAppData;
};

// Whether the shell's delete operation did its duty: done, or nothing was there in any of the ways it says so.
[[nodiscard]] bool IsDeleteSuccess(int shellResult);

}  // namespace SASM
