// Commands on the content of files: open, read, write, mark-unsafe.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include "client/Command.h"
#include "client/HresultNames.h"

namespace {

constexpr uint32_t kDefaultChunk = 65536;

// A cookie that is closed when it goes out of scope.
class OpenFile {
 public:
  OpenFile(ILumenBroker6* server, BSTR path, bool readOnly, bool truncate) : broker(server) {
    result = broker->BrokerCreateFile(path, readOnly ? 1 : 0, truncate ? 1 : 0, &cookie);
  }
  ~OpenFile() {
    if (SUCCEEDED(result)) broker->BrokerCloseHandle(cookie);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] HRESULT Result() const { return result; }
  [[nodiscard]] ULONG Cookie() const { return cookie; }
  // Closing by hand tells whether it worked.
  HRESULT Close() {
    const HRESULT closed = broker->BrokerCloseHandle(cookie);
    result = E_FAIL;
    return closed;
  }

 private:
  ILumenBroker6* broker;
  ULONG cookie = 0;
  HRESULT result;
};

SAFEARRAY* MakeArray(const uint8_t* bytes, size_t size) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
  void* data = nullptr;
  if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &data))) {
    if (size > 0) memcpy(data, bytes, size);
    SafeArrayUnaccessData(array);
  }
  return array;
}

Outcome Open(Context& context) {
  const bool writing = context.arguments.Has("--write") || context.arguments.Has("--truncate");
  OpenFile file(context.broker, TextArgument(context, 0).Get(), !writing, context.arguments.Has("--truncate"));
  if (FAILED(file.Result())) return Outcome::Of(file.Result());
  if (!context.silent && !context.json) Print("cookie " + std::to_string(file.Cookie()) + "\n");
  return Outcome::Of(file.Close());
}

// Reads up to `count` bytes, in pieces.
HRESULT ReadPieces(ILumenBroker6* broker, ULONG cookie, uint32_t count, uint32_t chunk, std::string& content) {
  while (content.size() < count) {
    const auto wanted = static_cast<ULONG>(std::min<size_t>(chunk, count - content.size()));
    ULONG read = 0;
    SAFEARRAY* array = nullptr;
    const HRESULT result = broker->BrokerReadFile(cookie, wanted, &read, &array);
    if (FAILED(result)) return result;
    void* data = nullptr;
    if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &data))) {
      content.append(static_cast<const char*>(data), std::min(read, wanted));
      SafeArrayUnaccessData(array);
    }
    if (array != nullptr) SafeArrayDestroy(array);
    if (read == 0) break;
  }
  return S_OK;
}

Outcome CheckRead(const Arguments& arguments, bool /*openFiles*/) {
  const bool good = arguments.AreNumbers({"--offset", "--count", "--chunk"}) && arguments.Number("--chunk", 1) != 0u;
  return good ? Outcome() : Outcome::BadUsage("--offset, --count and --chunk want numbers");
}

Outcome Read(Context& context) {
  const auto offset = context.arguments.Number("--offset", 0);
  const auto count = context.arguments.Number("--count", UINT32_MAX);
  const auto chunk = context.arguments.Number("--chunk", kDefaultChunk);
  const OpenFile file(context.broker, TextArgument(context, 0).Get(), true, false);
  if (FAILED(file.Result())) return Outcome::Of(file.Result());
  ULONG position = 0;
  if (*offset != 0) {
    const HRESULT sought =
        context.broker->BrokerSetFilePointer(file.Cookie(), static_cast<LONG>(*offset), 0, &position);
    if (FAILED(sought)) return Outcome::Of(sought);
  }
  std::string content;
  const HRESULT result = ReadPieces(context.broker, file.Cookie(), *count, *chunk, content);
  if (FAILED(result)) return Outcome::Of(result);
  if (const auto expected = context.arguments.Value("--expect"); expected && content != *expected) {
    return Outcome::LocalFailure("the file holds something else: " + content.substr(0, 80));
  }
  if (const auto target = context.arguments.Value("--out")) {
    std::ofstream out(*target, std::ios::binary);
    if (!out.write(content.data(), static_cast<std::streamsize>(content.size()))) {
      return Outcome::LocalFailure("cannot write " + *target);
    }
  } else if (context.json) {
    Print(JsonObject().Text("content", content).Number("bytes", content.size()).Close() + "\n");
  } else if (!context.silent) {
    Print(content);
  }
  return Outcome::Of(S_OK);
}

