// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/ExDB.h"

/// The lines of the current order, with the names of their items. They number themselves, take price
/// and unit from the item when its code is entered, and reckon their amounts.
class TOrderLines : public Korvane::TExQuery
{
public:
    /// Items: where codes are looked up; a found one becomes current there.
    explicit TOrderLines(Korvane::TExQuery &items, QObject *owner = nullptr);

    /// A new line in which nothing was entered is dropped.
    void Post() override;
    /// Whether lines have changed places since they were read: numbers are part of the key, so that
    /// such lines can only be written anew as a whole.
    bool IsReordered() const { return FIsReordered; }
    void Move(bool up);
    /// Puts lines back as Data gave them, with what is changed in them and not saved.
    void Restore(const Korvane::TDataPacket &lines);

    /// Makes the item of the current line current among the items; false when there is none.
    bool FindItem();

protected:
    void DoAfterOpen() override;

private:
    bool IsUntouched() const;
    void CheckItem(Korvane::TField *code);
    void TakeItem();
    void Reckon();

    Korvane::TExQuery &FItems;
    bool FIsReordered = false;
};
