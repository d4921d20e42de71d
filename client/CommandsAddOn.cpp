// Commands on add-on products: addon install, version, running, launch.
#include <windows.h>

#include "client/AddOnTexts.h"
#include "client/Command.h"

namespace {

constexpr uint32_t kPatience = 30000;   // milliseconds without a byte before a download is given up
constexpr DWORD kStandstillPause = 10;  // reads of nothing return at once

// One line that is rewritten while something grows, where somebody watches; elsewhere its last state only.
class Progress {
 public:
  Progress(const Context& context, std::string_view label)
      : label_(label),
        shown_(!context.json && !context.silent),
        live_(GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_CHAR) {}

  void Show(ULONG done, ULONG total) const {
    if (shown_ && live_) Print("\r" + ProgressLine(label_, done, total));
  }
  void Finish(ULONG done, ULONG total) const {
    if (shown_) Print((live_ ? "\r" : "") + ProgressLine(label_, done, total) + "\n");
  }

 private:
  std::string_view label_;
  bool shown_;
  bool live_;
};

// Reads on until all is there. E_ABORT when nothing came for `patience` milliseconds: the broker has no limit of its
// own.
HRESULT ReadAll(ILumenBroker6* broker, ULONG cookie, uint32_t patience, const Progress& progress, ULONG& length) {
  ULONG position = 0;
  DWORD moved = GetTickCount();
  for (;;) {
    const ULONG before = position;
    const HRESULT read = broker->BrokerLMUpdateDownload(cookie, &position, &length);
    if (FAILED(read)) return read;
    progress.Show(position, length);
    if (position == length) return S_OK;
    if (position != before) {
      moved = GetTickCount();
    } else if (GetTickCount() - moved >= patience) {
      return E_ABORT;
    } else {
      Sleep(kStandstillPause);
    }
  }
}

// Downloads one piece of a product and has it stored under `name`.
Outcome Fetch(Context& context, std::string_view label, const std::string& url, const std::string& name,
              uint32_t patience) {
  ULONG cookie = 0;
  const BString address(WideView(FromUtf8(url)));
  const HRESULT opened = context.broker->BrokerLMOpenDownload(address.Get(), &cookie);
  if (FAILED(opened)) return {ExitCode::Refused, opened, std::string(label) + ": the broker will not fetch " + url};

  const Progress progress(context, label);
  ULONG length = 0;
  ULONG code = 0;
  const HRESULT read = ReadAll(context.broker, cookie, patience, progress, length);
  const BString stored = SUCCEEDED(read) ? BString(WideView(FromUtf8(name))) : BString();
  const HRESULT closed = context.broker->BrokerLMCloseDownload(cookie, stored.Get(), &code);
  if (FAILED(read)) return {ExitCode::Refused, read, std::string(label) + ": the server stopped sending"};
  if (FAILED(closed)) return Outcome::Of(closed);
  progress.Finish(length, length);
  if (context.json) {
    Print(JsonObject().Text("piece", label).Text("url", url).Number("size", length).Number("result", code).Close() +
          "\n");
  }
  if (code != 0) return {ExitCode::Refused, E_FAIL, std::string(label) + " " + std::string(DescribeStoreResult(code))};
  return Outcome::Of(S_OK);
}

Outcome Install(Context& context) {
  const std::string& url = context.arguments.Positional()[0];
  const std::string& name = context.arguments.Positional()[1];
  const uint32_t patience = context.arguments.Number("--patience", kPatience).value_or(kPatience);
  Outcome package = Fetch(context, "package", url, name, patience);
  if (package.code != ExitCode::Done) return package;
  const std::string digest = context.arguments.Value("--digest").value_or(DigestUrlBeside(url));
  return Fetch(context, "digest", digest, "DIGEST#" + name, patience);
}

Outcome ShowVersion(Context& context) {
  ULONG high = 0;
  ULONG low = 0;
  const BString name = TextArgument(context, 0);
  const HRESULT result = context.broker->BrokerLMGetVersion(name.Get(), &high, &low);
  if (FAILED(result)) return Outcome::Of(result);
  const std::string version = VersionText(high, low);
  if (!context.silent) Print(context.json ? JsonObject().Text("version", version).Close() + "\n" : version + "\n");
  return Outcome::Of(result);
}

Outcome ShowRunning(Context& context) {
  const BString name = TextArgument(context, 0);
  const HRESULT result = context.broker->BrokerLMIsRunning(name.Get());
  if (SUCCEEDED(result) && !context.silent) {
    const bool running = result == S_OK;
    Print(context.json ? JsonObject().Flag("running", running).Close() + "\n"
          : running    ? "running\n"
                       : "not running\n");
  }
  return Outcome::Of(result);
}

Outcome Launch(Context& context) {
  const BString name = TextArgument(context, 0);
  const BString parameters = context.arguments.Positional().size() > 1 ? TextArgument(context, 1) : BString();
  return Outcome::Of(context.broker->BrokerLMLaunch(name.Get(), parameters.Get()));
}

Outcome UsageOf(std::string wrong) {
  return wrong.empty() ? Outcome() : Outcome::BadUsage(std::move(wrong));
}

Outcome CheckInstall(const Arguments& arguments, bool /*openFiles*/) {
  if (!arguments.Number("--patience", kPatience)) return Outcome::BadUsage("--patience wants a number");
  for (const std::string& url : {arguments.Positional()[0], arguments.Value("--digest").value_or("http://")}) {
    if (std::string wrong = CheckDownloadUrl(url); !wrong.empty()) return Outcome::BadUsage(std::move(wrong));
  }
  return UsageOf(CheckProductName(arguments.Positional()[1]));
}

Outcome CheckName(const Arguments& arguments, bool /*openFiles*/) {
  return UsageOf(CheckProductName(arguments.Positional()[0]));
}

}  // namespace

std::span<const Command> AddOnCommands() {
  static const std::vector<Command> commands = {
      {"addon install",
       "URL NAME [--digest URL] [--patience MS]",
       "download a product's package and its digest, and store both",
       "The digest is fetched from beside the package, as digest.s, unless --digest names it. A download that brings\n"
       "nothing for MS milliseconds (30000) is given up. What is signed by another than the trusted authority is "
       "refused.",
       {{"--digest", true}, {"--patience", true}},
       2,
       2,
       Install,
       CheckInstall},
      {"addon version",
       "NAME",
       "show an installed product's version",
       "Refused when a file of the product is not as it was signed.",
       {},
       1,
       1,
       ShowVersion,
       CheckName},
      {"addon running", "NAME", "tell whether a product runs", "", {}, 1, 1, ShowRunning, CheckName},
      {"addon launch",
       "NAME [PARAMETERS]",
       "start a product and wait until it is ready",
       "PARAMETERS are one argument: the product's whole command line; put -- in front of one that begins with a "
       "dash.\nRefused like version.",
       {},
       1,
       2,
       Launch,
       CheckName},
  };
  return commands;
}
