#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>

#include <memory>

struct ssl_ctx_st;
struct evp_pkey_st;
struct x509_st;

/// A certificate authority that exists for one run of tests: its key never leaves the
/// memory, its certificate lies in a temporary file.
class TestAuthority {
public:
    TestAuthority();
    ~TestAuthority();

    /// The authority's own certificate, as a PEM file.
    QString certificateFile() const;

    /// A server's TLS set-up with a certificate for these host names.
    /// @param validSeconds  from now; negative for one that has run out
    std::shared_ptr<ssl_ctx_st> makeServerContext(const QList<QByteArray>& hosts,
                                                  long validSeconds = 86'400) const;

private:
    QTemporaryDir folder;
    std::shared_ptr<evp_pkey_st> key;
    std::shared_ptr<x509_st> certificate;
};
