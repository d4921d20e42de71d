// Text and fonts: the lengths, the limit, what is drawn with which arguments, and font linking with and without the
// platform's language services.
#include <windows.h>

#include <gtest/gtest.h>

#include <tuple>

#include "broker/CoLumenBrokerServer.h"
#include "tests/support/ByteArray.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MemoryCanvas.h"
#include "tests/support/UnavailableClass.h"

namespace {

std::string Rect(LONG left, LONG top, LONG right, LONG bottom) {
  const RECT rect = {left, top, right, bottom};
  return std::string(reinterpret_cast<const char*>(&rect), sizeof(rect));
}
std::string Wide(const wchar_t* text) {
  return std::string(reinterpret_cast<const char*>(text), (WideView(text).size() + 1) * sizeof(wchar_t));
}
std::string Spacing(std::initializer_list<INT> values) {
  return std::string(reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(INT));
}

// One drawing of text, with arguments that any row changes.
struct TextRow {
  const char* why;
  ULONG count;
  size_t textBytes;
  HRESULT result;
  size_t rectBytes = 16;
  bool noSpacing = true;
  int spacingBytes = 0;  // -1: no array
  ULONG options = 0;
};

class TextMethods : public testing::Test {
 protected:
  HRESULT Draw(bool wide, const TextRow& row) {
    const ByteArray rect(std::string(row.rectBytes, 0)), text(std::string(row.textBytes, 0));
    const ByteArray spacing(std::string(static_cast<size_t>(std::max(row.spacingBytes, 0)), 0));
    const auto draw = wide ? &ILumenBroker6::BrokerExtTextOutW : &ILumenBroker6::BrokerExtTextOutA;
    ULONG drawn = 0;
    return (broker.Get()->*draw)(dc, 0, 0, row.options, 1, rect.Get(), text.Get(), row.count, row.noSpacing,
                                 row.spacingBytes < 0 ? nullptr : spacing.Get(), &drawn);
  }

