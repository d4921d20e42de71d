#include "removal/ScheduledTask.h"

#include "engine/DllHelpers.h"

namespace {

constexpr UINT kDescriptionId = 170;

}  // namespace

bool ScheduledTask::Done(HRESULT result, ReportCode code) const {
  if (SUCCEEDED(result)) return true;
  Report(host_, Severity::Survived, code, MString::FromNumber(static_cast<int32_t>(result)));
  return false;
}

WideString NotifierTaskDescription() {
  const wchar_t* text = nullptr;
  // With no buffer the platform lends the resource itself, which need not be terminated.
  const int length = LoadStringW(GetModuleHandleW(nullptr), kDescriptionId, reinterpret_cast<wchar_t*>(&text), 0);
  return length > 0 ? WideString(text, static_cast<size_t>(length)) : WideString(L"MISSING LOCALIZATION");
}

std::optional<uint32_t> DrawNumber(uint32_t limit) {
  // The generator's documented export has no name of its own.
  static BoundFunction<BOOLEAN WINAPI(void*, ULONG)> generate(L"advapi32.dll", "SystemFunction036");
  auto* const function = generate.Get();
  uint32_t number = 0;
  if (function == nullptr || !function(&number, sizeof(number))) return std::nullopt;
  return number % limit;
}
