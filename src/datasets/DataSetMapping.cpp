// SPDX-License-Identifier: MIT
// The part of TExCustomDataSet that turns rows into records and back.
#include "datasets/ExCustomDataSet.h"

#include "platform/core/Numbers.h"
#include "platform/core/Text.h"
#include "platform/core/TryFinally.h"
#include "platform/core/Variants.h"
#include "platform/data/dataset/Fields.h"
#include "session/DBSession.h"

namespace Korvane {

namespace {

QString TextAt(const TRowReader &row, int column)
{
    const std::string_view text = row.GetText(column);
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

QString ValueText(const QString &value) { return value; }
QString ValueText(qint64 value) { return IntToStr(value); }
QString ValueText(double value) { return VarToStr(value); }

/// Writes a value; a refusal is told in the words of the application's users.
template <class Value>
void WriteCell(TDBObject &object, const QString &className, const TMappedCell &cell, const Value &value)
{
    try {
        cell.Write(object, value);
    } catch (const Exception &) {
        throw Exception(className + QStringLiteral("属性") + cell.FieldProp +
                        QStringLiteral("赋值时出错，可能是数据类型不匹配\r") + cell.FieldProp +
                        QStringLiteral(" = ") + QuotedStr(ValueText(value)));
    }
}

} // namespace

// ---- from the row ---------------------------------------------------------------------

std::unique_ptr<TDBObject> TExCustomDataSet::NewRecord(const QString &className)
{
    if (!FRecordClass || FRecordClassVersion != RegistryVersion() || FRecordClassName != className) {
        FRecordClass = nullptr;
        const TClassInfo &info = FindClass(className);
        if (!dynamic_cast<TDBObject *>(info.Create().get()))
            throw EClassNotFound(QStringLiteral("没有找到类") + className);
        FRecordClass = &info;
        FRecordClassName = className;
        FRecordClassVersion = RegistryVersion();
    }
    return std::unique_ptr<TDBObject>(static_cast<TDBObject *>(FRecordClass->Create().release()));
}

/// Calculated fields read the row that is current, all others the one given.
void TExCustomDataSet::FillObject(TDBObject &object, const TRowMapping &mapping, const TRowReader *row,
                                  bool skipNulls)
{
    const QString &name = mapping.ClassName();
    for (const TMappedCell &cell : mapping.Cells()) {
        const TField &field = *cell.Field;
        const TRowReader *const at = field.Calculated() ? field.Row() : row;
        if (skipNulls && field.IsNullIn(at))
            continue;
        const bool isPlain = at && cell.Column >= 0;
        switch (cell.Reading) {
        case TCellReading::Text:
            WriteCell(object, name, cell, isPlain ? TextAt(*at, cell.Column) : field.StringIn(at));
            break;
        case TCellReading::Integer:
            WriteCell(object, name, cell, isPlain ? at->GetInt(cell.Column) : qint64(field.IntegerIn(at)));
            break;
        case TCellReading::Float:
            WriteCell(object, name, cell, isPlain ? at->GetDouble(cell.Column) : field.FloatIn(at));
            break;
        case TCellReading::Blob:
            WriteCell(object, name, cell, MapBlob(field, field.BytesIn(at)));
            break;
        }
    }
    SetDetailFieldValues(object);
}

std::unique_ptr<TDBObject> TExCustomDataSet::GetCurrentObject()
{
    auto object = GetDBObject();
    SetCurrentObject(*object);
    return object;
}

void TExCustomDataSet::SetCurrentObject(TDBObject &object)
{
    CheckDBDFile();
    FRowMapping.Aim(object, GetFields(), *this, *this);
    FillObject(object, FRowMapping, CurrentRow(), false);
}

void TExCustomDataSet::SetCurrentObject(TDBObject &object, TDataSet &source, bool all)
{
    CheckDBDFile();
    FSourceMapping.Aim(object, GetFields(), *this, source);
    const auto *rows = qobject_cast<const TCustomClientDataSet *>(&source);
    FillObject(object, FSourceMapping, source.CurrentRow(),
               !all && rows && rows->UpdateStatus() == usModified);
}

QString TExCustomDataSet::GetBlobString(const TField &field) { return MapBlob(field, field.AsBytes()); }

QString TExCustomDataSet::MapBlob(const TField &field, const QByteArray &bytes)
{
    // A second mapping of a row puts the bytes behind the first ones, on purpose.
    FBlobStreams.Append(field.FieldName(), bytes);
    return QLatin1Char(':') + field.FieldName();
}

void TExCustomDataSet::WalkRows(const std::function<void()> &visit)
{
    WithControlsDisabled(*this, [&] {
        for (First(); !Eof(); Next())
            visit();
    });
}

TObjectList<TDBObject> TExCustomDataSet::GetDBObjects()
{
    TObjectList<TDBObject> objects;
    WalkRows([&] { objects.append(GetCurrentObject()); });
    return objects;
}

QStringList TExCustomDataSet::GetValues(const QString &field)
{
    QStringList values;
    for (First(); !Eof(); Next())
        values.append(FieldByName(field)->AsString());
    return values;
}

// ---- into the row ---------------------------------------------------------------------

void TExCustomDataSet::SetFieldValue(const TDBObject &object)
{
    FRecordMapping.Aim(object, *this, FAutoField, FDetailField);
    // NOTE: a copy, since writing a field runs the application's handlers.
    for (const auto &cell : std::vector(FRecordMapping.Cells())) {
        QString value = cell.Property->Text(object);
        if (cell.Property->Kind == tkEnumeration)
            value = SameText(value, u"TRUE") ? QStringLiteral("Y") : QStringLiteral("N");
        cell.Field->SetAsString(value);
    }
}

void TExCustomDataSet::SetFieldValue(const QString &field, const QString &value)
{
    if (State() == dsBrowse)
        return;
    if (TField *found = FindField(field))
        found->SetAsString(value);
}

void TExCustomDataSet::InsertObject(const TDBObject &object)
{
    const QString order = IndexFieldNames();
    TryFinally(
        [&] {
            SetIndexFieldNames({}); // so that the row lands at the cursor
            Insert();
            AddObject(object);
        },
        [&] {
            // NOTE: a row that could not be filled would be posted by the change of order.
            if (State() == dsInsert)
                Cancel();
            SetIndexFieldNames(order);
        });
}

void TExCustomDataSet::AppendObject(const TDBObject &object)
{
    Append();
    AddObject(object);
}

void TExCustomDataSet::AddObject(const TDBObject &object)
{
    SetFieldValue(object);
    InterPost();
}

// ---- keys -----------------------------------------------------------------------------

/// The fields of the key in a dataset, null for one that neither name leads to.
QList<TField *> TExCustomDataSet::KeySources(const TDataSet &source)
{
    QList<TField *> fields;
    for (const auto &key : GetKeyFields()) {
        TField *field = source.FindField(key->FieldCode);
        // The property's name is looked for among the own fields, whatever the source is.
        if (!field && FindField(key->FieldProp))
            field = source.FieldByName(key->FieldProp);
        fields.append(field);
    }
    return fields;
}

QVariant TExCustomDataSet::GetKeyValues() { return GetKeyValues(*this); }

QVariant TExCustomDataSet::GetKeyValues(TDataSet &source)
{
    QVariantList values;
    for (const TField *field : KeySources(source))
        values.append(field ? field->Value() : QVariant());
    return VarArrayOf(values);
}

QVariant TExCustomDataSet::GetKeyValues(const TDBObject &object)
{
    QVariantList values;
    for (const auto &key : GetKeyFields()) {
        const QString value = GetPropInfo(object, key->FieldProp).Text(object);
        values.append(value.isEmpty() ? QVariant() : QVariant(value));
    }
    return VarArrayOf(values);
}

QString TExCustomDataSet::GetKeyValueStr(const QString &separator)
{
    QString text;
    if (IsEmpty())
        return text;
    for (const TField *field : KeySources(*this)) {
        // An empty first value brings no separator, on purpose.
        if (!text.isEmpty())
            text += separator.isEmpty() ? QStringLiteral(";") : separator;
        if (field)
            text += field->AsString();
    }
    return text;
}

// ---- copies, and rows in the database -------------------------------------------------

std::unique_ptr<TClientDataSet> TExCustomDataSet::CloneData()
{
    TClientDataSet cursor;
    cursor.CloneCursor(this, true, false);
    auto copy = std::make_unique<TClientDataSet>();
    copy->AppendData(cursor.Data(), true);
    return copy;
}

void TExCustomDataSet::CloneCursor(TCustomClientDataSet *source, bool reset, bool keepSettings)
{
    if (!source->Active())
        return;
    TCustomClientDataSet::CloneCursor(source, reset, keepSettings);
    for (int i = 0; i < qMin(FieldCount(), source->FieldCount()); ++i) {
        Fields(i)->OnGetText = source->Fields(i)->OnGetText;
        Fields(i)->SetDisplayLabel(source->Fields(i)->DisplayLabel());
    }
}

void TExCustomDataSet::DeleteTable()
{
    if (IsDetail())
        DeleteTable(FDetailField, GetMasterFieldValues());
}

void TExCustomDataSet::DeleteTable(const QString &field, const QVariant &value)
{
    CheckDBDFile();
    CheckDBSession();
    Session().Execute(GetDeleteSQL(field, value), nullptr);
}

} // namespace Korvane
