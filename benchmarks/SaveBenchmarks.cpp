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
QString Where(int rows) { return QStringLiteral("ITEMCODE<'%1'").arg(LargeCode(rows)); }

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
        FTable.OpenTable(Where(ChangedRows), QStringLiteral("ITEMCODE"), 0);
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

/// The first rows, in one model or in several, and all saved in one transaction.
class TTheirItems
{
public:
    TTheirItems(TLargeTable &large, int rows, int modelRows)
        : FModelRows(modelRows),
          FDatabase(OpenQtDatabase(QStringLiteral("saved by %1").arg(modelRows),
                                   large.CopyAs(QStringLiteral("saved-qt-%1.db").arg(modelRows))))
    {
        for (int row = 0; row < rows; row += FModelRows)
            FModels.push_back(
                std::make_unique<TQtItems>(FDatabase, QStringLiteral("ITEMCODE>='%1' and ITEMCODE<'%2'")
                                                          .arg(LargeCode(row), LargeCode(row + FModelRows))));
    }

    QString FileName() const { return FDatabase.databaseName(); }

    void Change(int round)
    {
        for (qsizetype i = 0; i < qsizetype(FModels.size()); ++i) {
            FModels[i]->SelectAll();
            // From the end: with each change the model walks over the changed rows before it.
            for (int row = FModelRows - 1; row >= 0; --row)
                ChangeRow(*FModels[i], row, TChange(int(i) * FModelRows + row, round));
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
    static void ChangeRow(TQtItems &model, int row, const TChange &change)
    {
        model.setData(model.index(row, PlaceOf(lcQty)), change.Qty);
        model.setData(model.index(row, PlaceOf(lcPrice)), change.Price);
        model.setData(model.index(row, PlaceOf(lcNote)), change.Note);
    }

    const int FModelRows;
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

/// The first rows of a database as they stand in the file.
QByteArray SavedRows(const QString &file, int count, const QString &columns)
{
    TSqliteDatabase database(file, TSqliteOpen::ReadOnly);
    TSqliteStatement rows(database, QStringLiteral("select %1 from LARGEITEM where %2 order by ITEMCODE")
                                        .arg(columns, Where(count))
                                        .toUtf8());
    const TDataPacket packet = rows.ReadAll();
    return packet.RowCount() == count ? packet.ToBytes() : QByteArray();
}

bool HoldTheSame(const QString &left, const QString &right, int count, const QStringList &columns)
{
    const QByteArray rows = SavedRows(left, count, columns.join(QLatin1Char(',')));
    return !rows.isEmpty() && rows == SavedRows(right, count, columns.join(QLatin1Char(',')));
}

/// Our side, which is the same in all comparisons, and the number of the latest edits.
class TSaves
{
public:
    explicit TSaves(std::shared_ptr<TLargeTable> large) : FLarge(std::move(large))
    {
        AUserCode = QStringLiteral("u102");
    }

    TLargeTable &Large() { return *FLarge; }
    TOurItems &Ours()
    {
        if (!FOurs)
            FOurs = std::make_unique<TOurItems>(*FLarge);
        return *FOurs;
    }
    void ChangeOurs() { Ours().Change(++FRound); }
    int Round() const { return FRound; }

private:
    const std::shared_ptr<TLargeTable> FLarge;
    std::unique_ptr<TOurItems> FOurs;
    int FRound = 0;
};

using TSavesPtr = std::shared_ptr<TSaves>;

/// Makes an object at its first use.
template <class Object> class TLazy
{
public:
    template <class... Args> Object &Get(Args &&...args)
    {
        if (!FObject)
            FObject = std::make_unique<Object>(std::forward<Args>(args)...);
        return *FObject;
    }

private:
    std::unique_ptr<Object> FObject;
};

/// Beside Qt's model of some of the rows, or beside several.
TComparison SaveBesideQt(const TSavesPtr &saves, int rows, int modelRows, TComparison comparison)
{
    const auto lazy = std::make_shared<TLazy<TTheirItems>>();
    const auto peer = [saves, lazy, rows, modelRows]() -> TTheirItems & {
        return lazy->Get(saves->Large(), rows, modelRows);
    };
    const auto peerRound = std::make_shared<int>(0);
    comparison.Ours = [saves] { saves->Ours().Save(); };
    comparison.Theirs = [peer] { peer().Save(); };
    comparison.Prepare = [saves] { saves->ChangeOurs(); };
    comparison.PreparePeer = [saves, peer, peerRound] {
        *peerRound = saves->Round();
        peer().Change(*peerRound);
    };
    comparison.PeerScale = double(ChangedRows) / rows;
    comparison.Same = [saves, peer, peerRound, rows] {
        saves->Ours().Change(*peerRound);
        saves->Ours().Save();
        return HoldTheSame(saves->Ours().FileName(), peer().FileName(), rows, LargeColumns);
    };
    return comparison;
}

TComparison SaveBesideBareStatements(const TSavesPtr &saves)
{
    const auto lazy = std::make_shared<TLazy<TBareItems>>();
    const auto peer = [saves, lazy]() -> TBareItems & { return lazy->Get(saves->Large()); };
    const auto prepare = [saves] { saves->ChangeOurs(); };
    const auto preparePeer = [saves, peer] { peer().TakeFrom(saves->Ours().Table()); };
    return {.What = QStringLiteral("the same beside its three statements' bare cost"),
            .Peer = QStringLiteral("the statements prepared and bound by SQLite's C interface"),
            .Goal = Within(2),
            .Ours = [saves] { saves->Ours().Save(); },
            .Theirs = [peer] { peer().Save(); },
            .Prepare = prepare,
            .PreparePeer = preparePeer,
            .Repetitions = 9,
            .Same =
                [saves, peer, prepare, preparePeer] {
                    prepare(), preparePeer();
                    saves->Ours().Save();
                    peer().Save();
                    return HoldTheSame(
                        saves->Ours().FileName(), peer().FileName(), ChangedRows,
                        LargeColumns + QStringList{QStringLiteral("CREATOR"), QStringLiteral("MODIFIER")});
                }};
}

} // namespace

QList<TComparison> SaveComparisons(const std::shared_ptr<TLargeTable> &table)
{
    const auto saves = std::make_shared<TSaves>(table);
    return {
        // Such a model walks, for each row that it saves, over all that have changed: it takes
        // nearly four times as long for twice the rows.
        SaveBesideQt(
            saves, 10'000, 10'000,
            {.What = QStringLiteral("save 20,000 changed rows, batch mode, one transaction, audit columns"),
             .Peer = QStringLiteral(
                 "QSqlTableModel::submitAll of the same edits without audit columns; 10,000 times 2"),
             .Goal = AtLeast(4),
             .Repetitions = 5,
             .PeerRepetitions = 2}),
        SaveBesideQt(
            saves, ChangedRows, 1000,
            {.What = QStringLiteral("the same beside small models"),
             .Peer = QStringLiteral("QSqlTableModel::submitAll, 20 models of 1,000 rows in one transaction"),
             .Repetitions = 5}),
        SaveBesideBareStatements(saves)};
}

} // namespace Bench
