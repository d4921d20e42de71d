#include "engine/MString.h"

#include <algorithm>
#include <new>
#include <span>
#include <utility>

namespace {

// Narrow delimiter sets match units below 256 only, so a wide unit is outside every set.
bool StopsScan(wchar_t unit, const char* set, ScanSense sense) {
  bool member = false;
  if (unit < 256 && unit != 0) {
    for (const char* c = set; *c != 0 && !member; ++c) member = static_cast<unsigned char>(*c) == unit;
  }
  return member == (sense == ScanSense::StopAtMember);
}

size_t SpanLength(WideView text, const char* set, ScanSense sense) {
  size_t length = 0;
  while (length < text.size() && !StopsScan(text[length], set, sense)) ++length;
  return length;
}

// Position of the last unit that stops a scan, or the length when none does.
size_t LastStop(WideView text, const char* set, ScanSense sense) {
  for (size_t i = text.size(); i > 0; --i) {
    if (StopsScan(text[i - 1], set, sense)) return i - 1;
  }
  return text.size();
}

MString FromDigits(uint32_t magnitude, bool negative, uint32_t wantedRadix, int32_t digits) {
  const uint32_t radix = wantedRadix == 16 ? 16 : 10;
  constexpr int32_t kMostDigits = 64;
  wchar_t buffer[kMostDigits + 1];
  size_t at = kMostDigits + 1;
  int32_t written = 0;
  const int32_t wanted = std::clamp(digits, 1, kMostDigits);
  do {
    buffer[--at] = static_cast<wchar_t>("0123456789ABCDEF"[magnitude % radix]);
    magnitude /= radix;
    ++written;
  } while (magnitude != 0 || written < wanted);
  if (negative) buffer[--at] = L'-';
  return MString(WideView(buffer + at, kMostDigits + 1 - at));
}

}  // namespace

// The size keeps the rounding that all modules agree on: twice the length plus 17, down to a multiple of 8, plus 8.
MString::Block* MString::NewBlock(int32_t length) {
  const size_t size = ((static_cast<size_t>(length) * 2 + 17) & ~size_t{7}) + 8;
  auto* block = static_cast<Block*>(::operator new(size));
  block->refCount = 1;
  block->length = length;
  block->release = [](Block* dead) { ::operator delete(dead); };
  block->Characters()[length] = 0;
  return block;
}

void MString::ReleaseBlock() {
  if (block_ != nullptr && --block_->refCount <= 0) block_->release(block_);
  block_ = nullptr;
  start_ = 0;
}

MString::MString(const wchar_t* text, int32_t length) {
  if (text == nullptr) return;
  int32_t count = 0;
  while ((length < 1 || count < length) && text[count] != 0) ++count;
  block_ = NewBlock(count);
  std::copy_n(text, count, block_->Characters());
}

MString::MString(WideView text) : block_(NewBlock(static_cast<int32_t>(text.size()))) {
  std::copy(text.begin(), text.end(), block_->Characters());
}

MString::MString(const MString& other) : block_(other.block_), start_(other.start_) {
  if (block_ != nullptr) ++block_->refCount;
}

MString::MString(MString&& other) noexcept
    : block_(std::exchange(other.block_, nullptr)), start_(std::exchange(other.start_, 0)) {}

MString& MString::operator=(const MString& other) {
  MString copy(other);  // counts the source first, so that assigning to itself is safe
  std::swap(block_, copy.block_);
  std::swap(start_, copy.start_);
  return *this;
}

MString& MString::operator=(MString&& other) noexcept {
  std::swap(block_, other.block_);
  std::swap(start_, other.start_);
  return *this;
}

MString::~MString() {
  ReleaseBlock();
}

MString MString::FromNarrow(const char* text, int32_t length) {
  if (text == nullptr) return {};
  WideString wide;
  for (int32_t at = 0; (length < 0 || at < length) && text[at] != 0;) {
    const uint32_t b = static_cast<unsigned char>(text[at]);
    const int32_t size = b < 128 ? 1 : b < 224 ? 2 : b < 240 ? 3 : 4;
    uint32_t unit = b;
    if (size == 2) unit = (b & 31) * 64 | (b & 63);
    if (size == 3) unit = ((b & 15) * 64 | (b & 63)) * 64 | (b & 63);
    if (size == 4) unit = 65535;
    wide.push_back(static_cast<wchar_t>(unit));
    // A sequence cut short by the bound or the terminator must not carry the scan past it.
    for (int32_t i = 0; i < size && (length < 0 || at < length) && text[at] != 0; ++i) ++at;
  }
  return MString(WideView(wide));
}

