// Commands that show the broker's file dialogs: open-dialog, save-dialog.
#include <windows.h>

#include <charconv>
#include <cstring>

#include "client/Command.h"
#include "client/HresultNames.h"

namespace {

constexpr ULONG kMultiple = 0x200;      // FOS_ALLOWMULTISELECT
constexpr ULONG kAskToOverwrite = 0x2;  // FOS_OVERWRITEPROMPT

// A window handle, decimal or hexadecimal behind "0x"; nothing when it is neither.
std::optional<ULONG> ParseWindow(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x");
  if (hexadecimal) text.remove_prefix(2);
  ULONG value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

Outcome CheckDialog(const Arguments& arguments, bool /*openFiles*/) {
  if (arguments.Positional().size() % 2 != 0) return Outcome::BadUsage("filters come as a name and a pattern each");
  if (!arguments.AreNumbers({"--flags"})) return Outcome::BadUsage("--flags wants a number");
  const auto owner = arguments.Value("--owner");
  return !owner || ParseWindow(*owner) ? Outcome() : Outcome::BadUsage("--owner wants a window handle");
}

// The window that owns the dialog: the caller's, or one of this program's that nobody sees.
class Owner {
 public:
  explicit Owner(const Arguments& arguments) {
    if (const auto given = arguments.Value("--owner")) {
      value_ = ParseWindow(*given).value_or(0);
      return;
    }
    own_ = CreateWindowExW(WS_EX_TOOLWINDOW, L"Static", L"lumenctl", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                           nullptr);
    value_ = static_cast<ULONG>(reinterpret_cast<uintptr_t>(own_));
  }
  ~Owner() {
    if (own_ != nullptr) DestroyWindow(own_);
  }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;
  [[nodiscard]] ULONG Value() const { return value_; }

 private:
  HWND own_ = nullptr;
  ULONG value_ = 0;
};

SAFEARRAY* MakeArray(const void* bytes, size_t size) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
  void* data = nullptr;
  if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &data))) {
    if (size > 0) std::memcpy(data, bytes, size);
    SafeArrayUnaccessData(array);
  }
  return array;
}

// The filters of a command line as the broker takes them: one text, each field ended by "\0", backslashes doubled.
class Filters {
 public:
  explicit Filters(const std::vector<std::string>& words) : pairs_(static_cast<ULONG>(words.size() / 2)) {
    if (words.empty()) return;
    WideString text;
    for (const std::string& word : words) {
      for (const wchar_t c : FromUtf8(word)) text.append(c == L'\\' ? 2 : 1, c);
      text += L"\\0";
    }
    length_ = static_cast<ULONG>((text.size() + 1) * sizeof(wchar_t));
    array_ = MakeArray(text.c_str(), length_);
  }
  ~Filters() {
    if (array_ != nullptr) SafeArrayDestroy(array_);
  }
  Filters(const Filters&) = delete;
  Filters& operator=(const Filters&) = delete;
  [[nodiscard]] ULONG Pairs() const { return pairs_; }
  [[nodiscard]] ULONG Length() const { return length_; }
  [[nodiscard]] SAFEARRAY* Array() const { return array_; }

 private:
  ULONG pairs_;
  ULONG length_ = 0;
  SAFEARRAY* array_ = nullptr;
};

void ShowPath(const Context& context, const std::string& path) {
  if (context.json)
    Print(JsonObject().Text("path", path).Close() + "\n");
  else if (!context.silent)
    Print(path + "\n");
}

// What was chosen, one full path after the other: several come as their directory with the names behind it.
void ShowChosen(const Context& context, SAFEARRAY* chosen) {
  const auto* const entries = static_cast<const VARIANT*>(chosen->pvData);
  const ULONG count = chosen->rgsabound[0].cElements;
  const auto text = [entries](ULONG i) { return entries[i].vt == VT_BSTR ? ToUtf8(entries[i].bstrVal) : ""; };
  if (count == 1) ShowPath(context, text(0));
  for (ULONG i = 1; i < count; ++i) ShowPath(context, text(0) + text(i));
}

Outcome OpenDialog(Context& context) {
  const Owner owner(context.arguments);
  const Filters filters(context.arguments.Positional());
  const ULONG flags = *context.arguments.Number("--flags", 0) | (context.arguments.Has("--multiple") ? kMultiple : 0);
  VARIANT chosen;
  VariantInit(&chosen);
  const HRESULT result = context.broker->BrokerOpenDialog(owner.Value(), filters.Pairs(), filters.Length(),
                                                          filters.Array(), flags, &chosen);
  if (SUCCEEDED(result) && chosen.vt == (VT_ARRAY | VT_VARIANT)) ShowChosen(context, chosen.parray);
  VariantClear(&chosen);
  return Outcome::Of(result);
}

HRESULT WriteText(ILumenBroker6* broker, ULONG cookie, const std::string& text) {
  SAFEARRAY* const array = MakeArray(text.data(), text.size());
  if (array == nullptr) return E_OUTOFMEMORY;
  ULONG written = 0;
  const HRESULT result = broker->BrokerWriteFile(cookie, array, &written);
  SafeArrayDestroy(array);
  return result;
}

Outcome SaveDialog(Context& context) {
  const Owner owner(context.arguments);
  const Filters filters(context.arguments.Positional());
  WideString name = FromUtf8(context.arguments.Value("--name").value_or(""));
  ULONG cookie = 0;
  BString path;
  HRESULT result =
      context.broker->BrokerSaveDialog2(owner.Value(), name.data(), filters.Pairs(), filters.Length(), filters.Array(),
                                        *context.arguments.Number("--flags", kAskToOverwrite), &cookie, path.Receive());
  if (FAILED(result)) return Outcome::Of(result);
  ShowPath(context, ToUtf8(path.View()));
  if (const auto text = context.arguments.Value("--text")) result = WriteText(context.broker, cookie, *text);
  const HRESULT closed = context.broker->BrokerCloseHandle(cookie);
  return Outcome::Of(FAILED(result) ? result : closed);
}

}  // namespace

std::span<const Command> DialogCommands() {
  static const std::vector<Command> commands = {
      {"open-dialog",
       "[NAME PATTERN]... [--multiple] [--flags N] [--owner WINDOW]",
       "let the user choose files to open, and show their paths",
       "NAME and PATTERN are filters, as in \"Text files\" \"*.txt;*.log\". --flags adds up the platform's options of "
       "a\n"
       "file dialog. WINDOW is the handle of the dialog's owner; it must belong to a program below the folders of\n"
       "installed programs. Without it lumenctl owns the dialog, and must itself lie there.",
       {{"--multiple"}, {"--flags", true}, {"--owner", true}},
       0,
       SIZE_MAX,
       OpenDialog,
       CheckDialog},
      {"save-dialog",
       "[NAME PATTERN]... [--name FILE] [--text TEXT] [--flags N] [--owner WINDOW]",
       "let the user choose where to save, show the path, and write there",
       "Filters, flags and owner as with open-dialog; without --flags the user is asked before a file is overwritten.\n"
       "Without --text nothing is written, and so no file made.",
       {{"--name", true}, {"--text", true}, {"--flags", true}, {"--owner", true}},
       0,
       SIZE_MAX,
       SaveDialog,
       CheckDialog},
  };
  return commands;
}
