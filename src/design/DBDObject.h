// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"

#include <QPointer>

namespace Korvane {

class TDBDFile;

/// Base of the definitions made from a design file.
class TDBDObject : public TComponent
{
    Q_OBJECT
    Q_MOC_INCLUDE("design/DBDFile.h")
    Q_PROPERTY(Korvane::TDBDFile *DBDFile READ DBDFile WRITE SetDBDFile)

public:
    using TComponent::TComponent;

    /// The design file that the definition is read from; null by itself when that file dies.
    TDBDFile *DBDFile() const;
    void SetDBDFile(TDBDFile *file);

protected:
    /// Raises Exception when no file is set.
    TDBDFile &File() const;

private:
    QPointer<QObject> FDBDFile;
};

} // namespace Korvane
