// One of the product's two services, for a step that stops it, runs its executable or deletes it.
#pragma once

#include <memory>

#include "engine/MString.h"

class HostCallbacks;

// Made for one step and freed with it.
struct ServiceRunner {
  HostCallbacks* host;     // told of failures; not owned, may be null
  MString executablePath;  // as it goes on a command line: not quoted
  MString serviceName;     // what the service manager knows it by
  MString displayName;
};

constexpr wchar_t kUpdateServiceName[] = L"CorvaLumenPlayerUpdateSvc";
constexpr wchar_t kUpdateServiceDisplayName[] = L"Corva Lumen Player Update Service";
constexpr wchar_t kFeedbackServiceName[] = L"CorvaLumenPlayerFeedbackSvc";
constexpr wchar_t kFeedbackServiceDisplayName[] = L"Corva Lumen Player Feedback Service";

[[nodiscard]] inline std::unique_ptr<ServiceRunner> UpdateServiceRunner(HostCallbacks* host, const MString& path) {
  return std::make_unique<ServiceRunner>(
      ServiceRunner{host, path, MString(kUpdateServiceName), MString(kUpdateServiceDisplayName)});
}
[[nodiscard]] inline std::unique_ptr<ServiceRunner> FeedbackServiceRunner(HostCallbacks* host, const MString& path) {
  return std::make_unique<ServiceRunner>(
      ServiceRunner{host, path, MString(kFeedbackServiceName), MString(kFeedbackServiceDisplayName)});
}
