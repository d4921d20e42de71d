#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerSaveDialog(ULONG /*p_hwnd*/, LPWSTR /*p_lpwstrInitialFileName*/,
                                              ULONG* /*p_fileCookie*/, BSTR* /*p_chosenFilePath*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerOpenDialog(ULONG /*p_hwnd*/, ULONG /*dwFilterPairs*/, ULONG /*dwFilterLength*/,
                                              SAFEARRAY* /*p_FilterArray*/, ULONG /*dwFlags*/,
                                              VARIANT* /*p_chosenFilePathArray*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPrintDialog(ULONG /*p_hwnd*/, ULONG* /*p_nFromPage*/, ULONG* /*p_nToPage*/,
                                               ULONG* /*p_dwFlags*/, ULONG* /*p_hdc*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSaveDialog2(ULONG /*p_hwnd*/, LPWSTR /*p_lpwstrInitialFileName*/,
                                               ULONG /*dwFilterPairs*/, ULONG /*dwFilterLength*/,
                                               SAFEARRAY* /*p_FilterArray*/, ULONG /*dwFlags*/, ULONG* /*p_fileCookie*/,
                                               BSTR* /*p_chosenFilePath*/) {
  return E_NOTIMPL;
}
