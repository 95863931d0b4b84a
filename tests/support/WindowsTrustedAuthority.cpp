#include "support/TrustedAuthority.h"

#include <windows.h>

#include <wincrypt.h>

#include <QFile>

#include <memory>

namespace {

struct StoreCloser {
    void operator()(void* store) const { CertCloseStore(store, 0); }
};
using Store = std::unique_ptr<void, StoreCloser>;

constexpr DWORD encoding = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;

// That of the registry alone: from the one that shows the machine's as well, Wine takes
// nothing away for good.
Store rootStoreOfUser()
{
    return Store(
        CertOpenStore(CERT_STORE_PROV_SYSTEM_REGISTRY_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root"));
}

const BYTE* bytesOf(const QByteArray& der)
{
    return reinterpret_cast<const BYTE*>(der.constData());
}

QByteArray derOf(const QString& pemFile)
{
    QFile file(pemFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray body;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (!line.startsWith('-'))
            body += line.trimmed();
    }
    return QByteArray::fromBase64(body);
}

// The store is the user's: processes that change it at once undo each other's change.
// The system gives the turn on when this process has ended.
void awaitTurn()
{
    static HANDLE const turn = CreateMutexW(nullptr, FALSE, L"tarvel-trusted-authority");
    WaitForSingleObject(turn, INFINITE);
}

} // namespace

TrustedAuthority::TrustedAuthority(const QString& certificateFile) : certificate(derOf(certificateFile))
{
    awaitTurn();
    CertAddEncodedCertificateToStore(rootStoreOfUser().get(), encoding, bytesOf(certificate),
                                     static_cast<DWORD>(certificate.size()), CERT_STORE_ADD_ALWAYS, nullptr);
}

TrustedAuthority::~TrustedAuthority()
{
    const Store store = rootStoreOfUser();
    const CERT_CONTEXT* wanted =
        CertCreateCertificateContext(encoding, bytesOf(certificate), static_cast<DWORD>(certificate.size()));
    if (const CERT_CONTEXT* found =
            CertFindCertificateInStore(store.get(), encoding, 0, CERT_FIND_EXISTING, wanted, nullptr))
        CertDeleteCertificateFromStore(found);
    CertFreeCertificateContext(wanted);
}
