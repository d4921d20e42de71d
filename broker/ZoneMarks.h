// Marks a file as having come from the internet, so that the shell warns before it opens it. Nothing is returned: a
// mark that cannot be set must not stop what is being written. COM must be initialised on the calling thread.
#pragma once

class LumenBrokerZoneIdentifier {
 public:
  // Gives the file zone 3, the internet, unless it has a mark already.
  static void Mark(const wchar_t* path);
};

class LumenBrokerAttachmentExecute {
 public:
  // Hands the file to the platform's attachment services as coming from "http://", unless it has a mark already. Those
  // may do more than mark: look for malware, or ask the user.
  static void Mark(const wchar_t* path);
};
