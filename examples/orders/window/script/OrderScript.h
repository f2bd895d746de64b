// SPDX-License-Identifier: MIT
#pragma once

#include "examples/orders/window/script/ScriptPlayer.h"

class TOrdersForm;

/// What the player does with the window: it looks at orders, changes, adds and deletes one, makes
/// mistakes and edits an item.
class TOrderScript
{
public:
    TOrderScript(TOrdersForm &form, const QString &pictureFolder);

    void Start() { FPlayer.Start(); }

private:
    void AddLooking();
    void AddChanging();
    void AddMistakes();
    void AddSaving();
    void AddNewOrder();
    void AddItems();
    void AddEnd();

    QString HeadText(const char16_t *field) const;
    double LineNumber(const char16_t *field) const;
    /// The first column of the first row in the database.
    QString InDatabase(const QString &statement) const;
    QString OrderCondition() const;
    void CheckStored(const QString &claim);

    TOrdersForm &FForm;
    TScriptPlayer FPlayer;
    QString FOrder; // the condition that finds the order worked on
    double FAmount = 0;
    qsizetype FLineCount = 0;
    int FOrderCount = 0;
};
