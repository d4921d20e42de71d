// Asks the platform whether a file belongs to an enterprise identity, and to which. The question is asynchronous: it
// runs on the Task worker while the constructor waits. A query that fails leaves the file unprotected; that is settled.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/WideText.h"

// The interface below is all that the file methods use; the rest of the class belongs to the query.
class FileProtection {
 public:
  virtual ~FileProtection() = default;
  [[nodiscard]] virtual bool IsProtected() const = 0;
  // The owning identity, empty when there is none. Valid while this object lives.
  [[nodiscard]] virtual WideView GetIdentity() const = 0;
};
