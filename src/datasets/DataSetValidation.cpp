// SPDX-License-Identifier: MIT
// The part of TExCustomDataSet that checks rows and fills new ones.
#include "datasets/ExCustomDataSet.h"

#include "general/TextRoutines.h"
#include "platform/core/Cursor.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"
#include "platform/data/dataset/DataSource.h"
#include "session/DBSession.h"

namespace Korvane {

// ---- changes of state -----------------------------------------------------------------

void TExCustomDataSet::Edit()
{
    if (!IsEmpty() && State() != dsEdit && State() != dsInsert)
        TCustomClientDataSet::Edit();
}

void TExCustomDataSet::Insert()
{
    if (State() != dsEdit && State() != dsInsert)
        TCustomClientDataSet::Insert();
}

void TExCustomDataSet::Append()
{
    if (State() != dsEdit && State() != dsInsert)
        TCustomClientDataSet::Append();
}

void TExCustomDataSet::DoBeforeEdit()
{
    FOldObject = GetCurrentObject();
    TCustomClientDataSet::DoBeforeEdit();
}

void TExCustomDataSet::DoAfterEdit()
{
    TCustomClientDataSet::DoAfterEdit();
    FOldKeyValues = GetKeyValues();
}

void TExCustomDataSet::DoBeforeInsert()
{
    if (!FAutoField.isEmpty())
        FAutoValue = GetAutoValue();
    TCustomClientDataSet::DoBeforeInsert();
}

void TExCustomDataSet::DoOnNewRecord()
{
    GetFieldDefault();
    if (FMasterLink->Active())
        SetDetailFieldValues();
    TCustomClientDataSet::DoOnNewRecord();
}

void TExCustomDataSet::DoAfterInsert()
{
    TCustomClientDataSet::DoAfterInsert();
    FOldKeyValues = GetKeyValues();
    // Behind AfterInsert, on purpose: its handlers see the field without the number.
    if (!FAutoField.isEmpty())
        FieldByName(FAutoField)->SetAsString(FAutoValue);
}

void TExCustomDataSet::GetFieldDefault()
{
    for (const auto &entry : GetFields()) {
        TField *field = FindField(entry->FieldCode);
        if (!field)
            continue;
        const QString &type = entry->FieldType;
        if (type == QLatin1String("int") || type == QLatin1String("smallint") ||
            type == QLatin1String("float") || type == QLatin1String("decimal"))
            field->SetAsInteger(0);
        if (!entry->FieldDefault.isEmpty())
            field->SetAsString(entry->FieldDefault);
        else if (type == QLatin1String("date"))
            field->SetAsString(GetSpaces(8));
        else if (type == QLatin1String("datetime"))
            field->SetAsString(GetSpaces(14));
        else if (type == QLatin1String("char"))
            field->SetAsString(GetSpaces(entry->FieldSize));
    }
}

// ---- checks ---------------------------------------------------------------------------

void TExCustomDataSet::ValidValue()
{
    if (State() != dsEdit && State() != dsInsert)
        return;
    CheckRequired();
    ValidKeyField(GetKeyFieldStr(), GetKeyValues());
    for (const auto &index : GetIndexs()) {
        if (!index->IsUnique)
            continue;
        QVariantList values;
        for (const QString &name : SplitFieldNames(index->IndexFields))
            values.append(FieldByName(name)->Value());
        ValidKeyField(index->IndexFields, VarArrayOf(values));
    }
}

void TExCustomDataSet::CheckRequired()
{
    for (const auto &entry : GetFields()) {
        // A default excuses an empty field, also one that the user has cleared, on purpose.
        if (!entry->IsNotNull || !entry->FieldDefault.isEmpty() ||
            (GetMasterDataSource() && FDetailFields.contains(entry->FieldCode)))
            continue;
        const TField *field = FindField(entry->FieldCode);
        if (field && Trim(field->AsString()).isEmpty())
            throw Exception(QLatin1Char('[') + entry->FieldName + QStringLiteral("] 不可空白，请重新输入"));
    }
}

namespace {

/// An entry of an array, or the one value that is none.
QVariant EntryOf(const QVariant &values, qsizetype index)
{
    return index == 0 && !VarIsArray(values) ? values : VarArrayGet(values, index);
}

/// Of an array only the first value shows, on purpose.
QString KeyText(const QVariant &values)
{
    return VarToStr(VarIsArray(values) ? VarArrayGet(values, 0) : values);
}

[[noreturn]] void FailOnDuplicate(const QString &message, const QString &fields, const QVariant &values)
{
    SetScreenCursor(crDefault);
    throw Exception(message + QLatin1Char('\r') + fields + QLatin1Char(':') + KeyText(values));
}

} // namespace

void TExCustomDataSet::ValidKeyField(const QString &fields, const QVariant &values)
{
    const QStringList names = SplitFieldNames(fields);
    if (State() != dsInsert && (State() != dsEdit || !IsKeyChanged(names, values)))
        return;
    if (FCommitType == ctBatchCommit)
        CheckKeyInMemory(names, values);
    else
        CheckKeyInTable(fields, values);
}

bool TExCustomDataSet::IsKeyChanged(const QStringList &names, const QVariant &values)
{
    for (qsizetype i = 0; i < names.size(); ++i) {
        // The field's name serves as the property's, on purpose. A part that was empty does not
        // count as changed, nor does a change of capitals alone.
        const QString old = GetPropInfo(*FOldObject, names[i]).Text(*FOldObject);
        if (!old.isEmpty() && !FDetailFields.contains(names[i]) &&
            UpperCase(VarToStr(EntryOf(values, i))) != UpperCase(old))
            return true;
    }
    return false;
}

void TExCustomDataSet::CheckKeyInMemory(QStringList names, QVariant values)
{
    if (!FDetailField.isEmpty()) {
        // All rows of a detail have the master's key, so that it tells nothing.
        QStringList remaining;
        QVariantList entries;
        for (qsizetype i = 0; i < names.size(); ++i)
            if (!FDetailFields.contains(names[i])) {
                remaining.append(names[i]);
                entries.append(EntryOf(values, i));
            }
        names = remaining;
        values = VarArrayOf(entries);
    }
    if (names.isEmpty())
        return;
    // A cursor of its own sees what is posted, without filter and order, as a copy would. It is
    // kept, since it remembers where keys are.
    if (!FKeyRows) {
        FKeyRows = std::make_unique<TClientDataSet>();
        FKeyRows->CloneCursor(this, true, false);
    }
    const QString fields = names.join(QLatin1Char(';'));
    if (FKeyRows->Locate(fields, values, loCaseInsensitive))
        FailOnDuplicate(QStringLiteral("当前数据中已存在相同的记录，请重新输入"), fields, values);
}

void TExCustomDataSet::CheckKeyInTable(const QString &fields, const QVariant &values)
{
    if (!Session().IsEmpty(GetSelectSQL(fields, values, ooEqualAnd)))
        FailOnDuplicate(QStringLiteral("数据库中已存在相同的记录，请重新输入"), fields, values);
}

// ---- questions ------------------------------------------------------------------------

QStringList TExCustomDataSet::GetIsNotNullFields()
{
    QStringList properties;
    for (const auto &field : GetFields())
        if (field->IsNotNull)
            properties.append(field->FieldProp);
    return properties;
}

bool TExCustomDataSet::IsChanged()
{
    if (ChangeCount() > 0)
        return true;
    for (const TField *field : Fields())
        if (!field->Calculated() && field->OldString() != field->AsString())
            return true;
    return false;
}

bool TExCustomDataSet::IsChanged(const QString &fields)
{
    for (const QString &name : SplitFieldNames(fields)) {
        const TField *field = FieldByName(name);
        if (field->OldString() != field->AsString())
            return true;
    }
    return false;
}

} // namespace Korvane
