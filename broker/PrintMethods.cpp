#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerDeleteDC(ULONG /*dwHDC*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSaveDC(ULONG /*dwHDC*/, ULONG* /*p_dwState*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerRestoreDC(ULONG /*dwHDC*/, ULONG /*dwSavedDC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerStartDoc(ULONG /*dwHDC*/, ULONG* /*p_pixelWidth*/, ULONG* /*p_pixelHeight*/,
                                            ULONG* /*p_deviceWidth*/, ULONG* /*p_deviceHeight*/,
                                            ULONG* /*p_paperPixelWidth*/, ULONG* /*p_paperPixelHeight*/,
                                            ULONG* /*p_hRes*/, ULONG* /*p_vRes*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerStartPage(ULONG /*dwHDC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerAddRectangle(ULONG /*dwHDC*/, SAFEARRAY* /*p_RectArray*/, ULONG /*dwRGB*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerIntersectClipRect(ULONG /*dwHDC*/, ULONG /*dwLeft*/, ULONG /*dwTop*/,
                                                     ULONG /*dwRight*/, ULONG /*dwBottom*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetPolyFillMode(ULONG /*dwHDC*/, ULONG /*dwMode*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerBeginPath(ULONG /*dwHDC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerEndPath(ULONG /*dwHDC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerMoveTo(ULONG /*dwHDC*/, ULONG /*dwX*/, ULONG /*dwY*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLineTo(ULONG /*dwHDC*/, ULONG /*dwDeltaX*/, ULONG /*dwDeltaY*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPathToSolidFill(ULONG /*dwHDC*/, ULONG /*dwRGB*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerEndPage(ULONG /*dwHDC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerEndDoc(ULONG /*dwHDC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPathToBitmapFill(ULONG /*dwHDC*/, SAFEARRAY* /*p_tRectArray*/,
                                                    SAFEARRAY* /*p_sRectArray*/, SAFEARRAY* /*p_BitmapArray*/,
                                                    SAFEARRAY* /*p_BitmapInfoArray*/, ULONG /*dwSaveRestore*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPathToTransparentBitmapFill(ULONG /*dwHDC*/, SAFEARRAY* /*p_tRectArray*/,
                                                               SAFEARRAY* /*p_sRectArray*/,
                                                               SAFEARRAY* /*p_BitmapArray*/,
                                                               SAFEARRAY* /*p_BitmapInfoArray*/, ULONG /*dwRGB*/,
                                                               ULONG /*dwROP*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPolyBezierTo(ULONG /*dwHDC*/, SAFEARRAY* /*p_CubicArray*/, ULONG /*dwCount*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPathToStrokedLine(ULONG /*dwHDC*/, ULONG /*dwThickness*/, ULONG /*dwRGB*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSelectClipPath(ULONG /*dwHDC*/, ULONG /*dwMode*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetTextAlign(ULONG /*dwHDC*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetTextAlign(ULONG /*dwHDC*/, ULONG /*dwAlign*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetBkMode(ULONG /*dwHDC*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetBkMode(ULONG /*dwHDC*/, ULONG /*dwMode*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetTextColor(ULONG /*dwHDC*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetTextColor(ULONG /*dwHDC*/, ULONG /*dwColor*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetDeviceCaps(ULONG /*dwHDC*/, ULONG /*dwIndex*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerDPtoLP(ULONG /*dwHDC*/, ULONG* /*p_dwX*/, ULONG* /*p_dwY*/, ULONG /*dwCount*/,
                                          ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerCreateFontIndirect(SAFEARRAY* /*p_LogFontArray*/, ULONG* /*p_dwFont*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetObjectType(ULONG /*dwHandle*/, ULONG* /*p_dwType*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetCurrentObject(ULONG /*dwHDC*/, ULONG /*dwObjectType*/, ULONG* /*p_dwHGDIObj*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSelectObject(ULONG /*dwHDC*/, ULONG /*dwHGDI*/, ULONG* /*p_dwHGDIOld*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerDeleteObject(ULONG /*dwHandle*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerExtTextOutA(ULONG /*dwHDC*/, ULONG /*dwX*/, ULONG /*dwY*/, ULONG /*dwOptions*/,
                                               ULONG /*dwIsRectNULL*/, SAFEARRAY* /*p_RectArray*/,
                                               SAFEARRAY* /*p_StrArray*/, ULONG /*dwCount*/, ULONG /*dwIsDxNULL*/,
                                               SAFEARRAY* /*p_DxArray*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerExtTextOutW(ULONG /*dwHDC*/, ULONG /*dwX*/, ULONG /*dwY*/, ULONG /*dwOptions*/,
                                               ULONG /*dwIsRectNULL*/, SAFEARRAY* /*p_RectArray*/,
                                               SAFEARRAY* /*p_StrArray*/, ULONG /*dwCount*/, ULONG /*dwIsDxNULL*/,
                                               SAFEARRAY* /*p_DxArray*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetTextMetrics(ULONG /*dwHDC*/, VARIANT* /*p_VarTextmetricArray*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetTextExtentPoint32A(ULONG /*dwHDC*/, SAFEARRAY* /*p_StrArray*/, ULONG /*dwCount*/,
                                                         ULONG* /*p_dwCx*/, ULONG* /*p_dwCy*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetTextExtentPoint32W(ULONG /*dwHDC*/, SAFEARRAY* /*p_StrArray*/, ULONG /*dwCount*/,
                                                         ULONG* /*p_dwCx*/, ULONG* /*p_dwCy*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetTextCharacterExtra(ULONG /*dwHDC*/, ULONG /*dwCharExtra*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSelectClipRgnNULL(ULONG /*dwHDC*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetWorldTransform(ULONG /*dwHDC*/, VARIANT* /*p_VarXformArray*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetWorldTransform(ULONG /*dwHDC*/, SAFEARRAY* /*p_XformArray*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetGraphicsMode(ULONG /*dwHDC*/, ULONG /*dwMode*/, ULONG* /*p_dwRC*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerIMLangFontLinkMapFont(ULONG /*dwDC*/, ULONG /*dwCodePages*/, ULONG /*dwhSrcFont*/,
                                                         ULONG* /*p_dwhDestFont*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerIMLangFontLinkGetFontCodePages(ULONG /*dwDC*/, ULONG /*dwhFont*/,
                                                                  ULONG* /*p_dwCodePages*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerIMLangFontLinkReleaseFont(ULONG /*dwhFont*/) {
  return E_NOTIMPL;
}
