#include "delivery/SignedMessage.h"

#include <windows.h>

#include <wincrypt.h>

#include <new>
#include <utility>

#include "engine/Handles.h"

namespace {

constexpr DWORD kEncoding = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;
constexpr int kMostIssuers = 8;

struct CertificateTraits {
  using Value = PCCERT_CONTEXT;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value certificate) { return certificate != nullptr; }
  static void Close(Value certificate) { CertFreeCertificateContext(certificate); }
};
struct StoreTraits {
  using Value = HCERTSTORE;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value store) { return store != nullptr; }
  static void Close(Value store) { CertCloseStore(store, 0); }
};
using Certificate = handles::Owner<CertificateTraits>;
using CertificateStore = handles::Owner<StoreTraits>;

// Checks signer 0 and takes out the content and the signer's certificate.
bool OpenMessage(std::span<const uint8_t> message, std::vector<uint8_t>& content, Certificate& signer) {
  CRYPT_VERIFY_MESSAGE_PARA parameters = {};
  static_assert(sizeof(parameters) == 32);
  parameters.cbSize = sizeof(parameters);
  parameters.dwMsgAndCertEncodingType = kEncoding;

  const auto length = static_cast<DWORD>(message.size());
  DWORD size = 0;
  if (!CryptVerifyMessageSignature(&parameters, 0, message.data(), length, nullptr, &size, nullptr)) return false;
  // One byte at least: an empty vector has no address, and a null one asks for the size again.
  std::vector<uint8_t> buffer(size == 0 ? 1 : size);
  if (!CryptVerifyMessageSignature(&parameters, 0, message.data(), length, buffer.data(), &size, signer.Receive())) {
    return false;
  }
  buffer.resize(size);
  content = std::move(buffer);
  return signer.IsValid();
}

// Whether `issuer` signed `subject` and `subject` is within its time.
bool IsIssuedBy(const Certificate& subject, const Certificate& issuer) {
  DWORD flags = CERT_STORE_SIGNATURE_FLAG | CERT_STORE_TIME_VALIDITY_FLAG;
  return CertVerifySubjectCertificateContext(subject.Get(), issuer.Get(), &flags) && flags == 0;
}

// Walks from the signer to the topmost certificate that the message carries, checking each link.
bool ClimbToTop(const CertificateStore& store, Certificate& current) {
  for (int count = 0;;) {
    Certificate issuer(
        CertFindCertificateInStore(store.Get(), kEncoding, 0, CERT_FIND_ISSUER_OF, current.Get(), nullptr));
    if (!issuer.IsValid() || issuer.Get() == current.Get()) return true;
    if (!IsIssuedBy(current, issuer)) return false;
    current = std::move(issuer);
    if (++count > kMostIssuers) return false;
  }
}

}  // namespace

bool VerifySignedMessage(std::span<const uint8_t> message, std::span<const uint8_t> anchor,
                         std::vector<uint8_t>& content) try {
  if (anchor.data() == nullptr || message.size() > MAXDWORD || anchor.size() > MAXDWORD) return false;
  std::vector<uint8_t> signedContent;
  Certificate current;
  if (!OpenMessage(message, signedContent, current)) return false;

  const CertificateStore store(
      CryptGetMessageCertificates(kEncoding, 0, 0, message.data(), static_cast<DWORD>(message.size())));
  const Certificate top(CertCreateCertificateContext(kEncoding, anchor.data(), static_cast<DWORD>(anchor.size())));
  if (!store.IsValid() || !top.IsValid()) return false;
  if (!ClimbToTop(store, current) || !IsIssuedBy(current, top)) return false;
  content = std::move(signedContent);
  return true;
} catch (const std::bad_alloc&) {
  return false;  // a message may claim any size
}
