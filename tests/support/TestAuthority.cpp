#include "support/TestAuthority.h"

#include <openssl/bn.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace {

constexpr long secondsInTwoDays = 2 * 86'400;

void require(bool good, const char* what)
{
    if (!good)
        throw std::runtime_error(what);
}

std::shared_ptr<EVP_PKEY> makeKey()
{
    std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    require(key != nullptr, "no key could be made");
    return key;
}

void addExtension(X509* certificate, X509* issuer, int kind, const QByteArray& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData()), X509_EXTENSION_free);
    require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "an extension was refused");
}

struct Description {
    QByteArray commonName;
    long serial = 1;
    long validSeconds = 0;
};

// Everything but the extensions and the signature.
std::shared_ptr<X509> makeCertificate(const Description& description, EVP_PKEY* key, X509* issuer)
{
    std::shared_ptr<X509> certificate(X509_new(), X509_free);
    require(certificate != nullptr, "no certificate could be made");
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), description.serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -secondsInTwoDays);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), description.validSeconds);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME* name = X509_get_subject_name(certificate.get());
    const auto* text = reinterpret_cast<const unsigned char*>(description.commonName.constData());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0);
    X509_set_issuer_name(certificate.get(), issuer ? X509_get_subject_name(issuer) : name);
    return certificate;
}

/// Whether both numbers of a signature fill their 32 bytes.
bool hasFullNumbers(const X509* certificate)
{
    const ASN1_BIT_STRING* bits = nullptr;
    X509_get0_signature(&bits, nullptr, certificate);
    const unsigned char* bytes = ASN1_STRING_get0_data(bits);
    const std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> signature(
        d2i_ECDSA_SIG(nullptr, &bytes, ASN1_STRING_length(bits)), ECDSA_SIG_free);
    constexpr int numberBytes = 32;
    return signature && BN_num_bytes(ECDSA_SIG_get0_r(signature.get())) == numberBytes
           && BN_num_bytes(ECDSA_SIG_get0_s(signature.get())) == numberBytes;
}

// Wine takes a signature for forged of which a number has a zero in front, one in 128;
// each signature of the same certificate has other numbers.
void sign(X509* certificate, EVP_PKEY* key)
{
    do {
        require(X509_sign(certificate, key, EVP_sha256()) > 0, "a certificate could not be signed");
    } while (!hasFullNumbers(certificate));
}

} // namespace

TestAuthority::TestAuthority()
    : key(makeKey()),
      certificate(makeCertificate({"Throw-away authority", 1, secondsInTwoDays}, key.get(), nullptr))
{
    addExtension(certificate.get(), certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate.get(), certificate.get(), NID_key_usage, "critical,keyCertSign");
    addExtension(certificate.get(), certificate.get(), NID_subject_key_identifier, "hash");
    sign(certificate.get(), key.get());

    const std::unique_ptr<BIO, decltype(&BIO_free)> file(
        BIO_new_file(certificateFile().toLocal8Bit().constData(), "w"), BIO_free);
    require(file && PEM_write_bio_X509(file.get(), certificate.get()) == 1,
            "the authority could not be stored");
}

TestAuthority::~TestAuthority() = default;

QString TestAuthority::certificateFile() const
{
    return folder.filePath(QStringLiteral("authority.pem"));
}

std::shared_ptr<SSL_CTX> TestAuthority::makeServerContext(const QList<QByteArray>& hosts,
                                                          long validSeconds) const
{
    const std::shared_ptr<EVP_PKEY> serverKey = makeKey();
    const std::shared_ptr<X509> server =
        makeCertificate({"Loopback", 2, validSeconds}, serverKey.get(), certificate.get());
    QByteArray names;
    for (const QByteArray& host : hosts)
        names += (names.isEmpty() ? "DNS:" : ",DNS:") + host;
    addExtension(server.get(), certificate.get(), NID_basic_constraints, "critical,CA:FALSE");
    addExtension(server.get(), certificate.get(), NID_subject_alt_name, names);
    addExtension(server.get(), certificate.get(), NID_ext_key_usage, "serverAuth");
    sign(server.get(), key.get());

    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    require(context && SSL_CTX_use_certificate(context.get(), server.get()) == 1
                && SSL_CTX_use_PrivateKey(context.get(), serverKey.get()) == 1,
            "the server did not take its certificate");
    return context;
}
