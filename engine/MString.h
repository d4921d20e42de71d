// The text type that crosses every interface of the module: a view into a shared, counted block of UTF-16.
// Copies share the block and cutting from the front moves an offset, so parsers take text apart without copying.
//
// A block is freed by the module that made it, so that module must outlive every text that it handed out.
//
// Not thread-safe: the count is not atomic. A text for another thread is copied by characters first.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "engine/WideText.h"

// How a scan treats its set of delimiters.
enum class ScanSense : uint8_t {
  StopAtMember,   // stop at the first unit in the set; a unit of 256 or more is in no set
  StopAtOutsider  // stop at the first unit outside the set; a unit of 256 or more is outside every set
};

class MString {
 public:
  // What two modules share: each block carries the function that frees it, so it goes back to the heap it came from.
  struct Block {
    int32_t refCount;
    int32_t length;  // in code units, without the terminator
    void (*release)(Block*);

    wchar_t* Characters() { return reinterpret_cast<wchar_t*>(this + 1); }
    const wchar_t* Characters() const { return reinterpret_cast<const wchar_t*>(this + 1); }
  };

  // The null string: no block, length 0, Data() null.
  MString() = default;
  // Copies `length` units, or up to the terminator when `length` is below 1; never past a 0. A null `text` gives null.
  MString(const wchar_t* text, int32_t length = -1);  // NOLINT(google-explicit-constructor): literals are texts
  explicit MString(WideView text);
  MString(const MString& other);
  MString(MString&& other) noexcept;
  MString& operator=(const MString& other);
  MString& operator=(MString&& other) noexcept;
  ~MString();

  // One code unit a sequence, made from the lead byte alone; four-byte sequences give 65535. Only ASCII survives, and
  // callers rely on the count of units. `length` bounds the bytes read; -1 means up to the terminator.
  static MString FromNarrow(const char* text, int32_t length = -1);
  // `radix` is 10 or 16 (upper-case digits), any other means 10; at least `digits` digits of at most 64, "-" ahead of a
  // negative number.
  static MString FromNumber(int32_t value, uint32_t radix = 10, int32_t digits = 1);
  static MString FromNumber(uint32_t value, uint32_t radix = 10, int32_t digits = 1);

  int32_t Length() const;
  bool IsEmpty() const { return Length() == 0; }
  // The first character of the view, terminated; null for a null string. Valid while a holder of the block lives.
  const wchar_t* Data() const;
  WideView View() const;
  // The leading ASCII digits as a number that wraps; 0 when there are none.
  uint32_t ParseDigits() const;
  // Each unit cut to its low 8 bits, terminated.
  std::unique_ptr<char[]> Narrow() const;
  MString ToLower() const;  // A to Z only

  bool Equals(const MString& other) const;
  bool StartsWith(const MString& other) const;
  bool EndsWith(const MString& other) const;

  // Makes a new block; other holders of the old one are unaffected. Appending a null string does nothing.
  void Append(const MString& other);
  // Joins with exactly one `separator` at the seam when neither side is empty. The seam is judged by the blocks, not
  // the views: the last unit of this block and the first unit of the other's, whatever has been cut off its front.
  // Paths built from cut strings depend on it. A null `other` or a 0 separator does nothing.
  void AppendPath(wchar_t separator, const MString& other);
  // A copy of `source` with each `from` replaced by `to`, left to right, replacements not rescanned. `source` itself
  // when it or `from` is empty.
  static MString Replace(const MString& source, const MString& from, const MString& to);

  MString SpanUntil(const char* set, ScanSense sense = ScanSense::StopAtMember) const;
  // As SpanUntil, and cuts what it returns off the front. The delimiter stays.
  MString TakeUntil(const char* set, ScanSense sense = ScanSense::StopAtMember);
  // The first `count` units, cut off the front. An empty string gives an empty one and does not move.
  MString Take(int32_t count);
  // From the last delimiter, included, to the end; empty when there is none.
  MString TailFrom(const char* set, ScanSense sense = ScanSense::StopAtMember) const;
  // As TailFrom, and shortens this string to what precedes the delimiter, in a new block.
  MString CutTail(const char* set, ScanSense sense = ScanSense::StopAtMember);

 private:
  Block* block_ = nullptr;
  int32_t start_ = 0;

  static Block* NewBlock(int32_t length);
  void ReleaseBlock();
};
static_assert(sizeof(MString::Block) == 16);
static_assert(sizeof(MString) == 16);
