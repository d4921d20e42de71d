#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerCreateFile(BSTR /*pFileName*/, LONG /*p_readOnly*/, LONG /*p_truncateOnOpen*/,
                                              ULONG* /*p_fileCookie*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerCloseHandle(ULONG /*p_fileCookie*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerSetFilePointer(ULONG /*p_fileCookie*/, LONG /*p_distanceToMove*/,
                                                  ULONG /*p_moveMethod*/, ULONG* /*p_newPosition*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerReadFile(ULONG /*p_fileCookie*/, ULONG /*p_numToRead*/, ULONG* /*p_numRead*/,
                                            SAFEARRAY** /*p_data*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerWriteFile(ULONG /*p_fileCookie*/, SAFEARRAY* /*p_data*/, ULONG* /*p_numWritten*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerDeleteFile(BSTR /*p_fileName*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerRemoveDirectory(BSTR /*p_dirName*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerMoveFileEx(BSTR /*p_oldFileName*/, BSTR /*p_newFileName*/, LONG /*dwFlags*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerCreateDirectory(BSTR /*p_dirName*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetFileAttributesEx(BSTR /*p_fileName*/, ULONG* /*p_dwFileAttributes*/,
                                                       ULONG* /*p_ftCreationTimeLo*/, ULONG* /*p_ftCreationTimeHi*/,
                                                       ULONG* /*p_ftLastAccessTimeLo*/, ULONG* /*p_ftLastAccessTimeHi*/,
                                                       ULONG* /*p_ftLastWriteTimeLo*/, ULONG* /*p_ftLastWriteTimeHi*/,
                                                       ULONG* /*p_nFileSizeLo*/, ULONG* /*p_nFileSizeHi*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerFindFirstFile(BSTR /*p_searchPath*/, BSTR* /*p_fileLeafName*/,
                                                 ULONG* /*p_fileAttrs*/, ULONG* /*p_findCookie*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerFindNextFile(ULONG /*p_findCookie*/, BSTR* /*p_fileLeafName*/,
                                                ULONG* /*p_fileAttrs*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerFindClose(ULONG /*p_findCookie*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerIsWritablePath(BSTR /*p_path*/, LONG /*p_alsoCheckExtension*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerDeleteBrowsingHistory(BSTR /*pRootPathName*/) {
  return E_NOTIMPL;
}
