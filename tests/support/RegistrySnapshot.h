// What stands in the registry, as lines of text, and what an operation changed. Shared by the tests of installing and
// removing; golden texts in tests/data hold such changes.
//
//     const RegistrySnapshot before;
//     ... the operation ...
//     ExpectGolden("registered-plugin.txt", RegistrySnapshot().Since(before));
#pragma once

#include <set>
#include <string>

#include "tests/support/Texts.h"

class RegistrySnapshot {
 public:
  // Reads the software of the machine and of the user, the session manager's values and the services.
  RegistrySnapshot();
  // "+ line" for what is new and "- line" for what has gone since `before`, in order of the keys. A key is a line of
  // its own: "HKLM\Software\Key"; a value adds " | name = data", texts in quotation marks, numbers in decimal, of
  // other types the number and the size.
  [[nodiscard]] Lines Since(const RegistrySnapshot& before) const;

 private:
  std::set<std::string> lines_;
};

// Fails the test unless `lines` are those of tests/data/`file`; the failure shows what the file would have to hold.
// Blank lines and lines that begin with "#" do not count.
void ExpectGolden(const std::string& file, const Lines& lines);
