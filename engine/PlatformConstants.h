// The few platform values that portable code needs; the same numbers as <windows.h>, checked against it where both
// meet.
#pragma once

#include <cstdint>

// HRESULTs as portable code spells them. Named in a namespace because the platform's own names are macros.
using Result = int32_t;

namespace result {
constexpr Result Ok = 0;
constexpr Result False = 1;
constexpr Result Fail = static_cast<Result>(0x80004005);
constexpr Result NotImplemented = static_cast<Result>(0x80004001);
constexpr Result NoInterface = static_cast<Result>(0x80004002);
constexpr Result InvalidArgument = static_cast<Result>(0x80070057);
constexpr Result AccessDenied = static_cast<Result>(0x80070005);
constexpr Result OutOfMemory = static_cast<Result>(0x8007000E);
constexpr Result CallRefused = static_cast<Result>(0x80010010);
}  // namespace result

constexpr bool Failed(Result value) {
  return value < 0;
}

// A platform error as an HRESULT: zero or below stands for itself, a positive error keeps its low 16 bits and gains the
// facility of platform errors. Every broker method reports this way.
constexpr Result HresultFromError(int32_t error) {
  if (error <= 0) return error;
  return static_cast<Result>((static_cast<uint32_t>(error) & 0xFFFF) | 0x80070000u);
}

// Shell folder numbers, the platform's CSIDL values.
enum class ShellFolder : int32_t {
  Desktop = 16,
  RoamingAppData = 26,
  LocalAppData = 28,
  Windows = 36,
  System = 37,
  ProgramFiles = 38,
  SystemX86 = 41,
  ProgramFilesX86 = 42,
};

namespace error {
constexpr uint32_t Success = 0;
constexpr uint32_t FileNotFound = 2;
constexpr uint32_t PathNotFound = 3;
constexpr uint32_t AccessDenied = 5;
constexpr uint32_t NoMoreFiles = 18;
constexpr uint32_t SharingViolation = 32;
constexpr uint32_t InvalidParameter = 87;
constexpr uint32_t InsufficientBuffer = 122;
constexpr uint32_t AlreadyExists = 183;
}  // namespace error

constexpr uint32_t kInvalidAttributes = 0xFFFFFFFF;
constexpr uint32_t kAttributeDirectory = 0x10;
constexpr uint32_t kAttributeReparsePoint = 0x400;
