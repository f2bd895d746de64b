// SPDX-License-Identifier: MIT
#include "datasets/ExCustomDataSet.h"

#include "design/DBDFile.h"
#include "general/TextRoutines.h"
#include "platform/core/Format.h"
#include "platform/core/Numbers.h"
#include "platform/core/Text.h"
#include "platform/core/TryFinally.h"
#include "platform/data/dataset/DataSource.h"
#include "session/DBSession.h"

#include <limits>

namespace Korvane {

TExCustomDataSet::TExCustomDataSet(QObject *owner)
    : TCustomClientDataSet(owner), FMasterLink(std::make_unique<TMasterDataLink>(this))
{
    FMasterLink->OnMasterChange = {this, &TExCustomDataSet::MasterChanged};
    // Trailing blanks are part of the data: a blank date is a text of blanks.
    SetDisableStringTrim(true);
}

TExCustomDataSet::~TExCustomDataSet()
{
    BeginDestruction();
    try {
        Close();
    } catch (const Exception &) {
        // A handler that would keep the dataset open cannot any more.
    }
}

// ---- properties -----------------------------------------------------------------------

TDBDFile *TExCustomDataSet::DBDFile() const { return FDBDFile; }
void TExCustomDataSet::SetDBDFile(TDBDFile *file) { FDBDFile = file; }
TDBSession *TExCustomDataSet::DBSession() const { return FDBSession; }
void TExCustomDataSet::SetDBSession(TDBSession *session) { FDBSession = session; }

TDBDFile &TExCustomDataSet::File() const
{
    if (!FDBDFile)
        throw Exception(QStringLiteral("没有设置正确的DBDFile属性"));
    return *FDBDFile;
}

TDBSession &TExCustomDataSet::Session() const
{
    if (!FDBSession)
        throw Exception(QStringLiteral("没有设置正确的DBSession属性"));
    return *FDBSession;
}

void TExCustomDataSet::CheckDBDFile() const
{
    if (!File().Actived())
        File().SetActived(true);
}

void TExCustomDataSet::CheckDBSession() const
{
    if (!Session().Connected())
        Session().SetConnected(true);
    CheckDefinition();
}

void TExCustomDataSet::SetActived(bool actived)
{
    FActived = actived;
    if (actived)
        OpenTable();
    else
        Close();
}

void TExCustomDataSet::SetCommitType(TCommitType type)
{
    FCommitType = GetMasterDataSource() ? ctBatchCommit : type;
}

// ---- reading --------------------------------------------------------------------------

void TExCustomDataSet::Close()
{
    TCustomClientDataSet::Close();
    FActived = false;
}

void TExCustomDataSet::InternalClose()
{
    FKeyRows.reset();
    TCustomClientDataSet::InternalClose();
}

void TExCustomDataSet::OpenStatement(const std::function<QString()> &statement, const QString &field,
                                     const QVariant &value)
{
    WithControlsDisabled(*this, [&] {
        CheckDBDFile();
        CheckDBSession();
        const QString sql = statement();
        if (FFirstRows > 0)
            SetData(Session().Open(sql, FFirstRows));
        else
            SetData(Session().Open(sql));
        FOpenField = field;
        FOpenValue = value;
        FActived = true;
        MergeChangeLog();
        FLastSQL = sql;
    });
}

bool TExCustomDataSet::IsDetail() const
{
    return GetMasterDataSource() && !FDetailField.isEmpty() && !GetMasterField().isEmpty();
}

void TExCustomDataSet::OpenTable()
{
    if (!IsDetail())
        return OpenStatement([this] { return GetSelectSQL(); });
    WithControlsDisabled(*this, [this] {
        CheckDBDFile();
        CheckDBSession();
        const TDataSet *master = FMasterLink->DataSet();
        const TDataSetState state = master ? master->State() : dsInactive;
        // What is typed into the master must not read the detail anew.
        if (state == dsBrowse)
            FMasterLink->OnMasterChange = {this, &TExCustomDataSet::MasterChanged};
        else if (state == dsEdit || state == dsInsert)
            FMasterLink->OnMasterChange = nullptr;
        OpenTable(FDetailField, GetMasterFieldValues(), ooEqualAnd);
    });
}

void TExCustomDataSet::OpenTable(const QString &field, const QVariant &value, TOpenOption option)
{
    OpenStatement([&] { return GetSelectSQL(field, value, option); }, field, value);
}

void TExCustomDataSet::OpenWhere(const QString &where, const QString &order, qint32 top)
{
    OpenStatement([&] { return Wrapped(GetSelectSQL(), where, order, top); });
}

QString TExCustomDataSet::Wrapped(const QString &statement, const QString &where, const QString &order,
                                  qint32 top)
{
    // Wrapped without a condition too, so that conditions can name any query's columns.
    QString text =
        (top != 0 ? QStringLiteral("select top %1 * from (").arg(top) : QStringLiteral("select * from (")) +
        statement + QStringLiteral(") ZZZ");
    if (!where.isEmpty())
        text += QStringLiteral(" where ") + where;
    if (!order.isEmpty())
        text += QStringLiteral(" order by ") + order;
    return text;
}

void TExCustomDataSet::DoAfterOpen()
{
    if (HasDefinition())
        SetFieldName();
    TCustomClientDataSet::DoAfterOpen();
}

void TExCustomDataSet::CreateDataSet()
{
    CheckDBDFile();
    Close();
    FieldDefs().clear();
    for (const auto &field : GetFields()) {
        const TDataType type = GetDataType(field->FieldType);
        const bool isSized = type == dtChar || type == dtVarchar;
        FieldDefs().append({.Name = field->FieldCode,
                            .DataType = GetFieldType(type),
                            .Size = isSized ? field->FieldSize : 0});
    }
    TCustomClientDataSet::CreateDataSet();
    SetFieldName();
}

// ---- how fields are shown -------------------------------------------------------------

namespace {

int WidthOf(const TFieldsObject &field)
{
    if (field.FieldType == QLatin1String("boolean"))
        return field.FieldSize;
    // A text of one character is as wide as a date, on purpose.
    if (field.FieldType == QLatin1String("date") || field.FieldSize == 1)
        return 12;
    if (field.FieldType == QLatin1String("datetime"))
        return 20;
    if (field.FieldType == QLatin1String("text"))
        return 40;
    return qMin(field.FieldSize, 40);
}

} // namespace

void TExCustomDataSet::SetFieldName()
{
    CheckDBDFile();
    WithControlsDisabled(*this, [this] {
        for (const auto &entry : GetFields()) {
            TField *field = FieldByName(entry->FieldCode);
            field->SetDisplayWidth(WidthOf(*entry));
            if (entry->FieldType == QLatin1String("decimal"))
                field->SetDisplayFormat(QStringLiteral("#,##0.00") +
                                        CopyStr(QStringLiteral("#"), entry->FieldPrecision - 2));
            field->SetDisplayLabel(entry->FieldName);
        }
        if (TField *selected = FindField(u"FSELECTED")) {
            selected->SetDisplayWidth(5);
            selected->SetDisplayLabel(QStringLiteral("选择"));
        }
        SetHideFields(FHideFields);
    });
}

void TExCustomDataSet::SetHideFields(const QString &fields)
{
    FHideFields = fields;
    if (!Active())
        return;
    if (FHideFields.isEmpty())
        for (TField *field : Fields())
            field->SetVisible(true);
    for (const QString &name : SplitFieldNames(FHideFields))
        if (TField *field = FindField(name))
            field->SetVisible(false);
}

bool TExCustomDataSet::IsHideField(const QString &name) const
{
    return SplitFieldNames(FHideFields).contains(name);
}

// ---- numbers --------------------------------------------------------------------------

namespace {

int Successor(int number)
{
    if (number == std::numeric_limits<int>::max())
        throw Exception(QStringLiteral("编号已达到最大值 %1，无法自动编号").arg(number));
    return number + 1;
}

} // namespace

QString TExCustomDataSet::FormatAutoValue(int number)
{
    QString format = QStringLiteral("%.d");
    if (!FAutoField.isEmpty())
        if (const auto field = GetField(FAutoField); field && field->FieldType != QLatin1String("int"))
            format = QStringLiteral("%.") + IntToStr(field->FieldSize) + QLatin1Char('d');
    return Format(format, {number});
}

QString TExCustomDataSet::GetAutoValue()
{
    if (FAutoField.isEmpty())
        return {};
    return FormatAutoValue(FCommitType == ctBatchCommit ? NextNumberInMemory() : 1);
}

int TExCustomDataSet::NextNumberInMemory()
{
    int number = 1;
    WithControlsDisabled(*this, [&] {
        const TBookmark bookmark = GetBookmark();
        const QString order = IndexFieldNames();
        TryFinally(
            [&] {
                SetIndexFieldNames(FAutoField);
                Last();
                const TField *field = FieldByName(FAutoField);
                if (!field->AsString().isEmpty())
                    number = Successor(field->AsInteger());
            },
            [&] {
                SetIndexFieldNames(order);
                GotoBookmark(bookmark);
                FreeBookmark(bookmark);
            });
    });
    return number;
}

int TExCustomDataSet::NextNumberInTable(const QString &column, const QString &table)
{
    const TDataPacket packet =
        Session().Open(QStringLiteral("select max(") + column + QStringLiteral(") from ") + table);
    const QString highest = packet.RowCount() > 0 ? packet.Text(0, 0) : QString();
    return Successor(highest.isEmpty() ? 0 : StrToInt(highest));
}

void TExCustomDataSet::ResetAutoField()
{
    TField *field = FAutoField.isEmpty() ? nullptr : FindField(FAutoField);
    if (!field || IsEmpty())
        return;
    // DataSize counts a terminator where FormatAutoValue takes FieldSize; both as they are meant.
    const QString format = field->DataType() == ftString
                               ? QStringLiteral("%.") + IntToStr(field->DataSize()) + QLatin1Char('d')
                               : QStringLiteral("%.d");
    const qsizetype next = RecNo() + 1;
    WithControlsDisabled(*this, [&] {
        const QString order = IndexFieldNames();
        TryFinally(
            [&] {
                SetIndexFieldNames({});
                SetRecNo(1);
                for (qsizetype i = 1; i <= RecordCount(); ++i) {
                    Edit();
                    field->SetAsString(Format(format, {qlonglong(i)}));
                    InterPost();
                    MoveBy(1);
                }
            },
            [&] {
                SetIndexFieldNames(order);
                // One row further than before, on purpose; the last row has none behind it.
                SetRecNo(qMin(next, RecordCount()));
            });
    });
}

} // namespace Korvane
