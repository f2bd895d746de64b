// SPDX-License-Identifier: MIT
#include "SaveBenchmarks.h"

#include "LargeTable.h"
#include "QtItems.h"
#include "datasets/ExTable.h"
#include "design/DBDFile.h"
#include "general/SessionValues.h"
#include "platform/sql/dialect/SqlFunctions.h"
#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/sqlite/SqliteDatabase.h"
#include "session/DBSession.h"

#include <QSqlError>

namespace Bench {

using namespace Korvane;

namespace {

constexpr int ChangedRows = 20'000;

/// The first rows of the table.
QString Where() { return QStringLiteral("ITEMCODE<'%1'").arg(LargeCode(ChangedRows)); }

/// What a round of edits writes into a row.
struct TChange
{
    TChange(int row, int round)
        : Qty(row % 1000 + round), Price((row % 5000 + round) / 4.0),
          Note(QStringLiteral("第%1次更正，行%2").arg(round).arg(row))
    {
    }

    int Qty;
    double Price;
    QString Note;
};

// ---- ours -----------------------------------------------------------------------------

/// A dataset in batch mode on a copy of the database.
class TOurItems
{
public:
    explicit TOurItems(TLargeTable &large)
        : FSession(ConnectTo(large.CopyAs(QStringLiteral("saved-ours.db"))))
    {
        FTable.SetDBDFile(&large.Design());
        FTable.SetDBSession(FSession.get());
        FTable.SetTable(LargeTableName);
        FTable.SetCommitType(ctBatchCommit);
        FTable.SetUpdateType(utChanged);
        FTable.SetIgnoreCheck(true);
        FTable.OpenTable(Where(), QStringLiteral("ITEMCODE"), 0);
    }

    TExTable &Table() { return FTable; }
    QString FileName() const { return FSession->DBName(); }

    void Change(int round)
    {
        TField *qty = FTable.FieldByName(LargeColumns[lcQty]);
        TField *price = FTable.FieldByName(LargeColumns[lcPrice]);
        TField *note = FTable.FieldByName(LargeColumns[lcNote]);
        FTable.DisableControls();
        int row = 0;
        for (FTable.First(); !FTable.Eof(); FTable.Next()) {
            const TChange change(row++, round);
            FTable.Edit();
            qty->SetAsInteger(change.Qty);
            price->SetAsFloat(change.Price);
            note->SetAsString(change.Note);
            FTable.Post();
        }
        FTable.EnableControls();
    }
    void Save()
    {
        FSession->BeginTrans();
        FTable.Save();
        FSession->CommitTrans();
    }

private:
    std::unique_ptr<TDBSession> FSession;
    TExTable FTable;
};

// ---- Qt's model -----------------------------------------------------------------------

/// With each change such a model walks over those that it holds, so that it is given a part of
/// the rows, and there are several. All are saved in one transaction.
class TTheirItems
{
public:
    explicit TTheirItems(TLargeTable &large)
        : FDatabase(OpenQtDatabase(QStringLiteral("saved"), large.CopyAs(QStringLiteral("saved-qt.db"))))
    {
        for (int row = 0; row < ChangedRows; row += ModelRows)
            FModels.push_back(
                std::make_unique<TQtItems>(FDatabase, QStringLiteral("ITEMCODE>='%1' and ITEMCODE<'%2'")
                                                          .arg(LargeCode(row), LargeCode(row + ModelRows))));
    }

    QString FileName() const { return FDatabase.databaseName(); }

    void Change(int round)
    {
        int first = 0;
        for (const auto &model : FModels) {
            model->SelectAll();
            for (int row = 0; row < ModelRows; ++row)
                ChangeRow(*model, row, TChange(first + row, round));
            first += ModelRows;
        }
    }
    void Save()
    {
        bool done = FDatabase.transaction();
        for (const auto &model : FModels)
            done = done && model->submitAll();
        if (!done || !FDatabase.commit())
            qFatal("%s", qUtf8Printable(FDatabase.lastError().text()));
    }

private:
    static constexpr int ModelRows = 20000;

