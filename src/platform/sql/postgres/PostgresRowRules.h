// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/RowRules.h"

namespace Korvane {

/// Insert, update and delete for PostgreSQL.
class TPostgresRowRules : public TRowRules
{
public:
    using TRowRules::TRowRules;

protected:
    void UpdateJoined(const TJoined &joined, const QList<TAssignment> &assignments) override;
    void DeleteJoined(const TJoined &joined) override;

private:
    /// The other tables of a join and its whole condition.
    struct TOthers
    {
        QString Tables;
        QString Where; ///< with the word and a blank before it
    };

    static bool IsPlain(const TJoined &joined);
    TOthers Others(const TJoined &joined);
    static QString Target(const TJoined &joined);
};

} // namespace Korvane
