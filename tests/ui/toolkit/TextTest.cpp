// Texts without a window system: mark-up, line breaking against a grid, the shadow, and areas with links.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/MHTMLLink.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/RegionWalk.h"
#include "ui/toolkit/TextLayout.h"

namespace {

// Every unit is 10 wide, a bold one 14, and every line 12 high; what is drawn is kept as lines of text.
class GridCanvas final : public TextCanvas {
 public:
  explicit GridCanvas(Lines& to) : log(to) {}

  void Resize(int32_t width, int32_t height) override {
    memory.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0xFFFFFFFF);
    surface.pixels = memory.data();
  }
  [[nodiscard]] const Surface& Lend() const override { return surface; }
  TextFit Measure(WideView text, bool bold, int32_t room, std::span<int32_t> extents) override {
    const int32_t unit = bold ? 14 : 10;
    const auto length = static_cast<int32_t>(text.size());
    TextFit fit = {std::min(room / unit, length), length * unit};
    for (int32_t i = 0; i < fit.count; ++i) extents[static_cast<size_t>(i)] = (i + 1) * unit;
    lastBold = bold;
    return fit;
  }
  int32_t Draw(WideView text, uint32_t color, const Rect& place, uint32_t flags) override {
    log.push_back(Spell(place.left, place.top, ToUtf8(text)) + (lastBold ? " bold" : "") +
                  (color == 16777215 ? "" : Spell(" colour", color)));
    lastFlags = flags;
    return 12;
  }
  void FillWhite(const Rect& place) override { log.push_back(Spell("underline", place)); }
  void Flush() override {}

  uint32_t lastFlags = 0;

 private:
  Lines& log;
  std::vector<uint32_t> memory;
  Surface surface;
  bool lastBold = false;
};

// Each chunk as text in brackets behind its marks: n begins a line, b bold, +8 spacing, a=target or ncp.
std::string Spelled(const MTextChunk* chunk) {
  std::string all;
  for (; chunk != nullptr; chunk = chunk->next) {
    if (chunk->newLine) all += "n";
    if (chunk->bold) all += "b";
    if (chunk->spacing != 0) all += "+" + std::to_string(chunk->spacing);
    if (chunk->linkKind == kUrlLink) all += "a=" + Text(chunk->href);
    if (chunk->linkKind == kSettingsLink) all += "ncp";
    all += "[" + Text(chunk->text) + "]";
  }
  return all;
}

constexpr struct {
  const char* reason;
  const wchar_t* text;
  const char* chunks;
} kMarkup[] = {
    {"plain, entities stay", L"one &amp; two", "[one &amp; two]"},
    {"both forms of a break", L"a<br/>b<br>c</br>d", "[a]n[b]n[c]n[d]"},
    {"a tag up to its end, however odd", L"a<br/<br/>b", "[a]n[b]"},
    {"a line feed breaks before what precedes it", L"a\nb", "n[a][b]"},
    {"bold from the next stretch", L"a<strong>b</strong>c", "[a]b[b][c]"},
    {"names in any case, other words ignored", L"<STRONG class='x'>a</Strong\t>b", "b[a][b]"},
    {"either quote", L"<a href='x\"y'>l</a><A HREF=\"z'\">m</a>n", "a=x\"y[l]a=z'[m][n]"},
    {"the first quoted value, whatever its name", L"<a id='1' href='2'>l", "a=1[l]"},
    {"an unclosed quote goes to the tag's end", L"<a href='u>l</a>m", "a=u[l][m]"},
    {"a target outlasts a settings link", L"<a href='u'>l<ncp>m</ncp>n", "a=u[l]ncp[m][n]"},
    {"a list", L"<ul><li>x</li><li>y</li></ul>z", "n+8[\xE2\x80\xA2 x]n+8[\xE2\x80\xA2 y]n+8[z]"},
    {"unknown and empty tags", L"a<x>b<>c</>d<//a>e", "[a][b][c][d][e]"},
    {"a tag that never ends", L"a<br", "[a]"},
};

TEST(Markup, IsCutIntoChunks) {
  for (const auto& row : kMarkup) EXPECT_EQ(Spelled(ParseMarkup(MString(row.text)).get()), row.chunks) << row.reason;
}

const struct {
  const char* reason;
  const wchar_t* text;
  int32_t width;  // of the frame; a unit is 10 wide, a line 12 high
  int32_t lines;
  Lines drawn;
} kLayouts[] = {
    {"broken at blanks", L"one two three", 80, 2, {"0 0 one two", "0 12 three"}},
    {"a blank just behind what fits does not count", L"ab cd efg", 50, 3, {"0 0 ab", "0 12 cd", "0 24 efg"}},
    {"a word too wide is cut, not lost", L"abcdefgh", 30, 3, {"0 0 abc", "0 12 def", "0 24 gh"}},
    {"a run that goes on wraps to the line's start",
     L"abc<strong>d e</strong>",
     60,
     2,
     {"0 0 abc", "30 0 d bold", "0 12 e bold"}},
    {"no room for one unit of the next run", L"abc<x>def", 39, 2, {"0 0 abc", "0 12 def"}},
    {"a frame without width", L"abc", 0, 1, {}},
    {"narrower than a later, bolder unit ends", L"a<strong>b</strong>c", 12, 2, {"0 0 a"}},
    {"an empty line is as high as the last", L"a<br/><br/>b", 100, 3, {"0 0 a", "0 24 b"}},
    {"spacing moves every line of a wrapped run", L"<li>ab cd", 50, 3, {"0 8 \xE2\x80\xA2 ab", "0 28 cd"}},
    {"blanks at the very end of a full line wrap once more", L"abc <x>d", 30, 2, {"0 0 abc", "0 12 d"}},
    {"links in their colour",
     L"a <a href='u'>b</a>",
     100,
     1,
     {"0 0 a ", "20 0 b colour 77", "link u 20,0,30,12", "underline 20,11,30,12"}},
};

