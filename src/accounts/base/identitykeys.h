// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** The keys under which an account's record names its identities in the sign-on service. */
namespace IdentityKeys {

inline constexpr char Password[] = "CredentialsId";
inline constexpr char CertificatePassphrase[] = "SslCertCredentialsId";

} // namespace IdentityKeys
