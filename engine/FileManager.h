// The file layer's small abstraction of a file system. Paths are UTF-8 here.
#pragma once

#include <cstdint>
#include <string>

#include "engine/StringVector.h"

namespace SASM {

class FileManager {
 public:
  // Room that a listing starts with.
  static constexpr uint32_t kListingCapacity = 10;

  virtual ~FileManager() = default;

  // Deletes a file or a whole tree without asking. What is not there counts as deleted.
  [[nodiscard]] virtual bool DeletePath(const char* path) = 0;
  // Deletes the files below `directory` whose age in seconds lies between the two limits, both included, and the
  // directories that this leaves empty. False when the directory cannot be walked.
  virtual bool ExpireFiles(const char* directory, uint32_t youngest, uint32_t oldest) = 0;
  // Bytes of a file, or of all files of a tree; 0 when there is none.
  [[nodiscard]] virtual uint64_t GetPathSize(const char* path) = 0;
  // Makes `parent`\`name`; one that exists already is a success.
  [[nodiscard]] virtual bool CreateChildDirectory(const char* parent, const char* name) = 0;
  [[nodiscard]] virtual const char* GetPathSeparator() = 0;
  // Locations, looked up once for the process; empty when the lookup fails. Valid for the life of the process.
  [[nodiscard]] virtual const char* GetAssetCachePath() = 0;
  [[nodiscard]] virtual const char* GetCacheDirectoryPath() = 0;
  [[nodiscard]] virtual const char* GetPlayerDataPath() = 0;
  [[nodiscard]] virtual const char* GetPrivateDataPath() = 0;
  // Adds the names in a directory to `names`, made with kListingCapacity, and sorts them; without "." and "..". False
  // when it cannot be listed.
  [[nodiscard]] virtual bool ListDirectory(const char* directory, StringVector& names) = 0;
};

}  // namespace SASM