    static void ChangeRow(TQtItems &model, int row, const TChange &change)
    {
        model.setData(model.index(row, PlaceOf(lcQty)), change.Qty);
        model.setData(model.index(row, PlaceOf(lcPrice)), change.Price);
        model.setData(model.index(row, PlaceOf(lcNote)), change.Note);
    }

    QSqlDatabase FDatabase;
    std::vector<std::unique_ptr<TQtItems>> FModels;
};

// ---- the bare statements --------------------------------------------------------------

/// The three statements that save a row, prepared once, with the values at hand.
class TBareItems
{
public:
    explicit TBareItems(TLargeTable &large)
        : FDatabase(large.CopyAs(QStringLiteral("saved-bare.db")), TSqliteOpen::ReadWrite)
    {
        for (const char *pragma :
             {"journal_mode=wal", "synchronous=full", "foreign_keys=on", "temp_store=memory"})
            FDatabase.Run(QByteArray("pragma ") + pragma);
        RegisterSqlFunctions(FDatabase.Handle(), TSqlDialect::Access);
        QByteArray update = "update LARGEITEM set ";
        for (const QString &column : LargeColumns)
            update += column.toUtf8() + "=?,";
        update.back() = ' ';
        FUpdate.emplace(FDatabase, update + "where ITEMCODE=?", TStatementUse::Often);
        const auto clock = RewriteForSqlite(QStringLiteral("select now()"), TSqlDialect::Access);
        FClock.emplace(FDatabase, clock.Steps.first().Sql, TStatementUse::Often);
        FAudit.emplace(FDatabase, "update LARGEITEM set MODIFIER=?, MODIFYDATE=? where ITEMCODE=?",
                       TStatementUse::Often);
    }

    const QString &FileName() const { return FDatabase.FileName(); }

    /// Takes the values from the dataset that is compared with.
    void TakeFrom(TExTable &table)
    {
        FRows.clear();
        table.DisableControls();
        for (table.First(); !table.Eof(); table.Next())
            FRows.push_back(RowOf(static_cast<const TLargeItem &>(*table.GetCurrentObject())));
        table.EnableControls();
    }
    void Save()
    {
        const std::string user = AUserCode.toStdString();
        FDatabase.Run("begin immediate");
        for (const TRow &row : FRows) {
            SaveRow(row);
            const std::string now = Now();
            FAudit->BindLastingText(1, user);
            FAudit->BindLastingText(2, now);
            FAudit->BindLastingText(3, row.Code);
            Run(*FAudit);
        }
        FDatabase.Run("commit");
    }

private:
    struct TRow
    {
        std::string Code, Name, Category;
        int Qty, LeadDays;
        double Price, Weight;
        std::string Stopped, MadeDate, Note;
    };

    static TRow RowOf(const TLargeItem &item)
    {
        return {item.ItemCode.toStdString(),
                item.ItemName.toStdString(),
                item.Category.toStdString(),
                item.Qty,
                item.LeadDays,
                item.Price,
                item.Weight,
                item.IsStopped ? "Y" : "N",
                item.MadeDate.toStdString(),
                item.Note.toStdString()};
    }
    static void Run(TSqliteStatement &statement)
    {
        statement.Step();
        statement.Reset();
    }
    void SaveRow(const TRow &row)
    {
        FUpdate->BindLastingText(lcCode + 1, row.Code);
        FUpdate->BindLastingText(lcName + 1, row.Name);
        FUpdate->BindLastingText(lcCategory + 1, row.Category);
        FUpdate->BindInt(lcQty + 1, row.Qty);
        FUpdate->BindInt(lcLeadDays + 1, row.LeadDays);
        FUpdate->BindDouble(lcPrice + 1, row.Price);
        FUpdate->BindDouble(lcWeight + 1, row.Weight);
        FUpdate->BindLastingText(lcStopped + 1, row.Stopped);
        FUpdate->BindLastingText(lcMadeDate + 1, row.MadeDate);
        FUpdate->BindLastingText(lcNote + 1, row.Note);
        FUpdate->BindLastingText(lcNote + 2, row.Code);
        Run(*FUpdate);
    }
    /// The clock's digits: "yyyymmddhhmmss".
    std::string Now()
    {
        std::string digits;
        FClock->Step();
        for (const char character : FClock->Text(0).substr(0, 19))
            if (character >= '0' && character <= '9')
                digits += character;
        FClock->Reset();
        return digits;
    }