  ComInitializer apartment;
  ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
  MemoryCanvas canvas;
  const ULONG dc = canvas.Wire();
};

TEST_F(TextMethods, LengthsAreCheckedForBothWidths) {
  // For the wide call, the text's bytes are doubled.
  const TextRow rows[] = {
      {"no text is a terminator", 0, 1, S_OK},
      {"the longest text", 8192, 8193, S_OK},
      {"a longer one", 8193, 8194, E_INVALIDARG},
      {"a longer one, before any array is looked at", 0xFFFFFFFF, 0, E_INVALIDARG},
      {"text without its terminator", 5, 5, E_FAIL},
      {"a rectangle that is none, though it is not used", 5, 6, E_FAIL, 15},
      {"no spacing array, though it is not used", 5, 6, E_FAIL, 16, true, -1},
      {"spacing too short", 5, 6, E_FAIL, 16, false, 15},
      {"spacing for all but the last character", 5, 6, S_OK, 16, false, 16},
      {"spacing in pairs", 5, 6, S_OK, 16, false, 32, ETO_PDY},
      {"spacing in pairs too short", 5, 6, E_FAIL, 16, false, 31, ETO_PDY},
      {"spacing for no text: the need wraps", 0, 1, E_FAIL, 16, false, 4096},
      {"glyph indices", 5, 6, S_OK, 16, true, 0, ETO_GLYPH_INDEX},
  };
  for (const TextRow& row : rows) {
    TextRow doubled = row;
    doubled.textBytes *= 2;
    EXPECT_EQ(Draw(false, row), row.result) << row.why;
    EXPECT_EQ(Draw(true, doubled), row.result) << row.why;
    if (row.textBytes % 2 == 1 && row.count != 0) EXPECT_NE(Draw(true, row), S_OK) << "narrow text in a wide call";
  }
}

// What the wide call gets.
struct Seen {
  int x, y;
  UINT options;
  RECT rect;
  WideString text;
  std::vector<INT> spacing;
} seen;
BOOL WINAPI RecordText(HDC, int x, int y, UINT options, const RECT* rect, const wchar_t* text, UINT count,
                       const INT* spacing) {
  const size_t values = spacing == nullptr ? 0 : count * ((options & ETO_PDY) != 0 ? 2 : 1);
  seen = {x, y, options, rect == nullptr ? RECT{} : *rect, {text, count}, {spacing, spacing + values}};
  return 77;
}

TEST_F(TextMethods, ArgumentsReachTheCallAndItsResultTheClient) {
  const ImportHook hook(GetModuleHandleW(nullptr), "ExtTextOutW", RecordText);
  const ByteArray rect(Rect(1, 2, 3, 4));
  const ByteArray text(Wide(L"abc"));
  ULONG drawn = 0;
  EXPECT_EQ(broker->BrokerExtTextOutW(dc, static_cast<ULONG>(-5), 6, ETO_OPAQUE, 0, rect.Get(), text.Get(), 3, 0,
                                      ByteArray(Spacing({7, -8, 9})).Get(), &drawn),
            S_OK);
  EXPECT_EQ(drawn, 77u);
  EXPECT_EQ(std::tuple(seen.x, seen.y, seen.options, seen.rect.bottom), std::tuple(-5, 6, UINT{ETO_OPAQUE}, 4));
  EXPECT_EQ(ToUtf8(seen.text), "abc");
  EXPECT_EQ(seen.spacing, (std::vector<INT>{7, -8, 9}));
  EXPECT_EQ(broker->BrokerExtTextOutW(dc, 0, 0, ETO_PDY, 1, rect.Get(), text.Get(), 3, 0,
                                      ByteArray(Spacing({1, 2, 3, 4})).Get(), &drawn),
            S_OK);
  EXPECT_EQ(seen.rect.bottom, 0) << "no rectangle";
  EXPECT_EQ(seen.spacing, (std::vector<INT>{1, 2, 3, 4, 0, 0})) << "the last character's values were not asked for";
  EXPECT_EQ(broker->BrokerExtTextOutW(dc, 0, 0, 0, 1, rect.Get(), text.Get(), 3, 1, ByteArray("").Get(), &drawn), S_OK);
  EXPECT_TRUE(seen.spacing.empty());
}

TEST_F(TextMethods, BothWidthsDrawTheSamePixels) {
  std::string pixels[2];
  SetBkColor(canvas.Get(), RGB(0, 255, 0));
  for (const bool wide : {false, true}) {
    canvas.Clear();
    const ByteArray rect(Rect(0, 0, 64, 16)), spacing(Spacing({30, 30}));
    const ByteArray text(wide ? Wide(L"HI") : std::string("HI", 3));
    const auto draw = wide ? &ILumenBroker6::BrokerExtTextOutW : &ILumenBroker6::BrokerExtTextOutA;
    ULONG drawn = 0;
    EXPECT_EQ((broker.Get()->*draw)(dc, 2, 2, ETO_OPAQUE, 0, rect.Get(), text.Get(), 2, 0, spacing.Get(), &drawn),
              S_OK);
    EXPECT_EQ(drawn, 1u);
    for (int i = 0; i < MemoryCanvas::kSide * MemoryCanvas::kSide; ++i) {
      pixels[wide] += std::to_string(canvas.At(i % MemoryCanvas::kSide, i / MemoryCanvas::kSide)) + " ";
    }
  }
  EXPECT_EQ(pixels[0], pixels[1]);
  EXPECT_EQ(canvas.At(63, 15), 0x00FF00u) << "the rectangle is used";
  EXPECT_EQ(canvas.At(63, 16), 0xFFFFFFu);
  EXPECT_GT(canvas.Count(0x000000), 5);
}

TEST_F(TextMethods, ExtentsAreThePlatformsOwn) {
  SIZE own = {};
  ASSERT_TRUE(GetTextExtentPoint32W(canvas.Get(), L"wide", 4, &own));
  const ByteArray wide(Wide(L"wide")), narrow({"wide", 5}), open("wide"), longest(std::string(8193, 'x'));
  const struct {
    bool wide;
    ULONG dc;
    SAFEARRAY* text;
    ULONG count;
    HRESULT result;
  } rows[] = {{true, dc, wide.Get(), 4, S_OK},        {false, dc, narrow.Get(), 4, S_OK},
              {true, dc, open.Get(), 4, E_FAIL},      {false, dc, open.Get(), 4, E_FAIL},
              {true, dc, nullptr, 0, E_FAIL},         {true, dc, nullptr, 8193, E_INVALIDARG},
              {false, dc, longest.Get(), 8192, S_OK}, {false, dc, longest.Get(), 8193, E_INVALIDARG},
              {false, 0, narrow.Get(), 4, E_FAIL}};
  for (const auto& row : rows) {
    ULONG width = 0, height = 0;
    const auto measure =
        row.wide ? &ILumenBroker6::BrokerGetTextExtentPoint32W : &ILumenBroker6::BrokerGetTextExtentPoint32A;
    EXPECT_EQ((broker.Get()->*measure)(row.dc, row.text, row.count, &width, &height), row.result) << &row - rows;
    if (row.result != S_OK || row.count != 4) continue;
    EXPECT_EQ(width, static_cast<ULONG>(own.cx));
    EXPECT_EQ(height, static_cast<ULONG>(own.cy));
  }
}

TEST_F(TextMethods, MetricsAreSixtyBytes) {
  TEXTMETRICW own = {};
  ASSERT_TRUE(GetTextMetricsW(canvas.Get(), &own));
  VARIANT reply = {};
  ASSERT_EQ(broker->BrokerGetTextMetrics(dc, &reply), S_OK);
  ASSERT_EQ(reply.vt, VT_ARRAY | VT_UI1);
  const ByteArray bytes(reply.parray);
  EXPECT_EQ(bytes.Text(), std::string(reinterpret_cast<const char*>(&own), 60));
  EXPECT_EQ(broker->BrokerGetTextMetrics(0, &reply), E_FAIL);
}

TEST_F(TextMethods, FontIsMadeSelectedAndDeleted) {
  LOGFONTW wanted = {};
  wanted.lfHeight = -40;
  std::fill(std::begin(wanted.lfFaceName), std::end(wanted.lfFaceName), L'x');  // without an end
  const std::string bytes(reinterpret_cast<const char*>(&wanted), sizeof(wanted));
  ULONG font = 0, type = 0, done = 0;
  EXPECT_EQ(broker->BrokerCreateFontIndirect(ByteArray(bytes.substr(1)).Get(), &font), E_FAIL);
  EXPECT_EQ(broker->BrokerCreateFontIndirect(nullptr, &font), E_FAIL);
  ASSERT_EQ(broker->BrokerCreateFontIndirect(ByteArray(bytes).Get(), &font), S_OK);
  EXPECT_EQ(broker->BrokerGetObjectType(font, &type), S_OK);
  EXPECT_EQ(type, static_cast<ULONG>(OBJ_FONT));
  EXPECT_EQ(broker->BrokerDeleteObject(font, &done), S_OK);
  EXPECT_EQ(done, 1u);
}

TEST_F(TextMethods, CharactersLargerThanAnyPageAreNotDrawn) {
  const ImportHook hook(GetModuleHandleW(nullptr), "ExtTextOutW", RecordText);
  const ByteArray rect(Rect(0, 0, 0, 0));
  const ByteArray text(Wide(L"a"));
  const struct {
    LONG height;
    float scale;
    ULONG result;
  } rows[] = {{-500, 30.0F, 77}, {-500, 1e4F, 0}, {100000, 1.0F, 0}, {20, 1e30F, 0}, {INT_MIN, 1.0F, 0}};
  ULONG old = 0;
  ASSERT_EQ(broker->BrokerSetGraphicsMode(dc, GM_ADVANCED, &old), S_OK);
  for (const auto& row : rows) {
    const XFORM world = {row.scale, 0, 0, row.scale, 0, 0};
    LOGFONTW face = {};
    face.lfHeight = row.height;
    const GdiObject font(CreateFontIndirectW(&face));
    const SelectedObject selected(canvas.Get(), font.Get());
    ASSERT_TRUE(SetWorldTransform(canvas.Get(), &world));
    ULONG drawn = 5;
    EXPECT_EQ(broker->BrokerExtTextOutW(dc, 0, 0, 0, 1, rect.Get(), text.Get(), 1, 1, rect.Get(), &drawn), S_OK);
    EXPECT_EQ(drawn, row.result) << row.height << " by " << row.scale;
  }
}

HFONT WINAPI NoFont(const LOGFONTW* /*font*/) {
  return nullptr;
}

TEST_F(TextMethods, NoFontIsNoFailure) {
  const ImportHook hook(GetModuleHandleW(nullptr), "CreateFontIndirectW", NoFont);
  ULONG font = 1;
  EXPECT_EQ(broker->BrokerCreateFontIndirect(ByteArray(std::string(92, 0)).Get(), &font), S_OK);
  EXPECT_EQ(font, 0u);
}

TEST_F(TextMethods, FontLinkingIsThePlatforms) {
  ULONG font = 0, pages = 0, linked = 0;
  EXPECT_EQ(broker->BrokerGetCurrentObject(dc, OBJ_FONT, &font), S_OK);
  EXPECT_EQ(broker->BrokerIMLangFontLinkGetFontCodePages(dc, font, &pages), S_OK);
  ASSERT_EQ(broker->BrokerIMLangFontLinkMapFont(dc, 1, font, &linked), S_OK) << "Latin, which every font has";
  ULONG type = 0;
  EXPECT_EQ(broker->BrokerGetObjectType(linked, &type), S_OK);
  EXPECT_EQ(type, static_cast<ULONG>(OBJ_FONT));
  EXPECT_EQ(broker->BrokerIMLangFontLinkReleaseFont(linked), S_OK);
  EXPECT_EQ(broker->BrokerIMLangFontLinkReleaseFont(0x1234), E_FAIL) << "as the platform says";
}

TEST_F(TextMethods, WithoutLanguageServicesFontLinkingFails) {
  const UnavailableClass services(CLSID_CMultiLanguage);
  const ComPtr<ILumenBroker6> without = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
  ULONG pages = 0, font = 0;
  EXPECT_EQ(without->BrokerIMLangFontLinkGetFontCodePages(dc, 0, &pages), E_FAIL);
  EXPECT_EQ(without->BrokerIMLangFontLinkMapFont(dc, 1, 0, &font), E_FAIL);
  EXPECT_EQ(without->BrokerIMLangFontLinkReleaseFont(0), E_FAIL);
}

}  // namespace
