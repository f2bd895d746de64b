// SPDX-License-Identifier: MIT
// The part of TExCustomDataSet that turns changes into statements.
#include "datasets/ExCustomDataSet.h"

#include "general/SessionValues.h"
#include "platform/core/Format.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/TryFinally.h"
#include "platform/core/Variants.h"
#include "session/DBSession.h"

using namespace Qt::StringLiterals;

namespace Korvane {

void TExCustomDataSet::Post()
{
    if (State() != dsEdit && State() != dsInsert)
        throw Exception(QStringLiteral("非新增或修改状态，无法执行此操作"));
    CheckDBSession();
    FBlobStreams.Clear();
    const auto object = GetCurrentObject();
    object->KeyValues = FOldKeyValues; // the row is found by the key that it had
    if (!FIgnoreCheck)
        ValidValue();
    if (FCommitType == ctCommit) {
        // NOTE: the rows in memory follow last, so that a statement that fails leaves the edit.
        Session().Execute(State() == dsEdit ? GetUpdateSQL(*object) : GetInsertSQL(*object), &FBlobStreams);
        UpdateRecordInfo(*object);
    }
    InterPost();
}

void TExCustomDataSet::Delete()
{
    if (IsEmpty())
        return;
    FetchAll(); // before the statement, since rows that cannot be read keep the row from going
    if (FCommitType == ctCommit) {
        const auto object = GetCurrentObject();
        object->KeyValues = GetKeyValues();
        Session().Execute(GetDeleteSQL(*object), nullptr);
    }
    TCustomClientDataSet::Delete();
}

void TExCustomDataSet::Save()
{
    if (FCommitType == ctCommit)
        return;
    CheckDBDFile();
    CheckDBSession();
    if (FUpdateType == utAll)
        SaveAll();
    else
        SaveChanged();
}

// ---- the changes ----------------------------------------------------------------------

/// A row of the delta, and the dataset whose fields read it.
struct TExCustomDataSet::TDeltaRow
{
    const TDataSet &DataSet;
    const QList<TField *> &Keys;
    const TUpdateStatus Status;
    const TRowReader &Values;

