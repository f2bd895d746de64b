// SPDX-License-Identifier: MIT
// The part of TExCustomDataSet that turns changes into statements.
#include "datasets/ExCustomDataSet.h"

#include "datasets/TryFinally.h"
#include "general/SessionValues.h"
#include "platform/core/Format.h"
#include "platform/core/FormatDateTime.h"
#include "session/DBSession.h"

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

void TExCustomDataSet::SaveChanged()
{
    if (ChangeCount() == 0)
        return;
    TClientDataSet delta;
    delta.SetData(Delta());
    const QList<TField *> keys = KeySources(delta);
    std::unique_ptr<TDBObject> object;
    for (delta.First(); !delta.Eof(); delta.Next())
        SaveDeltaRow(delta, keys, object);
    // NOTE: only when all is written; after a failure Save begins with the first change again.
    MergeChangeLog();
}

/// The object of a row's stored half is kept for the changed half behind it.
void TExCustomDataSet::SaveDeltaRow(TClientDataSet &delta, const QList<TField *> &keys,
                                    std::unique_ptr<TDBObject> &object)
{
    const TUpdateStatus status = delta.UpdateStatus();
    QString statement;
    switch (status) {
    case usUnmodified:
        FBlobStreams.Clear();
        object = GetDBObject();
        object->KeyValues = ValuesOf(keys);
        SetCurrentObject(*object, delta, true);
        return;
    case usModified:
        // A column that has become NULL cannot be told from one that is unchanged, and so
        // keeps its stored value.
        SetCurrentObject(*object, delta, false);
        statement = GetUpdateSQL(*object);
        break;
    case usInserted:
        FBlobStreams.Clear();
        object = GetDBObject();
        SetCurrentObject(*object, delta, false);
        SetDetailFieldValues(*object);
        object->KeyValues = GetKeyValues(*object);
        // Mapped twice, on purpose: a blob's bytes stand doubled in the insert.
        SetCurrentObject(*object, delta, false);
        statement = GetInsertSQL(*object);
        break;
    case usDeleted:
        object = GetDBObject();
        object->KeyValues = ValuesOf(keys);
        SetCurrentObject(*object, delta, false);
        statement = GetDeleteSQL(*object);
        break;
    }
    Session().Execute(statement, &FBlobStreams);
    UpdateRecordInfo(*object, status);
    object.reset();
}

// ---- all rows -------------------------------------------------------------------------

void TExCustomDataSet::SaveAll()
{
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

bool ReplaceFirst(QString &text, const QString &old, const QString &replacement)
{
    const qsizetype place = text.indexOf(old);
    if (place >= 0)
        text.replace(place, old.size(), replacement);
    return place >= 0;
}

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
    const QString changed = QStringLiteral("MODIFIER='") + AUserCode + QStringLiteral("', MODIFYDATE='") +
                            now + QLatin1Char('\'');
    const QString columns = !isNew ? changed
                                   : QStringLiteral("CREATOR='") + AUserCode +
                                         QStringLiteral("', CREATEDATE='") + now + QStringLiteral("', ") +
                                         changed + QStringLiteral(", CREATORGROUP='") + AUserGroup +
                                         QLatin1Char('\'');
    QString update = statement;
    ReplaceFirst(update, QStringLiteral("delete from "), QStringLiteral("update "));
    if (!ReplaceFirst(update, QStringLiteral(" where "), QStringLiteral(" set %s where ")) &&
        evenWithoutWhere)
        update += QStringLiteral(" set %s");
    // NOTE: the keys are part of the format, so that a "%" in one is a placeholder.
    Session().Execute(Format(update, {columns}), nullptr);
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
