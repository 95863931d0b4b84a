#pragma once

#include <QByteArray>
#include <QString>

/// Makes the machine believe a certificate authority for its lifetime, where a
/// transport asks the system alone; elsewhere nothing.
class TrustedAuthority {
public:
    explicit TrustedAuthority(const QString& certificateFile);
    ~TrustedAuthority();
    TrustedAuthority(const TrustedAuthority&) = delete;
    TrustedAuthority& operator=(const TrustedAuthority&) = delete;

private:
    QByteArray certificate; ///< DER
};
