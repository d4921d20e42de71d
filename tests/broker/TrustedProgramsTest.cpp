#include "broker/TrustedPrograms.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(TrustedPrograms, UnderAProgramFolderOrOneOfFourBrowsers) {
  const std::vector<WideString> roots = {L"C:\\Program Files", L"C:\\Program Files (x86)"};
  const std::pair<WideView, bool> rows[] = {
      {L"C:\\Program Files\\Browser\\b.exe", true},
      {L"c:\\program files (X86)\\b.exe", true},
      {L"C:\\Program Files Too\\b.exe", false},
      {L"C:\\Program Files", false},
      {L"C:\\Users\\A\\b.exe", false},
      {L"C:\\Users\\A\\MicrosoftEdge.exe", true},
      {L"D:\\x\\microsoftedgecp.EXE", true},
      {L"C:\\spartan.exe", true},
      {L"C:\\spartan_edge.exe", true},
      {L"C:\\xspartan.exe", false},
      {L"C:\\spartan.exe\\b.exe", false},
      {L"", false},
  };
  for (const auto& [image, trusted] : rows) EXPECT_EQ(IsTrustedProgram(image, roots), trusted) << ToUtf8(image);
  EXPECT_FALSE(IsTrustedProgram(L"C:\\a.exe", std::vector<WideString>{L""}));
}

}  // namespace
