// Text and fonts on a client's device context: drawing, measuring, and the font linking of the platform's language
// services.
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <new>
#include <vector>

#include "broker/CoLumenBrokerServer.h"
#include "broker/DrawingArrays.h"
#include "broker/GdiRelay.h"
#include "broker/SafeArrayBytes.h"

namespace {

struct TextArguments {
  ULONG dc;
  ULONG x;
  ULONG y;
  ULONG options;
  bool noRect;
  SAFEARRAY* rect;
  SAFEARRAY* text;
  ULONG count;
  bool noSpacing;
  SAFEARRAY* spacing;
};

template <class Unit>
using TextCall = BOOL WINAPI(HDC, int, int, UINT, const RECT*, const Unit*, UINT, const INT*);
template <class Unit>
using ExtentCall = BOOL WINAPI(HDC, const Unit*, int, SIZE*);

// Whether a device could draw characters of the selected font's size. A transform can make them larger than any page;
// font engines that reckon the memory for one in 32 bits then write behind it. Nothing is drawn of such text, and the
// client gets the drawing call's own word for that.
bool IsSizeOfACharacter(HDC dc) {
  constexpr double kLargest = 32767;  // device units
  LOGFONTW font = {};
  XFORM world = {};
  if (GetObjectW(GetCurrentObject(dc, OBJ_FONT), sizeof(font), &font) == 0) return true;
  if (GetWorldTransform(dc, &world) == 0) world.eM11 = 1;
  const double size = std::max({16.0, std::abs(double{1} * font.lfHeight), std::abs(double{1} * font.lfWidth)});
  // A sum, which stays no number if one of the four is none; the comparison is then false.
  const double scale = std::fabs(double{world.eM11}) + std::fabs(double{world.eM12}) + std::fabs(double{world.eM21}) +
                       std::fabs(double{world.eM22});
  return size * scale <= kLargest;
}

// All three arrays must be there, those that a flag makes useless included: clients send them.
template <class Unit>
HRESULT DrawWith(TextCall<Unit>* draw, const TextArguments& call, ULONG* result) try {
  if (call.count > kMostTextUnits) return E_INVALIDARG;
  const SafeArrayBytes rectBytes(call.rect);
  const SafeArrayBytes text(call.text);
  const SafeArrayBytes spacingBytes(call.spacing);
  const std::optional<DrawingRect> area = ReadRect(rectBytes.Argument());
  if (!area || !HasText(text.Argument(), call.count, sizeof(Unit)) || !spacingBytes.IsOpen()) return E_FAIL;
  if (!call.noSpacing && !HasSpacing(spacingBytes.Bytes(), call.count, call.options)) return E_FAIL;
  *result = 0;
  if (!IsSizeOfACharacter(GdiHandleFrom(call.dc))) return S_OK;
  const RECT rect = {area->left, area->top, area->right, area->bottom};
  const std::vector<uint8_t> units = ReadText(text.Bytes(), call.count, call.options);
  const std::vector<int32_t> spacing =
      call.noSpacing ? std::vector<int32_t>() : ReadSpacing(spacingBytes.Bytes(), call.count, call.options);
  static_assert(sizeof(INT) == sizeof(int32_t));
  *result =
      static_cast<ULONG>(draw(GdiHandleFrom(call.dc), static_cast<int>(call.x), static_cast<int>(call.y), call.options,
                              call.noRect ? nullptr : &rect, reinterpret_cast<const Unit*>(units.data()), call.count,
                              call.noSpacing ? nullptr : spacing.data()));
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

template <class Unit>
HRESULT MeasureWith(ExtentCall<Unit>* measure, ULONG dc, SAFEARRAY* array, ULONG count, ULONG* width, ULONG* height) {
  if (count > kMostTextUnits) return E_INVALIDARG;
  const SafeArrayBytes text(array);
  if (!HasText(text.Argument(), count, sizeof(Unit))) return E_FAIL;
  SIZE size = {};
  const auto* const units = reinterpret_cast<const Unit*>(text.Bytes().data());
  if (!measure(GdiHandleFrom(dc), units, static_cast<int>(count), &size)) return E_FAIL;
  *width = static_cast<ULONG>(size.cx);
  *height = static_cast<ULONG>(size.cy);
  return S_OK;
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerExtTextOutA(ULONG dwHDC, ULONG dwX, ULONG dwY, ULONG dwOptions, ULONG dwIsRectNULL,
                                               SAFEARRAY* p_RectArray, SAFEARRAY* p_StrArray, ULONG dwCount,
                                               ULONG dwIsDxNULL, SAFEARRAY* p_DxArray, ULONG* p_dwRC) {
  return DrawWith<char>(
      ExtTextOutA,
      {dwHDC, dwX, dwY, dwOptions, dwIsRectNULL != 0, p_RectArray, p_StrArray, dwCount, dwIsDxNULL != 0, p_DxArray},
      p_dwRC);
}

HRESULT CoLumenBrokerServer::BrokerExtTextOutW(ULONG dwHDC, ULONG dwX, ULONG dwY, ULONG dwOptions, ULONG dwIsRectNULL,
                                               SAFEARRAY* p_RectArray, SAFEARRAY* p_StrArray, ULONG dwCount,
                                               ULONG dwIsDxNULL, SAFEARRAY* p_DxArray, ULONG* p_dwRC) {
  return DrawWith<wchar_t>(
      ExtTextOutW,
      {dwHDC, dwX, dwY, dwOptions, dwIsRectNULL != 0, p_RectArray, p_StrArray, dwCount, dwIsDxNULL != 0, p_DxArray},
      p_dwRC);
}

HRESULT CoLumenBrokerServer::BrokerGetTextExtentPoint32A(ULONG dwHDC, SAFEARRAY* p_StrArray, ULONG dwCount,
                                                         ULONG* p_dwCx, ULONG* p_dwCy) {
  return MeasureWith<char>(GetTextExtentPoint32A, dwHDC, p_StrArray, dwCount, p_dwCx, p_dwCy);
}

HRESULT CoLumenBrokerServer::BrokerGetTextExtentPoint32W(ULONG dwHDC, SAFEARRAY* p_StrArray, ULONG dwCount,
                                                         ULONG* p_dwCx, ULONG* p_dwCy) {
  return MeasureWith<wchar_t>(GetTextExtentPoint32W, dwHDC, p_StrArray, dwCount, p_dwCx, p_dwCy);
}

HRESULT CoLumenBrokerServer::BrokerGetTextMetrics(ULONG dwHDC, VARIANT* p_VarTextmetricArray) {
  TEXTMETRICW metrics = {};
  if (GetTextMetricsW(GdiHandleFrom(dwHDC), &metrics) == 0) return E_FAIL;
  return ReplyWithBytes({reinterpret_cast<const uint8_t*>(&metrics), sizeof(metrics)}, p_VarTextmetricArray);
}

// No font is no failure: the client gets 0.
HRESULT CoLumenBrokerServer::BrokerCreateFontIndirect(SAFEARRAY* p_LogFontArray, ULONG* p_dwFont) {
  const SafeArrayBytes bytes(p_LogFontArray);
  if (!HasLength(bytes.Argument(), sizeof(LOGFONTW))) return E_FAIL;
  LOGFONTW font = {};
  std::memcpy(&font, bytes.Bytes().data(), sizeof(font));
  font.lfFaceName[std::size(font.lfFaceName) - 1] = 0;  // a name without an end would be read beyond the structure
  *p_dwFont = WireFromGdi(CreateFontIndirectW(&font));
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerIMLangFontLinkMapFont(ULONG dwDC, ULONG dwCodePages, ULONG dwhSrcFont,
                                                         ULONG* p_dwhDestFont) {
  if (!fontLink) return E_FAIL;
  HFONT linked = nullptr;  // stays the font link's own
  const HRESULT result = fontLink->MapFont(GdiHandleFrom(dwDC), dwCodePages, GdiHandleFrom<HFONT>(dwhSrcFont), &linked);
  *p_dwhDestFont = WireFromGdi(linked);
  return result;
}

HRESULT CoLumenBrokerServer::BrokerIMLangFontLinkGetFontCodePages(ULONG dwDC, ULONG dwhFont, ULONG* p_dwCodePages) {
  if (!fontLink) return E_FAIL;
  DWORD codePages = 0;
  const HRESULT result = fontLink->GetFontCodePages(GdiHandleFrom(dwDC), GdiHandleFrom<HFONT>(dwhFont), &codePages);
  *p_dwCodePages = codePages;
  return result;
}

HRESULT CoLumenBrokerServer::BrokerIMLangFontLinkReleaseFont(ULONG dwhFont) {
  return fontLink ? fontLink->ReleaseFont(GdiHandleFrom<HFONT>(dwhFont)) : E_FAIL;
}
