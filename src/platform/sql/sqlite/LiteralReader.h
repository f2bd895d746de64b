// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <string_view>
#include <vector>

namespace Korvane {

/// What a literal stands for: what the engine would make of it if it stood in the statement.
struct TLiteral
{
    enum class TKind : quint8 { Null, Whole, Number, Text };

    TKind Kind = TKind::Null;
    qint64 Whole = 0;
    double Number = 0;
    std::string_view Text; ///< UTF-8; valid until the reader starts anew
};

/// Reads literals off a statement: texts, whole numbers and decimals with or without a sign,
/// NULL. It reads only what has the same value whatever release of the engine reads it: no
/// hexadecimal numbers, no exponents, no numbers of very many digits.
class TLiteralReader
{
public:
    explicit TLiteralReader(TSqlDialect dialect) : FIsAccess(dialect == TSqlDialect::Access) {}

    /// Forgets what was read and makes room for the literals of a text of so many characters.
    void Start(qsizetype textSize);
    /// Reads a literal and returns the place behind it; null if none of the above begins there.
    const char16_t *Read(const char16_t *at, const char16_t *end);
    /// What was read, in order.
    const std::vector<TLiteral> &Literals() const { return FLiterals; }

private:
    const char16_t *ReadText(const char16_t *at, const char16_t *end, char16_t quote);
    const char16_t *ReadNumber(const char16_t *at, const char16_t *end, bool isNegative);
    const char16_t *ReadNull(const char16_t *at, const char16_t *end);

    const bool FIsAccess;
    std::vector<TLiteral> FLiterals;
    std::vector<char> FBytes;
    char *FNextByte = nullptr;
};

} // namespace Korvane
