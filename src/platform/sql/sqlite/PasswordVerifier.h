// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// A text from which a password can be checked but not read: PBKDF2 (RFC 8018) with SHA-256,
/// a random salt of 16 bytes and its number of rounds, "pbkdf2-sha256$rounds$salt$key" with
/// salt and key in Base64.
QString MakePasswordVerifier(const QString &password);

/// Whether a password is the one that a verifier was made from; false for a verifier that
/// cannot be read. Takes about as long for a wrong password as for the right one.
bool CheckPassword(const QString &password, const QString &verifier);

} // namespace Korvane
