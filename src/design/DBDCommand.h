// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObject.h"
#include "design/DBDObjects.h"

namespace Korvane {

/// The definition of one named command.
class TDBDCommand : public TDBDObject
{
    Q_OBJECT
    Q_PROPERTY(QString Command READ Command WRITE SetCommand)
    Q_PROPERTY(std::shared_ptr<Korvane::TCommandsObject> CommandObject READ CommandObject STORED false)

public:
    explicit TDBDCommand(QObject *owner = nullptr);

    const QString &Command() const { return FCommand; }
    /// Aims the definition; nothing happens when the code is the current one. An unknown code
    /// raises, is kept, and leaves the object as it was.
    void SetCommand(const QString &command);
    /// The row; an empty object until the first aim.
    const std::shared_ptr<TCommandsObject> &CommandObject() const { return FCommandObject; }

private:
    QString FCommand;
    std::shared_ptr<TCommandsObject> FCommandObject;
};

} // namespace Korvane
