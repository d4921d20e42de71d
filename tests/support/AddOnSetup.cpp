// AddOnSetup trust DER | distrust DER | stop: what the account of the add-on products needs done from inside.
#include <windows.h>

#include <wincrypt.h>

#include "tests/support/DemoAddOnProcess.h"
#include "tests/support/TestFiles.h"

int wmain(int count, wchar_t** words) {
  const WideString what = count > 1 ? words[1] : L"";
  if (what == L"stop") {
    demo_addon::Stop();
    return 0;
  }
  if (count != 3 || (what != L"trust" && what != L"distrust")) return 2;
  const std::string der = testing_files::ReadWhole(words[2]);
  const HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  PCCERT_CONTEXT stored = nullptr;
  BOOL done = CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(der.data()),
                                               static_cast<DWORD>(der.size()), CERT_STORE_ADD_REPLACE_EXISTING,
                                               what == L"trust" ? nullptr : &stored);
  if (stored != nullptr) done = CertDeleteCertificateFromStore(stored);  // frees it too
  CertCloseStore(store, 0);
  return done ? 0 : 1;
}
