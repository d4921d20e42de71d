// Printing: the document, the drawing methods that carry arrays, and the fills of several calls. The methods that are
// one call each stand in DrawingMethods.cpp, text and fonts in TextMethods.cpp.
//
// No state is kept and no order is imposed: a client that starts a page before a document gets what the platform says.
#include <windows.h>

#include <iterator>
#include <new>
#include <optional>

#include "broker/CoLumenBrokerServer.h"
#include "broker/CompositeFills.h"
#include "broker/GdiRelay.h"
#include "broker/SafeArrayBytes.h"

namespace {

constexpr wchar_t kDocumentName[] = L"Lumen";
constexpr int kStartDocFailed = -1;  // a device that does not print answers 0, which is no failure here

ULONG Capability(HDC dc, int index) {
  return static_cast<ULONG>(GetDeviceCaps(dc, index));
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerStartDoc(ULONG dwHDC, ULONG* p_pixelWidth, ULONG* p_pixelHeight,
                                            ULONG* p_deviceWidth, ULONG* p_deviceHeight, ULONG* p_paperPixelWidth,
                                            ULONG* p_paperPixelHeight, ULONG* p_hRes, ULONG* p_vRes) {
  const HDC dc = GdiHandleFrom(dwHDC);
  DOCINFOW document = {};
  document.cbSize = sizeof(document);
  document.lpszDocName = kDocumentName;
  if (StartDocW(dc, &document) == kStartDocFailed) return E_FAIL;
  *p_pixelWidth = Capability(dc, HORZRES);
  *p_pixelHeight = Capability(dc, VERTRES);
  POINT corners[] = {{0, 0}, {static_cast<LONG>(*p_pixelWidth), static_cast<LONG>(*p_pixelHeight)}};
  LPtoDP(dc, corners, static_cast<int>(std::size(corners)));
  *p_deviceWidth = static_cast<ULONG>(corners[1].x);
  *p_deviceHeight = static_cast<ULONG>(corners[1].y);
  *p_paperPixelWidth = Capability(dc, PHYSICALWIDTH);
  *p_paperPixelHeight = Capability(dc, PHYSICALHEIGHT);
  *p_hRes = Capability(dc, LOGPIXELSX);
  *p_vRes = Capability(dc, LOGPIXELSY);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerAddRectangle(ULONG dwHDC, SAFEARRAY* p_RectArray, ULONG dwRGB) {
  const SafeArrayBytes rect(p_RectArray);
  GdiRelay relay;
  return AddRectangle(relay, DrawingHandleFrom(dwHDC), rect.Argument(), dwRGB);
}

HRESULT CoLumenBrokerServer::BrokerPathToSolidFill(ULONG dwHDC, ULONG dwRGB) {
  GdiRelay relay;
  FillPathSolid(relay, DrawingHandleFrom(dwHDC), dwRGB);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerPathToStrokedLine(ULONG dwHDC, ULONG dwThickness, ULONG dwRGB) {
  GdiRelay relay;
  StrokePathSolid(relay, DrawingHandleFrom(dwHDC), dwThickness, dwRGB);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerPathToBitmapFill(ULONG dwHDC, SAFEARRAY* p_tRectArray, SAFEARRAY* p_sRectArray,
                                                    SAFEARRAY* p_BitmapArray, SAFEARRAY* p_BitmapInfoArray,
                                                    ULONG dwSaveRestore) try {
  const SafeArrayBytes target(p_tRectArray);
  const SafeArrayBytes source(p_sRectArray);
  const SafeArrayBytes pixels(p_BitmapArray);
  const SafeArrayBytes header(p_BitmapInfoArray);
  GdiRelay relay;
  return FillPathWithBitmap(relay, DrawingHandleFrom(dwHDC),
                            {target.Argument(), source.Argument(), pixels.Argument(), header.Argument()},
                            dwSaveRestore != 0);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerPathToTransparentBitmapFill(ULONG dwHDC, SAFEARRAY* p_tRectArray,
                                                               SAFEARRAY* p_sRectArray, SAFEARRAY* p_BitmapArray,
                                                               SAFEARRAY* p_BitmapInfoArray, ULONG dwRGB,
                                                               ULONG dwROP) try {
  const SafeArrayBytes target(p_tRectArray);
  const SafeArrayBytes source(p_sRectArray);
  const SafeArrayBytes pixels(p_BitmapArray);
  const SafeArrayBytes header(p_BitmapInfoArray);
  GdiRelay relay;
  return FillPathThroughBitmap(relay, DrawingHandleFrom(dwHDC),
                               {target.Argument(), source.Argument(), pixels.Argument(), header.Argument()}, dwRGB,
                               dwROP);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// What the curve call says is nobody's business: a count of 0, which it refuses, is a success here.
HRESULT CoLumenBrokerServer::BrokerPolyBezierTo(ULONG dwHDC, SAFEARRAY* p_CubicArray, ULONG dwCount) {
  const SafeArrayBytes curve(p_CubicArray);
  const std::optional<uint32_t> points = CurvePoints(curve.Argument(), dwCount);
  if (!points) return E_FAIL;
  PolyBezierTo(GdiHandleFrom(dwHDC), reinterpret_cast<const POINT*>(curve.Bytes().data()), *points);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerDPtoLP(ULONG dwHDC, ULONG* p_dwX, ULONG* p_dwY, ULONG dwCount, ULONG* p_dwRC) {
  // The arguments hold one point whatever the count says. A larger count would have the platform convert what lies
  // behind it; no client can see that, so the count ends at 1.
  POINT point = {static_cast<LONG>(*p_dwX), static_cast<LONG>(*p_dwY)};
  *p_dwRC = static_cast<ULONG>(DPtoLP(GdiHandleFrom(dwHDC), &point, dwCount == 0 ? 0 : 1));
  *p_dwX = static_cast<ULONG>(point.x);
  *p_dwY = static_cast<ULONG>(point.y);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerSetWorldTransform(ULONG dwHDC, SAFEARRAY* p_XformArray, ULONG* p_dwRC) {
  const SafeArrayBytes bytes(p_XformArray);
  if (!HasLength(bytes.Argument(), sizeof(XFORM))) return E_FAIL;
  *p_dwRC =
      static_cast<ULONG>(SetWorldTransform(GdiHandleFrom(dwHDC), reinterpret_cast<const XFORM*>(bytes.Bytes().data())));
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerGetWorldTransform(ULONG dwHDC, VARIANT* p_VarXformArray) {
  XFORM transform = {};
  if (GetWorldTransform(GdiHandleFrom(dwHDC), &transform) == 0) return E_FAIL;
  return ReplyWithBytes({reinterpret_cast<const uint8_t*>(&transform), sizeof(transform)}, p_VarXformArray);
}