    TSqliteDatabase FDatabase;
    std::optional<TSqliteStatement> FUpdate, FClock, FAudit;
    std::vector<TRow> FRows;
};

// ---- the comparisons ------------------------------------------------------------------

/// The changed rows of a database as they stand in the file.
QByteArray SavedRows(const QString &file, const QString &columns)
{
    TSqliteDatabase database(file, TSqliteOpen::ReadOnly);
    TSqliteStatement rows(
        database,
        QStringLiteral("select %1 from LARGEITEM where %2 order by ITEMCODE").arg(columns, Where()).toUtf8());
    const TDataPacket packet = rows.ReadAll();
    return packet.RowCount() == ChangedRows ? packet.ToBytes() : QByteArray();
}

bool HoldTheSame(const QString &left, const QString &right, const QStringList &columns)
{
    const QByteArray rows = SavedRows(left, columns.join(QLatin1Char(',')));
    return !rows.isEmpty() && rows == SavedRows(right, columns.join(QLatin1Char(',')));
}

/// The sides, each made at its first use.
class TSaves
{
public:
    explicit TSaves(std::shared_ptr<TLargeTable> large) : FLarge(std::move(large))
    {
        AUserCode = QStringLiteral("u102");
    }

    TOurItems &Ours() { return Made(FOurs); }
    TTheirItems &Theirs() { return Made(FTheirs); }
    TBareItems &Bare() { return Made(FBare); }
    int NextRound() { return ++FRound; }

private:
    template <class Items> Items &Made(std::unique_ptr<Items> &items)
    {
        if (!items)
            items = std::make_unique<Items>(*FLarge);
        return *items;
    }

    const std::shared_ptr<TLargeTable> FLarge;
    std::unique_ptr<TOurItems> FOurs;
    std::unique_ptr<TTheirItems> FTheirs;
    std::unique_ptr<TBareItems> FBare;
    int FRound = 0;
};

TComparison SaveBesideQt(const std::shared_ptr<TSaves> &saves)
{
    const auto prepare = [saves] {
        const int round = saves->NextRound();
        saves->Ours().Change(round);
        saves->Theirs().Change(round);
    };
    return {.What = QStringLiteral("save 20,000 changed rows, batch mode, one transaction, audit columns"),
            .Peer = QStringLiteral(
                "QSqlTableModel::submitAll of the same edits without audit columns, in 20 models"),
            .Goal = AtLeast(4),
            .Ours = [saves] { saves->Ours().Save(); },
            .Theirs = [saves] { saves->Theirs().Save(); },
            .Prepare = prepare,
            .Repetitions = 5,
            .Same =
                [saves, prepare] {
                    prepare();
                    saves->Ours().Save();
                    saves->Theirs().Save();
                    return HoldTheSame(saves->Ours().FileName(), saves->Theirs().FileName(), LargeColumns);
                }};
}

TComparison SaveBesideBareStatements(const std::shared_ptr<TSaves> &saves)
{
    const auto prepare = [saves] {
        saves->Ours().Change(saves->NextRound());
        saves->Bare().TakeFrom(saves->Ours().Table());
    };
    return {.What = QStringLiteral("the same beside its three statements' bare cost"),
            .Peer = QStringLiteral("the statements prepared and bound by SQLite's C interface"),
            .Goal = Within(2),
            .Ours = [saves] { saves->Ours().Save(); },
            .Theirs = [saves] { saves->Bare().Save(); },
            .Prepare = prepare,
            .Repetitions = 5,
            .Same =
                [saves, prepare] {
                    prepare();
                    saves->Ours().Save();
                    saves->Bare().Save();
                    return HoldTheSame(
                        saves->Ours().FileName(), saves->Bare().FileName(),
                        LargeColumns + QStringList{QStringLiteral("CREATOR"), QStringLiteral("MODIFIER")});
                }};
}

} // namespace

QList<TComparison> SaveComparisons(const std::shared_ptr<TLargeTable> &table)
{
    const auto saves = std::make_shared<TSaves>(table);
    return {SaveBesideQt(saves), SaveBesideBareStatements(saves)};
}

} // namespace Bench
