// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/PasswordVerifier.h"

#include <QCryptographicHash>
#include <QPasswordDigestor>
#include <QRandomGenerator>
#include <QStringList>

namespace Korvane {

namespace {

constexpr auto Scheme = "pbkdf2-sha256";
constexpr int Rounds = 100'000;
constexpr int MaxRounds = 10'000'000; // a forged file must not make a connect hang
constexpr int SaltBytes = 16;
constexpr int KeyBytes = 32;

QByteArray DeriveKey(const QString &password, const QByteArray &salt, int rounds)
{
    return QPasswordDigestor::deriveKeyPbkdf2(QCryptographicHash::Sha256, password.toUtf8(), salt, rounds,
                                              KeyBytes);
}

} // namespace

QString MakePasswordVerifier(const QString &password)
{
    QByteArray salt(SaltBytes, '\0');
    QRandomGenerator::system()->generate(reinterpret_cast<quint32 *>(salt.data()),
                                         reinterpret_cast<quint32 *>(salt.data() + salt.size()));
    const QByteArray key = DeriveKey(password, salt, Rounds);
    return QStringLiteral("%1$%2$%3$%4")
        .arg(QLatin1String(Scheme), QString::number(Rounds), QString::fromLatin1(salt.toBase64()),
             QString::fromLatin1(key.toBase64()));
}

bool CheckPassword(const QString &password, const QString &verifier)
{
    const QStringList parts = verifier.split(QLatin1Char('$'));
    if (parts.size() != 4 || parts[0] != QLatin1String(Scheme))
        return false;
    const int rounds = parts[1].toInt();
    const QByteArray key = QByteArray::fromBase64(parts[3].toLatin1());
    if (rounds <= 0 || rounds > MaxRounds || key.size() != KeyBytes)
        return false;
    const QByteArray derived = DeriveKey(password, QByteArray::fromBase64(parts[2].toLatin1()), rounds);
    char difference = 0;
    for (int i = 0; i < KeyBytes; ++i)
        difference |= char(derived[i] ^ key[i]);
    return difference == 0;
}

} // namespace Korvane
