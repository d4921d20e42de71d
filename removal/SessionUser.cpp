#include "removal/SessionUser.h"

#include <windows.h>

#include <wtsapi32.h>

#include <cstdint>
#include <cstring>
#include <optional>

#include "engine/DllHelpers.h"
#include "engine/Reporting.h"

namespace {

class WtsDllHelper final : public DynamicLoadLibraryHelper {
 public:
  WtsDllHelper() : DynamicLoadLibraryHelper("wtsapi32.dll", true, false) {
    Bind(WTSFreeMemory, "WTSFreeMemory");
    Bind(WTSQuerySessionInformationW, "WTSQuerySessionInformationW");
    Bind(WTSQuerySessionInformationA, "WTSQuerySessionInformationA");
    Bind(WTSEnumerateSessionsA, "WTSEnumerateSessionsA");
  }

  decltype(::WTSFreeMemory)* WTSFreeMemory = nullptr;
  decltype(::WTSQuerySessionInformationW)* WTSQuerySessionInformationW = nullptr;
  decltype(::WTSQuerySessionInformationA)* WTSQuerySessionInformationA = nullptr;
  decltype(::WTSEnumerateSessionsA)* WTSEnumerateSessionsA = nullptr;
};

// What a session function allocated.
template <class T>
class WtsMemory {
 public:
  explicit WtsMemory(const WtsDllHelper& wts) : wts_(wts) {}
  ~WtsMemory() {
    if (memory_ != nullptr) wts_.WTSFreeMemory(memory_);
  }
  WtsMemory(const WtsMemory&) = delete;
  WtsMemory& operator=(const WtsMemory&) = delete;
  T** Receive() { return &memory_; }
  T* Get() const { return memory_; }

 private:
  const WtsDllHelper& wts_;
  T* memory_ = nullptr;
};

class SessionSearch {
 public:
  SessionSearch(const WtsDllHelper& wts, HostCallbacks* host) : wts_(wts), host_(host) {}

  // The last active session; 0 when none is. A session whose state cannot be asked leaves its own number in place, so
  // that when it is the last one the names are asked of it.
  DWORD FindSession() {
    WtsMemory<WTS_SESSION_INFOA> sessions(wts_);
    DWORD count = 0;
    if (wts_.WTSEnumerateSessionsA(WTS_CURRENT_SERVER_HANDLE, 0, 1, sessions.Receive(), &count)) {
      Report(host_, Severity::Information, ReportCode::SessionsCounted, ErrorAlone(count));
    } else {
      Note(ReportCode::SessionsNotListed, GetLastError());
      count = 0;
    }
    for (DWORD i = 0; i < count; ++i) Examine(sessions.Get()[i].SessionId);
    Note(ReportCode::SessionUsed, working_);
    return working_;
  }

  // A name of the session; empty when the platform answers with an error, which is reported as `code`.
  std::optional<WideString> Name(DWORD session, WTS_INFO_CLASS what, ReportCode code) const {
    WtsMemory<wchar_t> name(wts_);
    DWORD bytes = 0;
    // The function's own result counts for nothing here, its error does; one that was there before must not.
    SetLastError(ERROR_SUCCESS);
    wts_.WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, session, what, name.Receive(), &bytes);
    const DWORD error = GetLastError();
    if (error != ERROR_SUCCESS) {
      Note(code, error);
      return std::nullopt;
    }
    return name.Get() == nullptr ? WideString() : WideString(name.Get());
  }

  void Note(ReportCode code, uint32_t number) const { Report(host_, Severity::Survived, code, ErrorAlone(number)); }

 private:
  void Examine(DWORD session) {
    working_ = session;
    const std::optional<uint32_t> state = StateOf(session);
    if (!state) return;
    Note(ReportCode::SessionExamined, session);
    if (*state == WTSActive) {
      chosen_ = session;
      Note(ReportCode::SessionActive, session);
    } else {
      Note(ReportCode::SessionNotActive, chosen_);
      working_ = chosen_;
    }
  }

  std::optional<uint32_t> StateOf(DWORD session) const {
    WtsMemory<char> answer(wts_);
    DWORD bytes = 0;
    if (!wts_.WTSQuerySessionInformationA(WTS_CURRENT_SERVER_HANDLE, session, WTSConnectState, answer.Receive(),
                                          &bytes)) {
      Note(ReportCode::SessionStateNotRead, GetLastError());
      return std::nullopt;
    }
    uint32_t state = UINT32_MAX;  // an answer too short to hold one is no active state
    if (answer.Get() != nullptr && bytes >= sizeof(state)) std::memcpy(&state, answer.Get(), sizeof(state));
    return state;
  }

  const WtsDllHelper& wts_;
  HostCallbacks* host_;
  DWORD working_ = 0;
  DWORD chosen_ = 0;
};

}  // namespace

WideString FindSessionUser(HostCallbacks* host, size_t capacity) {
  const WtsDllHelper wts;
  if (!wts.IsAvailable()) return {};
  SessionSearch search(wts, host);
  const DWORD session = search.FindSession();
  const auto user = search.Name(session, WTSUserName, ReportCode::SessionUserNotRead);
  // Without a user the domain is not asked for.
  const auto domain =
      user ? search.Name(session, WTSDomainName, ReportCode::SessionDomainNotRead) : std::optional<WideString>();
  const size_t room = capacity - 1;  // for the names, the backslash between them included
  if (user && domain && !user->empty() && !domain->empty() && user->size() + domain->size() < room) {
    return *domain + L"\\" + *user;
  }
  if (user && !user->empty() && user->size() < room) {
    Report(host, Severity::Survived, ReportCode::TaskUserWithoutDomain);
    return *user;
  }
  Report(host, Severity::Survived, ReportCode::TaskUserUnknown);
  return {};
}