MString MString::FromNumber(int32_t value, uint32_t radix, int32_t digits) {
  const auto bits = static_cast<uint32_t>(value);
  return FromDigits(value < 0 ? 0u - bits : bits, value < 0, radix, digits);
}

MString MString::FromNumber(uint32_t value, uint32_t radix, int32_t digits) {
  return FromDigits(value, false, radix, digits);
}

int32_t MString::Length() const {
  return block_ == nullptr ? 0 : block_->length - start_;
}

const wchar_t* MString::Data() const {
  return block_ == nullptr ? nullptr : block_->Characters() + start_;
}

WideView MString::View() const {
  return {Data(), static_cast<size_t>(Length())};
}

uint32_t MString::ParseDigits() const {
  uint32_t number = 0;
  for (wchar_t unit : View()) {
    if (unit < L'0' || unit > L'9') break;
    number = number * 10 + (unit - L'0');
  }
  return number;
}

std::unique_ptr<char[]> MString::Narrow() const {
  const WideView text = View();
  auto narrow = std::make_unique<char[]>(text.size() + 1);
  std::transform(text.begin(), text.end(), narrow.get(), [](wchar_t unit) { return static_cast<char>(unit); });
  return narrow;
}

MString MString::ToLower() const {
  if (block_ == nullptr) return {};
  MString lower{View()};
  const std::span<wchar_t> units(lower.block_->Characters(), static_cast<size_t>(lower.Length()));
  std::transform(units.begin(), units.end(), units.begin(), ToLowerAscii);
  return lower;
}

bool MString::Equals(const MString& other) const {
  return View() == other.View();
}
bool MString::StartsWith(const MString& other) const {
  return View().starts_with(other.View());
}
bool MString::EndsWith(const MString& other) const {
  return View().ends_with(other.View());
}

void MString::Append(const MString& other) {
  if (other.block_ == nullptr) {
    if (block_ == nullptr) *this = MString(WideView());
    return;
  }
  WideString joined(View());
  joined += other.View();
  *this = MString(WideView(joined));
}

void MString::AppendPath(wchar_t separator, const MString& other) {
  if (other.block_ == nullptr || separator == 0) return;
  WideString joined(View());
  if (!IsEmpty() && !other.IsEmpty()) {
    const bool leftHas = block_->Characters()[block_->length - 1] == separator;
    const bool rightHas = other.block_->Characters()[0] == separator;
    // The left one goes: it is in view for certain, the right one may have been cut off already.
    if (leftHas && rightHas) joined.pop_back();
    if (!leftHas && !rightHas) joined.push_back(separator);
  }
  joined += other.View();
  *this = MString(WideView(joined));
}

MString MString::Replace(const MString& source, const MString& from, const MString& to) {
  if (source.IsEmpty() || from.IsEmpty()) return source;
  const WideView pattern = from.View();
  WideView rest = source.View();
  WideString result;
  for (size_t at = rest.find(pattern); at != WideView::npos; at = rest.find(pattern)) {
    result += rest.substr(0, at);
    result += to.View();
    rest.remove_prefix(at + pattern.size());
  }
  result += rest;
  return MString(WideView(result));
}

MString MString::SpanUntil(const char* set, ScanSense sense) const {
  return block_ == nullptr ? MString() : MString(View().substr(0, SpanLength(View(), set, sense)));
}

MString MString::TakeUntil(const char* set, ScanSense sense) {
  MString head = SpanUntil(set, sense);
  start_ += head.Length();
  return head;
}

MString MString::Take(int32_t count) {
  if (IsEmpty() || count < 1) return MString(WideView());
  MString head{View().substr(0, static_cast<size_t>(count))};
  start_ += head.Length();
  return head;
}

MString MString::TailFrom(const char* set, ScanSense sense) const {
  return MString(View().substr(LastStop(View(), set, sense)));
}

MString MString::CutTail(const char* set, ScanSense sense) {
  const size_t at = LastStop(View(), set, sense);
  if (at == static_cast<size_t>(Length())) return MString(WideView());
  MString tail{View().substr(at)};
  *this = MString(View().substr(0, at));
  return tail;
}
