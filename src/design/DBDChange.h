// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObject.h"
#include "design/DBDObjects.h"

namespace Korvane {

/// The definition of one numbered change of the schema.
class TDBDChange : public TDBDObject
{
    Q_OBJECT
    Q_PROPERTY(int ChangeNo READ ChangeNo WRITE SetChangeNo)
    Q_PROPERTY(std::shared_ptr<Korvane::TChangesObject> ChangeObject READ ChangeObject STORED false)

public:
    explicit TDBDChange(QObject *owner = nullptr);

    int ChangeNo() const { return FChangeNo; }
    /// Aims the definition; nothing happens when the number is the current one, which is 0 at
    /// first. An unknown number raises, is kept, and leaves the object as it was.
    void SetChangeNo(int number);
    /// The row; an empty object until the first aim.
    const std::shared_ptr<TChangesObject> &ChangeObject() const { return FChangeObject; }
    int GetMaxChangeNo() const;

private:
    int FChangeNo = 0;
    std::shared_ptr<TChangesObject> FChangeObject;
};

} // namespace Korvane
