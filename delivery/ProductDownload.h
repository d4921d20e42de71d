// One piece of an add-on product on its way from the vendor's servers: opened, read on call by call, then stored or
// dropped. The whole response is held in memory, and the server's content length alone decides how much that is.
// Every call blocks for as long as the network does. The broker's thread only.
#pragma once

#include <windows.h>

#include <wininet.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "delivery/DownloadSession.h"
#include "delivery/ProductStore.h"
#include "engine/Handles.h"

struct InternetTraits {
  using Value = HINTERNET;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value handle) { return handle != nullptr; }
  static void Close(Value handle) { InternetCloseHandle(handle); }
};
using InternetHandle = handles::Owner<InternetTraits>;

class ProductDownload final : public DownloadSessionBase {
 public:
  ~ProductDownload() override { Close(); }

  // Sends the request. True when the server answers with a status below 400 and a content length, and there is memory
  // for that. On failure everything is closed again. `url` is terminated; a foreign address, or one with control
  // bytes, is not asked at all.
  [[nodiscard]] bool Open(const wchar_t* url);
  // Reads once, 65,536 bytes at most. A read of nothing is a success that moves nothing: that is how a broken
  // connection looks, and the caller decides how long to go on.
  [[nodiscard]] bool ReadOn();
  // Hands all of the buffer on, read or not, as the package of `name` or, with "DIGEST#" before it, as its digest; then
  // closes the download.
  [[nodiscard]] StoreResult Store(const wchar_t* name, const wchar_t* overridePath);
  // Closes the request, the connection and the session in this order, and frees the buffer. Safe to call again.
  void Close();

  [[nodiscard]] uint32_t Received() const { return received; }
  [[nodiscard]] uint32_t Total() const { return total; }

 private:
  [[nodiscard]] bool SendRequest(const char* url);
  [[nodiscard]] bool ReadAnswer();

  InternetHandle internetHandle;
  InternetHandle connectionHandle;
  InternetHandle requestHandle;
  uint32_t received = 0;
  uint32_t total = 0;
  struct FreeMemory {
    void operator()(uint8_t* memory) const { std::free(memory); }
  };
  std::unique_ptr<uint8_t[], FreeMemory> buffer;  // `total` bytes
};
