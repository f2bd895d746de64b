// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/DateTime.h"

#include <QDate>
#include <QString>
#include <QTime>

#include <optional>

namespace Korvane {

/// A date, a time or both, as statements keep them in texts.
struct TSqlMoment
{
    QDate Date; ///< invalid: a time alone
    QTime Time; ///< invalid: a date alone

    QDate DateOrFirst() const { return Date.isValid() ? Date : QDate(1899, 12, 30); }
    QTime TimeOrMidnight() const { return Time.isValid() ? Time : QTime(0, 0); }
    TDateTime ToDateTime() const { return TDateTime(DateOrFirst(), TimeOrMidnight()); }
    /// "yyyy-mm-dd", "yyyy-mm-dd hh:mm:ss.zzz" or "hh:mm:ss".
    QString ToText() const;
};

/// Reads yyyymmdd, yyyymmddhhmmss, yyyy-mm-dd (also with "/" or "."), hh:mm[:ss[.zzz]], or a date and
/// a time with a blank or "T" between. Nothing for any other text.
std::optional<TSqlMoment> ParseSqlMoment(const QString &text);

} // namespace Korvane
