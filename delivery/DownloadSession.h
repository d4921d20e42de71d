// A download under way, as far as the cookie table has to know it: destroying the session ends it.
#pragma once

class DownloadSessionBase {
 public:
  DownloadSessionBase() = default;
  DownloadSessionBase(const DownloadSessionBase&) = delete;
  DownloadSessionBase& operator=(const DownloadSessionBase&) = delete;
  virtual ~DownloadSessionBase() = default;
};
