#include "ui/toolkit/MTextChunk.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int32_t kListSpacing = 8;
constexpr wchar_t kBullet[] = L"\x2022 ";

// Cuts off what lies before the first of `stops`, or everything.
WideView TakeUntilAny(WideView& rest, WideView stops) {
  const size_t end = std::min(rest.find_first_of(stops), rest.size());
  const WideView taken = rest.substr(0, end);
  rest.remove_prefix(end);
  return taken;
}

class MarkupParser {
 public:
  explicit MarkupParser(WideView text) : rest(text) {}

  ChunkList Parse() {
    while (!rest.empty()) Step();
    return std::move(chunks);
  }

 private:
  enum class Bullet : uint8_t { None, Item, ListEnd };

  // One stretch of text with the tag or line feed behind it. A line feed acts on the stretch in front of it, a tag on
  // what follows; texts are written for that.
  void Step() {
    const WideView piece = TakeUntilAny(rest, L"<\n");
    WideView tag;
    if (!rest.empty() && rest.front() == L'\n') {
      rest.remove_prefix(1);
      newLine = true;
    } else if (!rest.empty()) {
      rest.remove_prefix(1);
      tag = TakeUntilAny(rest, L">");
      if (!rest.empty()) rest.remove_prefix(1);
    }
    if (!piece.empty() || newLine) Append(piece);
    MarkListItem();
    if (!tag.empty()) ReadTag(tag);
  }

  void Append(WideView piece) {
    ChunkList chunk(new MTextChunk);
    chunk->text = MString(piece);
    chunk->href = MString(href);
    chunk->linkKind = linkKind;
    chunk->bold = bold;
    chunk->newLine = std::exchange(newLine, false);
    MTextChunk* const added = chunk.release();
    if (last == nullptr) {
      chunks.reset(added);
    } else {
      last->next = added;
    }
    last = added;
  }

  void MarkListItem() {
    const Bullet mark = std::exchange(bullet, Bullet::None);
    if (mark == Bullet::None || last == nullptr) return;
    last->spacing = kListSpacing;
    if (mark != Bullet::Item) return;
    MString marked(kBullet);
    marked.Append(last->text);
    last->text = marked;
  }

  void ReadTag(WideView tag) {
    const bool closing = tag.front() == L'/';
    if (closing) tag.remove_prefix(1);
    WideString name(TakeUntilAny(tag, L" \t\n/"));
    std::transform(name.begin(), name.end(), name.begin(), ToLowerAscii);
    if (name == L"a") {
      href = closing ? WideView() : QuotedValue(tag);
      linkKind = closing ? kNoLink : kUrlLink;
    } else if (name == L"ncp") {
      linkKind = closing ? kNoLink : kSettingsLink;
    } else if (name == L"strong") {
      bold = !closing;
    } else if (name == L"br") {
      newLine = true;
    } else if (name == L"li" && !closing) {
      newLine = true;
      bullet = Bullet::Item;
    } else if (name == L"ul" && closing) {
      newLine = true;
      bullet = Bullet::ListEnd;
    }
  }

  static WideView QuotedValue(WideView tag) {
    TakeUntilAny(tag, L"\"'");
    if (tag.empty()) return {};
    const wchar_t quote = tag.front();
    tag.remove_prefix(1);
    return TakeUntilAny(tag, WideView(&quote, 1));
  }

  WideView rest;
  ChunkList chunks;
  MTextChunk* last = nullptr;
  WideView href;
  int32_t linkKind = kNoLink;
  bool bold = false;
  bool newLine = false;
  Bullet bullet = Bullet::None;
};

}  // namespace

void ChunkListDeleter::operator()(MTextChunk* first) const {
  while (first != nullptr) delete std::exchange(first, first->next);
}

ChunkList ParseMarkup(const MString& text) {
  return MarkupParser(text.View()).Parse();
}