    QVariant KeyValues() const
    {
        QVariantList values;
        for (const TField *key : Keys)
            values.append(key ? key->ValueIn(&Values) : QVariant());
        return VarArrayOf(values);
    }
};

void TExCustomDataSet::SaveChanged()
{
    if (ChangeCount() == 0)
        return;
    const TDeltaRows rows = DeltaRows();
    TClientDataSet delta; // for its fields
    delta.SetData(TDataPacketBuilder(rows.Fields()).Build());
    const QList<TField *> keys = KeySources(delta);
    std::unique_ptr<TDBObject> object;
    rows.ForEach([&](TUpdateStatus status, const TRowReader &row) {
        SaveDeltaRow({delta, keys, status, row}, object);
    });
    // NOTE: only when all is written; after a failure Save begins with the first change again.
    MergeChangeLog();
}

/// The object of a row's stored half is kept for the changed half behind it.
void TExCustomDataSet::SaveDeltaRow(const TDeltaRow &row, std::unique_ptr<TDBObject> &object)
{
    const auto fill = [&] {
        CheckDBDFile();
        FSourceMapping.Aim(*object, GetFields(), *this, row.DataSet);
        FillObject(*object, FSourceMapping, &row.Values, row.Status == usModified);
    };
    QString statement;
    switch (row.Status) {
    case usUnmodified:
        FBlobStreams.Clear();
        object = GetDBObject();
        object->KeyValues = row.KeyValues();
        fill();
        return;
    case usModified:
        // A column that has become NULL cannot be told from one that is unchanged, and so
        // keeps its stored value.
        fill();
        statement = GetUpdateSQL(*object);
        break;
    case usInserted:
        FBlobStreams.Clear();
        object = GetDBObject();
        fill();
        SetDetailFieldValues(*object);
        object->KeyValues = GetKeyValues(*object);
        // Mapped twice, on purpose: a blob's bytes stand doubled in the insert.
        fill();
        statement = GetInsertSQL(*object);
        break;
    case usDeleted:
        object = GetDBObject();
        object->KeyValues = row.KeyValues();
        fill();
        statement = GetDeleteSQL(*object);
        break;
    }
    Session().Execute(statement, &FBlobStreams);
    UpdateRecordInfo(*object, row.Status);
    object.reset();
}

// ---- all rows -------------------------------------------------------------------------

void TExCustomDataSet::SaveAll()
{
    FetchAll(); // what cannot be read must not be deleted
    Session().Execute(GetDeleteSQL(FOpenField, FOpenValue), nullptr);
    const auto object = GetDBObject();
    WithControlsDisabled(*this, [&] {
        const bool filtered = Filtered();
        SetFiltered(false);
        // The blobs of the rows before are not dropped, nor is the log merged, both on purpose.
        for (First(); !Eof(); Next()) {
            Edit();
            SetDetailFieldValues();
            InterPost();
            SetCurrentObject(*object);
            Session().Execute(GetInsertSQL(*object), &FBlobStreams);
        }
        SetFiltered(filtered);
        if (IsDetail())
            UpdateRecordInfo(FDetailField, GetMasterFieldValues());
        else
            UpdateRecordInfo(FOpenField, FOpenValue);
    });
}

// ---- the audit columns ----------------------------------------------------------------

namespace {

constexpr qsizetype AuditColumnsLength = 160; // for most users

} // namespace

/// Asks the server; many rows are saved in the same second.
const QString &TExCustomDataSet::ServerTime()
{
    const TDateTime now = Session().GetDateTime();
    if (now != FServerTime || FServerTimeText.isEmpty()) {
        FServerTime = now;
        FServerTimeText = FormatDateTime(QStringLiteral("yyyymmddhhmmss"), now);
    }
    return FServerTimeText;
}

/// Makes the update out of the statement that would delete the rows.
void TExCustomDataSet::UpdateAuditColumns(const QString &statement, const QString &now, bool isNew,
                                          bool evenWithoutWhere)
{
    // Values go in as they are.
    QString columns;
    columns.reserve(AuditColumnsLength);
    const auto add = [&](QLatin1StringView column, const QString &value) {
        columns += column;
        columns += value;
        columns += u'\'';
    };
    if (isNew) {
        add("CREATOR='"_L1, AUserCode);
        add(", CREATEDATE='"_L1, now);
        columns += ", "_L1;
    }
    add("MODIFIER='"_L1, AUserCode);
    add(", MODIFYDATE='"_L1, now);
    if (isNew)
        add(", CREATORGROUP='"_L1, AUserGroup);

    // NOTE: the keys are part of the format, so that a "%" in one is a placeholder.
    const bool isFormat = statement.contains(u'%');
    const QString set = " set "_L1 + (isFormat ? u"%s"_s : columns);
    const QLatin1StringView remove("delete from ");
    QString update;
    update.reserve(statement.size() + set.size());
    update += statement;
    if (const qsizetype place = update.indexOf(remove); place >= 0)
        update.replace(place, remove.size(), u"update "_s);
    if (const qsizetype place = update.indexOf(" where "_L1); place >= 0)
        update.insert(place, set);
    else if (evenWithoutWhere)
        update += set;
    Session().Execute(isFormat ? Format(update, {columns}) : update, nullptr);
}

void TExCustomDataSet::UpdateRecordInfo(TDBObject &object)
{
    const QString now = ServerTime();
    object.KeyValues = GetKeyValues();
    UpdateAuditColumns(GetDeleteSQL(object), now, State() == dsInsert, false);
}

void TExCustomDataSet::UpdateRecordInfo(const TDBObject &object, TUpdateStatus status)
{
    const QString now = ServerTime();
    // By the old key: a row whose key has changed is not found, on purpose.
    UpdateAuditColumns(GetDeleteSQL(object), now, status == usInserted, false);
}

void TExCustomDataSet::UpdateRecordInfo(const QString &field, const QVariant &value)
{
    const QString now = ServerTime();
    UpdateAuditColumns(GetDeleteSQL(field, value), now, true, true);
}

} // namespace Korvane
