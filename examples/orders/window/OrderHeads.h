// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/ExDB.h"

/// What the user enters of an order besides its lines. Texts as they stand in the database: the date
/// is "yyyymmdd".
struct TOrderHeadValues
{
    QString BillType, BillCode, BillDate;
    QString CustCode, CustName;
    QString LinkMan, ShipAddress, Note;
};

/// The heads of orders, with the names of their customers. Rows can be ticked.
class TOrderHeads : public Korvane::TExQuery
{
public:
    explicit TOrderHeads(QObject *owner = nullptr);

    /// With OnLeave set a post is not done but told: the row is about to be left. The handler ends
    /// the edit, or raises.
    void Post() override;
    Korvane::TEvent<> OnLeave;

    TOrderHeadValues Values() const;
    /// Into the row being edited.
    void SetValues(const TOrderHeadValues &values);
    /// "2201-20240600014"
    QString OrderName() const;

protected:
    void DoAfterOpen() override;
    void DoOnNewRecord() override;
};
