// SPDX-License-Identifier: MIT
#include "general/DateRoutines.h"

#include "platform/core/FormatDateTime.h"
#include "platform/core/Numbers.h"

namespace Korvane {

namespace {

int Piece(const QString &text, int place, int length) { return StrToInt(text.mid(place - 1, length)); }

TDateTime TimeAt(const QString &text, int place)
{
    return EncodeTime(Piece(text, place, 2), Piece(text, place + 2, 2), Piece(text, place + 4, 2), 0);
}

} // namespace

TDateTime StrToDateA(const QString &text)
{
    return EncodeDate(Piece(text, 1, 4), Piece(text, 5, 2), Piece(text, 7, 2));
}

TDateTime StrToDateB(const QString &text) { return ComposeDateTime(StrToDateA(text), TimeAt(text, 9)); }

TDateTime StrToDateC(const QString &text) { return TimeAt(text, 1); }

QString DateToStrA(TDateTime date) { return FormatDateTime(QStringLiteral("yyyymmdd"), date); }

} // namespace Korvane