TEST(TextLayout, BreaksLinesAsDocumented) {
  for (const auto& row : kLayouts) {
    Lines drawn;
    GridCanvas canvas(drawn);
    const auto placeLink = [&](const MTextChunk& chunk, const Rect& at) {
      drawn.push_back(Spell("link", Text(chunk.href), at));
    };
    const int32_t lines =
        LayoutText(ParseMarkup(MString(row.text)).get(), {row.width, 100, 0, 262144, 77}, canvas, placeLink);
    EXPECT_EQ(drawn, row.drawn) << row.reason;
    EXPECT_EQ(lines, row.lines) << row.reason;
    EXPECT_EQ(canvas.lastFlags, drawn.empty() ? 0 : 262144u + 288);
  }
}

// A bitmap of 4 columns and 3 rows, of which 2 by 2 at the top left are used: the bottom row of it is shaded, and the
// rows below and the column beside it are not.
TEST(TextShade, TakesGreenForCoverageAndThrowsAShadowOneRowDown) {
  std::vector<uint32_t> pixels(12, 0x00112233);
  const auto at = [&](size_t column, size_t row) -> uint32_t& { return pixels[(2 - row) * 4 + column]; };
  at(0, 0) = 0x00FFFFFF, at(0, 1) = 0;
  at(1, 0) = 0x00000000, at(1, 1) = 0x002E98FF;
  ShadeText(pixels, 4, 2, 2, 255);
  EXPECT_EQ(at(0, 0), 0x00FFFFFFu) << "the top row is left as it is";
  // Shadow: (255 * 255 >> 8) * 255 >> 8 = 253.
  EXPECT_EQ(at(0, 1), 0xFD000000u);
  // Coverage 152 of a link's colour: 152 * 255 >> 8 = 151, and each channel by that.
  EXPECT_EQ(at(1, 1), 151u << 24 | (151u * 0x2E >> 8) << 16 | (151u * 0x98 >> 8) << 8 | 151u * 0xFF >> 8);
  EXPECT_EQ(at(2, 1), 0x00112233u);
  EXPECT_EQ(at(0, 2), 0x00112233u);
  pixels.assign(4, 0x00FFFFFF);
  ShadeText(pixels, 2, 2, 2, 128);
  EXPECT_EQ(pixels[0], 127u << 24 | 126u << 16 | 126u << 8 | 126u) << "dimmed";
  for (const int32_t size : {-5, 0, 1, 3, INT32_MAX}) ShadeText(pixels, 2, size, size, 255);
}

// An area on a grid canvas in a window that keeps what it is asked for.
struct Area {
  Area() : area(&window, std::make_unique<GridCanvas>(drawn), true, false) {
    area.bounds = Rect::Of(10, 20, 100, 50);
    window.Attach(&area);
  }
  void Render(const wchar_t* text) {
    area.SetText(MString(text));
    area.Layout();
  }

  RecordingWindow window;
  Lines drawn;
  MTextArea area;
};

TEST(TextArea, LinksBecomeRegionsThatOpenTheirTargetAndDropOutAtTheNextLayout) {
  Area area;
  area.area.verticalOffset = 3;
  area.Render(L"x <a href='u'>link</a> <ncp>set</ncp>");
  MRegion* const first = area.area.firstChild;
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(Spell(first->bounds, first->firstChild->bounds), "20,3,60,15 0,11,40,12");
  EXPECT_EQ(first->firstChild->image.AsColor(), 14188839u);
  area.window.Take();
  for (const int32_t x : {50, 100}) {  // the pointer rests on one, then goes straight to the other
    for (const uint32_t message : {kMouseMove, kMouseMove, kMousePress, kMouseRelease})
      area.window.DispatchMouse(message, {x, 28});
  }
  EXPECT_EQ(area.window.Take(),
            (Lines{"capture", "hand", "open u", "release", "arrow", "capture", "hand", "settings"}));
  MRegion* const second = first->Next();
  area.Render(L"<a href='w'>c</a>");
  EXPECT_EQ(Text(static_cast<MHTMLLink*>(area.area.firstChild)->url), "w");
  EXPECT_EQ(area.area.firstChild->Next(), nullptr);
  EXPECT_EQ(second->parent, nullptr);
  EXPECT_EQ(Text(static_cast<MHTMLLink*>(first)->url), "u") << "a handler on its way may still need it";
}

}  // namespace
