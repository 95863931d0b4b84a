#include "support/TrustedAuthority.h"

TrustedAuthority::TrustedAuthority(const QString&) {}

TrustedAuthority::~TrustedAuthority() = default;
