#include "host/ReportTexts.h"

#include "engine/ReportCode.h"

namespace {

struct CodeRow {
  ReportCode code;
  uint32_t id;
};
constexpr CodeRow kTextsOfCodes[] = {
    {ReportCode::ControlNotLoaded, 64}, {ReportCode::RegisterServerMissing, 64}, {ReportCode::RegisterServerFailed, 64},
    {ReportCode::FileNotDeleted, 62},   {ReportCode::SystemFileQueued, 74},      {ReportCode::SystemFileNotRemoved, 74},
    {ReportCode::InstallerBlocked, 65}, {ReportCode::InstallerNeedsRestart, 73},
};

struct TextRow {
  uint32_t id;
  const wchar_t* text;
};
constexpr TextRow kTexts[] = {
    {51, L"No error information is available."},
    {52, L"Fatal error '^'.  No further information is available."},
    {53, L"Error '^'.  No further information is available."},
    {54, L"Warning '^'.  No further information is available."},
    {55, L"Generic info '^'.  No further information is available."},
    {62, L"The file '^' could not be written: permission was refused."},
    {64, L"The control could not be registered: ^"},
    {65, L"The settings manager is open. Close it and try again."},
    {73, L"Restart your computer to complete the installation."},
    {74, L"Restart your computer to complete the removal."},
};

}  // namespace

uint32_t StringIdOf(uint32_t severity, uint32_t code) {
  if (code == 0) return 51;
  for (const CodeRow& row : kTextsOfCodes) {
    if (static_cast<uint32_t>(row.code) == code && severity >= static_cast<uint32_t>(Severity::MustTell)) return row.id;
  }
  if (severity == static_cast<uint32_t>(Severity::Information)) return 55;
  if (severity == static_cast<uint32_t>(Severity::Survived)) return 54;
  return severity == static_cast<uint32_t>(Severity::MustTell) ? 53 : 52;
}

const wchar_t* EnglishText(uint32_t id) {
  for (const TextRow& row : kTexts) {
    if (row.id == id) return row.text;
  }
  return nullptr;
}

MString FillIn(const MString& pattern, uint32_t id, uint32_t code, const MString& text) {
  const bool general = id >= 51 && id <= 55;
  return MString::Replace(pattern, MString(L"^"), general ? MString::FromNumber(code) : text);
}

MString LogLine(const MString& time, uint32_t severity, uint32_t code, const MString& text) {
  MString line = time;
  for (const MString& field : {MString::FromNumber(severity), MString::FromNumber(code), text}) {
    line.Append(MString(L"\t"));
    line.Append(field);
  }
  line.Append(MString(L"\r\n"));
  return line;
}
