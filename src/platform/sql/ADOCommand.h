// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/data/FieldTypes.h"
#include "platform/sql/SqlDriver.h"

#include <QPointer>

namespace Korvane {

class TADOConnection;

/// A statement with parameters that is run for its effect. The parameters are found in the
/// text: a colon and a name, outside of literals, quoted names and comments.
class TADOCommand : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(QString CommandText READ CommandText WRITE SetCommandText)

public:
    using TComponent::TComponent;

    TADOConnection *Connection() const { return FConnection; }
    void SetConnection(TADOConnection *connection) { FConnection = connection; }

    const QString &CommandText() const { return FCommandText; }
    /// Finds the parameters anew, without values.
    void SetCommandText(const QString &text);

    qsizetype ParameterCount() const { return FParameters.size(); }
    const TSqlParameter &Parameter(qsizetype index) const { return FParameters[index]; }
    void SetParameter(qsizetype index, const QVariant &value);
    /// Fills a parameter from bytes: a blob, or text in UTF-8 for ftMemo. Raises EListError
    /// when there is no parameter of that number.
    void LoadParameter(qsizetype index, const QByteArray &bytes, TFieldType type);

    /// Runs the statement and returns how many rows it affected.
    qint64 Execute();

private:
    QPointer<TADOConnection> FConnection;
    QString FCommandText;
    QList<TSqlParameter> FParameters;
};

} // namespace Korvane