// What is to be written; exactly one source must be named. A file is left alone, and counts as empty, unless wanted.
std::optional<std::vector<uint8_t>> Source(const Arguments& arguments, bool openFile, std::string& error) {
  const auto text = arguments.Value("--text");
  const auto hex = arguments.Value("--hex");
  const auto from = arguments.Value("--from");
  error = "exactly one of --text, --hex and --from is wanted";
  if ((text ? 1 : 0) + (hex ? 1 : 0) + (from ? 1 : 0) != 1) return std::nullopt;
  if (text) return std::vector<uint8_t>(text->begin(), text->end());
  if (hex) {
    error = "--hex wants pairs of hexadecimal digits";
    return ParseHexBytes(*hex);
  }
  if (!openFile) return std::vector<uint8_t>();
  error = "cannot read " + *from;
  std::ifstream in(*from, std::ios::binary);
  if (!in) return std::nullopt;
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

HRESULT WritePieces(ILumenBroker6* broker, ULONG cookie, const std::vector<uint8_t>& bytes, uint32_t chunk,
                    uint64_t& total) {
  size_t at = 0;
  do {
    const size_t size = std::min<size_t>(chunk, bytes.size() - at);
    SAFEARRAY* const array = MakeArray(bytes.data() + at, size);
    if (array == nullptr) return E_OUTOFMEMORY;
    ULONG written = 0;
    const HRESULT result = broker->BrokerWriteFile(cookie, array, &written);
    SafeArrayDestroy(array);
    if (FAILED(result)) return result;
    total += written;
    at += size;
  } while (at < bytes.size());
  return S_OK;
}

Outcome CheckWrite(const Arguments& arguments, bool openFiles) {
  std::string error;
  if (!Source(arguments, openFiles, error)) return Outcome::BadUsage(error);
  const bool good = arguments.AreNumbers({"--offset", "--chunk"}) && arguments.Number("--chunk", 1) != 0u;
  return good ? Outcome() : Outcome::BadUsage("--offset and --chunk want numbers");
}

Outcome Write(Context& context) {
  std::string error;
  const auto bytes = Source(context.arguments, true, error);
  if (!bytes) return Outcome::BadUsage(error);
  const auto offset = context.arguments.Number("--offset", 0);
  const auto chunk = context.arguments.Number("--chunk", kDefaultChunk);
  OpenFile file(context.broker, TextArgument(context, 0).Get(), false, !context.arguments.Has("--keep"));
  if (FAILED(file.Result())) return Outcome::Of(file.Result());
  ULONG position = 0;
  if (*offset != 0) {
    const HRESULT sought =
        context.broker->BrokerSetFilePointer(file.Cookie(), static_cast<LONG>(*offset), 0, &position);
    if (FAILED(sought)) return Outcome::Of(sought);
  }
  uint64_t total = 0;
  const HRESULT result = WritePieces(context.broker, file.Cookie(), *bytes, *chunk, total);
  if (FAILED(result)) return Outcome::Of(result);
  if (context.json)
    Print(JsonObject().Number("written", total).Close() + "\n");
  else if (!context.silent)
    Print("wrote " + std::to_string(total) + " bytes\n");
  return Outcome::Of(file.Close());
}

Outcome MarkUnsafe(Context& context) {
  const auto optional = [&context](std::string_view name) {
    const auto value = context.arguments.Value(name);
    return value ? BString(FromUtf8(*value)) : BString();
  };
  const BString source = optional("--source");
  const BString referrer = optional("--referrer");
  return Outcome::Of(
      context.broker->BrokerMarkFileUnsafe(TextArgument(context, 0).Get(), source.Get(), referrer.Get()));
}

}  // namespace

std::span<const Command> FileCommands() {
  static const std::vector<Command> commands = {
      {"open",
       "PATH [--write | --truncate]",
       "open a file, show its cookie, close it",
       "Opens for reading unless told otherwise. --write opens or makes the file, --truncate makes it anew.",
       {{"--write"}, {"--truncate"}},
       1,
       1,
       Open},
      {"read",
       "PATH [--offset N] [--count N] [--chunk N] [--out FILE] [--expect TEXT]",
       "read a file",
       "Writes to standard output or to FILE. Reading is not restricted by path. --expect compares instead and fails\n"
       "when the content differs.",
       {{"--offset", true}, {"--count", true}, {"--chunk", true}, {"--out", true}, {"--expect", true}},
       1,
       1,
       Read,
       CheckRead},
      {"write",
       "PATH (--text T | --hex H | --from FILE) [--keep] [--offset N] [--chunk N]",
       "write a file",
       "Makes the file anew unless --keep is given. Paths must lie in the player's data, with an ending that it has, "
       "or in\n"
       "the low-integrity temp directory; \"<LOCAL_APPDATA>\" stands for the local application data. The first write "
       "of\n"
       "a program is refused, and the file goes.",
       {{"--text", true}, {"--hex", true}, {"--from", true}, {"--keep"}, {"--offset", true}, {"--chunk", true}},
       1,
       1,
       Write,
       CheckWrite},
      {"mark-unsafe",
       "PATH [--source URL] [--referrer URL]",
       "mark a file as having come from the internet",
       "",
       {{"--source", true}, {"--referrer", true}},
       1,
       1,
       MarkUnsafe},
  };
  return commands;
}
