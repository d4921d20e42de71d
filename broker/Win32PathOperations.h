// The platform behind the path policy. Functions are reached through the helpers that it holds, so that a system
// without one of them answers like a refusal.
#pragma once

#include "broker/PathOperations.h"
#include "engine/DllHelpers.h"

class Win32PathOperations final : public PathOperations {
 public:
  std::optional<WideString> FullPath(WideView path) override;
  std::optional<WideString> UpperCase(WideView text) override;
  std::optional<uint32_t> Attributes(WideView path) override;
  std::optional<uint32_t> AttributesEx(WideView path) override;
  std::optional<WideString> LongPath(WideView path) override;
  std::optional<WideString> ObjectLinkTarget(WideView objectPath) override;
  std::optional<std::vector<uint8_t>> ReadReparsePoint(WideView path) override;
  std::optional<WideString> Folder(ShellFolder folder) override;
  std::optional<WideString> TempPath() override;

  // For the methods that act on a path once it has been judged.
  [[nodiscard]] const Kernel32DllHelper& Kernel() const { return kernel32; }

 private:
  Kernel32DllHelper kernel32;
  User32DllHelper user32;
  Shell32DllHelper shell32;
  VersionDllHelper version;
};
