// What a report to the host is about: how grave it is and what failed. The host maps both to text.
#pragma once

#include <cstdint>

enum class Severity : uint32_t {
  Information = 0,
  Survived = 1,  // a failure that was logged and survived
  MustTell = 2,  // a failure that the user must be told of; the failure panel looks for these
};
