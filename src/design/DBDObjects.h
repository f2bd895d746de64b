// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBObject.h"

namespace Korvane {

// The rows of a design file. What each column means is told in docs/design-file.md. The
// classes are registered from the start of the program.

/// A row of the design table `Tables`.
class TTablesObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString TableCode MEMBER TableCode)
    Q_PROPERTY(QString TableClass MEMBER TableClass)
    Q_PROPERTY(QString TableName MEMBER TableName)
    Q_PROPERTY(QString Remark MEMBER Remark)

public:
    QString TableCode;
    QString TableClass;
    QString TableName;
    QString Remark;
};

/// A row of `Fields`: a column of a table, and also a column of a query.
class TFieldsObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString TableCode MEMBER TableCode)
    Q_PROPERTY(int FieldNo MEMBER FieldNo)
    Q_PROPERTY(QString FieldCode MEMBER FieldCode)
    Q_PROPERTY(QString FieldName MEMBER FieldName)
    Q_PROPERTY(QString FieldProp MEMBER FieldProp)
    Q_PROPERTY(QString FieldType MEMBER FieldType)
    Q_PROPERTY(int FieldPrecision MEMBER FieldPrecision)
    Q_PROPERTY(int FieldSize MEMBER FieldSize)
    Q_PROPERTY(bool IsAuto MEMBER IsAuto)
    Q_PROPERTY(bool IsKey MEMBER IsKey)
    Q_PROPERTY(bool IsNotNull MEMBER IsNotNull)
    Q_PROPERTY(QString FieldDefault MEMBER FieldDefault)
    Q_PROPERTY(QString Remark MEMBER Remark)

public:
    QString TableCode;
    int FieldNo = 0;
    QString FieldCode;
    QString FieldName;
    QString FieldProp;
    QString FieldType;
    int FieldPrecision = 0;
    int FieldSize = 0;
    bool IsAuto = false;
    bool IsKey = false;
    bool IsNotNull = false;
    QString FieldDefault;
    QString Remark;
};

/// A row of `Indexs`.
class TIndexsObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString TableCode MEMBER TableCode)
    Q_PROPERTY(QString IndexCode MEMBER IndexCode)
    Q_PROPERTY(QString IndexName MEMBER IndexName)
    Q_PROPERTY(QString IndexFields MEMBER IndexFields)
    Q_PROPERTY(bool IsCluster MEMBER IsCluster)
    Q_PROPERTY(bool IsUnique MEMBER IsUnique)

public:
    QString TableCode;
    QString IndexCode;
    QString IndexName;
    QString IndexFields;
    bool IsCluster = false;
    bool IsUnique = false;
};

/// A row of `Querys`.
class TQuerysObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString QueryCode MEMBER QueryCode)
    Q_PROPERTY(QString QueryClass MEMBER QueryClass)
    Q_PROPERTY(QString QueryName MEMBER QueryName)
    Q_PROPERTY(QString Remark MEMBER Remark)
    Q_PROPERTY(QString Tables MEMBER Tables)
    Q_PROPERTY(QString Access MEMBER Access)
    Q_PROPERTY(QString MSSQL MEMBER MSSQL)

public:
    QString QueryCode;
    QString QueryClass;
    QString QueryName;
    QString Remark;
    QString Tables;
    QString Access;
    QString MSSQL;
};

/// A row of `Columns`: a column of a query.
class TColumnsObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString QueryCode MEMBER QueryCode)
    Q_PROPERTY(int ColumnNo MEMBER ColumnNo)
    Q_PROPERTY(QString Alias MEMBER Alias)
    Q_PROPERTY(QString ColumnName MEMBER ColumnName)
    Q_PROPERTY(QString Expression MEMBER Expression)
    Q_PROPERTY(QString TableField MEMBER TableField)

public:
    QString QueryCode;
    int ColumnNo = 0;
    QString Alias;
    QString ColumnName;
    QString Expression;
    QString TableField;
};

/// A row of `Commands`.
class TCommandsObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString CommandCode MEMBER CommandCode)
    Q_PROPERTY(QString CommandName MEMBER CommandName)
    Q_PROPERTY(QString Remark MEMBER Remark)
    Q_PROPERTY(QString Access MEMBER Access)
    Q_PROPERTY(QString MSSQL MEMBER MSSQL)

public:
    QString CommandCode;
    QString CommandName;
    QString Remark;
    QString Access;
    QString MSSQL;
};

/// A row of `Changes`: a numbered change of the schema.
class TChangesObject : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(int ChangeNo MEMBER ChangeNo)
    Q_PROPERTY(QString ChangeDate MEMBER ChangeDate)
    Q_PROPERTY(QString ChangeName MEMBER ChangeName)
    Q_PROPERTY(QString Remark MEMBER Remark)
    Q_PROPERTY(QString Access MEMBER Access)
    Q_PROPERTY(QString MSSQL MEMBER MSSQL)

public:
    int ChangeNo = 0;
    QString ChangeDate;
    QString ChangeName;
    QString Remark;
    QString Access;
    QString MSSQL;
};

/// The columns of TFieldsObject, for applications that show the design as data.
class TFieldsQuery : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString TableCode MEMBER TableCode)
    Q_PROPERTY(int FieldNo MEMBER FieldNo)
    Q_PROPERTY(QString FieldCode MEMBER FieldCode)
    Q_PROPERTY(QString FieldName MEMBER FieldName)
    Q_PROPERTY(QString FieldProp MEMBER FieldProp)
    Q_PROPERTY(QString FieldType MEMBER FieldType)
    Q_PROPERTY(int FieldPrecision MEMBER FieldPrecision)
    Q_PROPERTY(int FieldSize MEMBER FieldSize)
    Q_PROPERTY(bool IsAuto MEMBER IsAuto)
    Q_PROPERTY(bool IsKey MEMBER IsKey)
    Q_PROPERTY(bool IsNotNull MEMBER IsNotNull)
    Q_PROPERTY(QString FieldDefault MEMBER FieldDefault)
    Q_PROPERTY(QString Remark MEMBER Remark)

public:
    QString TableCode;
    int FieldNo = 0;
    QString FieldCode;
    QString FieldName;
    QString FieldProp;
    QString FieldType;
    int FieldPrecision = 0;
    int FieldSize = 0;
    bool IsAuto = false;
    bool IsKey = false;
    bool IsNotNull = false;
    QString FieldDefault;
    QString Remark;
};

/// Tables and queries in one list, for applications that show the design as data.
class TTablesQuery : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString ObjectType MEMBER ObjectType)
    Q_PROPERTY(QString TableCode MEMBER TableCode)
    Q_PROPERTY(QString TableClass MEMBER TableClass)
    Q_PROPERTY(QString TableName MEMBER TableName)

public:
    QString ObjectType;
    QString TableCode;
    QString TableClass;
    QString TableName;
};

/// Registers the classes above. Runs by itself at the start of a program that uses a design
/// file; calling it again changes nothing.
void RegisterDesignClasses();
/// Takes the registration back.
void UnRegisterDesignClasses();

/// Runs when a program starts that includes this file anywhere.
inline const bool DesignClassesRegistered = (RegisterDesignClasses(), true);

} // namespace Korvane
