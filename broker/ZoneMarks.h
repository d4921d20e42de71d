// Marks a file as having come from the internet, so that the shell warns before it opens it. Results are ignored by the
// callers: a mark that cannot be set must not stop a download. Each runs under a COM initialiser of its own.
#pragma once

class LumenBrokerZoneIdentifier {
 public:
  // Gives the file zone 3 unless it already has a mark. COM must be initialised on the calling thread.
  static void Mark(const wchar_t* path);
};

class LumenBrokerAttachmentExecute {
 public:
  // Hands the file to the platform's attachment services with an unknown internet source, unless it has a mark.
  static void Mark(const wchar_t* path);
};
