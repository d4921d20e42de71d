#include <gtest/gtest.h>

#include "host/CommandLine.h"
#include "host/Languages.h"

namespace {

TEST(GalleryLine, TakesALanguageThatThereIs) {
  const struct {
    std::vector<std::string> words;
    uint32_t language;
    bool understood;
  } rows[] = {
      {{"-gallery"}, 0, true},
      {{"-gallery", "de"}, 1031, true},
      {{"/Gallery", "PT-br"}, 1046, true},
      {{"-gallery", "sv", "-log", "a"}, 29, true},
      {{"-gallery", "-log", "a"}, 0, true},
      {{"-gallery", "klingon"}, 0, false},
      {{"-gallery", "de", "fr"}, 1031, false},
  };
  for (const auto& row : rows) {
    const HostCommandLine line = ParseHostCommandLine(row.words);
    EXPECT_EQ(line.command, HostCommand::Gallery);
    EXPECT_EQ(line.language, row.language) << row.words.back();
    EXPECT_EQ(line.error.empty(), row.understood) << row.words.back() << ": " << line.error;
  }
  EXPECT_FALSE(LanguageOfTag(""));
  EXPECT_FALSE(LanguageOfTag("d"));
}

}  // namespace
