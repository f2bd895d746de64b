// SPDX-License-Identifier: MIT
#pragma once

#include "design/RecordBinding.h"
#include "platform/data/dataset/DataSet.h"

#include <typeinfo>

namespace Korvane {

/// How a field's value is read for a property.
enum class TCellReading { Text, Integer, Float, Blob };

/// A field of a row and the property of a record that takes its value.
struct TMappedCell
{
    TField *Field;
    const TPropInfo *Property; ///< null when the class has none of the name
    QString FieldProp;
    TCellReading Reading;
    /// The column in the source's rows where its value stands just as it is read; -1 where the field
    /// has to convert it.
    int Column;

    /// Writes the value, of a Boolean property "Y" as true. Raises EPropertyError.
    void Write(TDBObject &object, const QString &value) const;
    void Write(TDBObject &object, qint64 value) const;
    void Write(TDBObject &object, double value) const;

private:
    bool IsFlag() const;
    const TPropInfo &Target() const;
};

/// The way from the rows of a dataset to records of one class, looked up by name once and good
/// for all rows until a field list, the definition or the class is another.
class TRowMapping
{
public:
    /// The definition's fields that the target has, read from the source, which may be another
    /// dataset. Raises EDatabaseError for one that the source lacks.
    void Aim(const TDBObject &object, const TObjectList<TFieldsObject> &definition, const TDataSet &target,
             const TDataSet &source);

    const QString &ClassName() const { return FClassName; }
    const std::vector<TMappedCell> &Cells() const { return FCells; }

private:
    // What it stands for. NOTE: the lists are kept, so that no other can come to lie where
    // they lie; that the place is the same tells that they are.
    const std::type_info *FType = nullptr;
    quint64 FRegistryVersion = 0;
    TObjectList<TFieldsObject> FDefinition;
    QList<TField *> FTargetFields;
    QList<TField *> FSourceFields;

    QString FClassName;
    std::vector<TMappedCell> FCells;
};

/// The way back: the properties of a record class that are written into fields of their name.
class TRecordMapping
{
public:
    struct TCell
    {
        TField *Field;
        const TPropInfo *Property;
    };

    /// Leaves out the properties that AutoField and DetailField name.
    void Aim(const TDBObject &object, const TDataSet &target, const QString &autoField,
             const QString &detailField);

    const std::vector<TCell> &Cells() const { return FCells; }

private:
    const QMetaObject *FMeta = nullptr;
    QList<TField *> FTargetFields; // as above
    QString FAutoField;
    QString FDetailField;
    std::vector<TCell> FCells;
};

} // namespace Korvane
