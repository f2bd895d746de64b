// SPDX-License-Identifier: MIT
#include "platform/data/store/RecordStore.h"
#include "support/Stores.h"

#include <gtest/gtest.h>

#include <optional>

namespace Korvane {

namespace {

const QVariant Null;

TDataPacket Abc() { return PacketOf(StoreFields(), {{"A", 1}, {"B", 2}, {"C", 3}}); }

/// Does what a line of commands says; records are named by their code:
/// "mod A 5", "ins X 9 B" (before B), "ins X 9", "del A", "rev A", "undo", "cancel", "merge",
/// "log off", "log on", "load" (the store anew from its data).
class TScript
{
public:
    explicit TScript(const QString &commands) : FStore(std::make_unique<TRecordStore>(Abc()))
    {
        for (const QString &command : commands.split(QStringLiteral("; "), Qt::SkipEmptyParts))
            Run(command.split(u' '));
    }
    TRecordStore &Store() { return *FStore; }

private:
    quint32 RecordOf(const QStringList &words, qsizetype index) const
    {
        for (const quint32 record : OrderOf(*FStore))
            if (words.size() > index && FStore->RowOf(record).GetText(0) == words[index].toStdString())
                return record;
        return TRecordStore::NoRecord;
    }
    void Run(const QStringList &words)
    {
        const QString &verb = words[0];
        if (verb == u"mod")
            FStore->Modify(RecordOf(words, 1), StoreRow(words[1].toStdString(), words[2].toInt()));
        else if (verb == u"ins")
            FStore->Insert(StoreRow(words[1].toStdString(), words[2].toInt()), RecordOf(words, 3));
        else if (verb == u"del")
            FStore->Delete(RecordOf(words, 1));
        else if (verb == u"rev")
            FStore->Revert(RecordOf(words, 1));
        else if (verb == u"undo")
            FStore->UndoLast();
        else if (verb == u"cancel")
            FStore->CancelUpdates();
        else if (verb == u"merge")
            FStore->MergeChangeLog();
        else if (verb == u"log")
            FStore->SetLogChanges(words[1] == u"on");
        else if (verb == u"load")
            FStore = Reloaded(*FStore);
        else
            ADD_FAILURE() << verb.toStdString();
    }

    std::unique_ptr<TRecordStore> FStore;
};

TEST(RecordStore, ChangesMakeTheLog)
{
    const struct
    {
        const char *Commands;
        const char *Records;
        const char *Delta;
    } cases[] = {
        {"", " A1 B2 C3", ""},
        {"mod B 7", " A1*B7 C3", " B2*~7"},
        {"mod B 2", " A1*B2 C3", " B2*~~"},
        {"mod B 7; mod A 5; mod B 8", "*A5*B8 C3", " B2*~8 A1*~5"},
        {"ins X 9", " A1 B2 C3+X9", "+X9"},
        {"ins X 9 B; ins Y 8 X", " A1+Y8+X9 B2 C3", "+X9+Y8"},
        {"ins X 9 A; mod X 4", "+X4 A1 B2 C3", "+X4"},
        {"ins X 9 A; del X", " A1 B2 C3", ""},
        {"del B", " A1-B2 C3", "-B2"},
        {"mod C 4; mod B 7; del C", " A1*B7-C3", "-C3 B2*~7"},
        {"del B; rev B", " A1 B2 C3", ""},
        {"mod B 7; del B; rev B", " A1 B2 C3", ""},
        {"mod B 7; mod B 8; undo", " A1 B2 C3", ""},
        {"del A; mod B 7; ins X 9 B; undo", "-A1*B7 C3", "-A1 B2*~7"},
        {"del A; mod B 7; ins X 9 B; undo; undo; undo; undo", " A1 B2 C3", ""},
        {"del A; mod B 7; ins X 9 B; cancel", " A1 B2 C3", ""},
        {"mod A 5; mod B 6; rev A", " A1*B6 C3", " B2*~6"},
        {"rev B", " A1 B2 C3", ""},
        {"mod B 7; merge; mod B 8", " A1*B8 C3", " B7*~8"},
        {"mod B 7; merge; mod B 8; undo", " A1 B7 C3", ""},
        {"mod B 7; merge; del B; undo", " A1 B7 C3", ""},
        {"del A; ins X 9 C; merge", " B2 X9 C3", ""},
        {"ins X 9 B; merge; mod X 4; del X", " A1-X9 B2 C3", "-X9"},
        {"ins X 9 B; merge; mod X 4; cancel", " A1 X9 B2 C3", ""},
        {"log off; mod B 7; ins X 9 C; del A", " B7 X9 C3", ""},
        {"log off; mod B 7; log on; mod B 8; undo", " A1 B7 C3", ""},
        {"mod B 7; ins X 9; log off; mod B 8; mod X 5", " A1*B8 C3+X5", " B2*~8+X5"},
        {"mod B 7; ins X 9; log off; del B; del X", " A1 C3", ""},
        {"ins X 9 B; mod A 5; load; mod X 7; ins Y 8 X; del A", "-A1+Y8+X7 B2 C3", "+X7-A1+Y8"},
        {"ins X 9 B; mod A 5; del C; load; cancel", " A1 B2 C3", ""},
        {"ins X 9 B; mod A 5; del C; load; merge", " A5 X9 B2", ""},
        {"ins X 9; load; del X; ins Y 8 A", "+Y8 A1 B2 C3", "+Y8"},
    };
    for (const auto &c : cases) {
        TScript script(QString::fromUtf8(c.Commands));
        EXPECT_EQ(TextOf(script.Store()), c.Records) << c.Commands;
        EXPECT_EQ(DeltaOf(script.Store()), c.Delta) << c.Commands;
        script.Store().Data().ValidateFull();
        const auto reloaded = Reloaded(script.Store());
        EXPECT_EQ(DeltaOf(*reloaded), c.Delta) << c.Commands;
        EXPECT_EQ(reloaded->ChangeCount(), script.Store().ChangeCount()) << c.Commands;
        script.Store().CancelUpdates();
        reloaded->CancelUpdates();
        EXPECT_EQ(TextOf(*reloaded), TextOf(script.Store())) << c.Commands;
    }
}

TEST(RecordStore, GivesWholePacketsOfAllKinds)
{
    TRecordStore store(
        PacketOf({{"CODE", ftString, 10}, {"ID", ftLargeint}, {"PRICE", ftFloat}, {"PIC", ftBlob}},
                 {{"A", 1, 0.5, QByteArray("\1")}, {"B", Null, Null, Null}, {"C", 3, 1.5, Null}}));
    TRowValues row(store.RowOf(0), store.Kinds());
    row.SetNull(2);
    row.SetText(3, std::string_view("\0", 1));
    store.Modify(0, row);
    store.Delete(1);
    row.SetText(0, "中");
    row.SetInt(1, 1LL << 40);
    store.Insert(row, 1);
    EXPECT_EQ(TextOf(store.Data()).toStdString(), "CODE:string(10)|ID:largeint|PRICE:float|PIC:blob\n"
                                                  "A|1|0.5|0x01\n"
                                                  "B|~|~|~\n"
                                                  "C|3|1.5|~\n"
                                                  "-- log\n"
                                                  "modified 0: A|1|~|0x00\n"
                                                  "deleted 1: ~|~|~|~\n"
                                                  "inserted 1: 中|1099511627776|~|0x00\n");
    EXPECT_EQ(TextOf(store.Delta()).toStdString(), "CODE:string(10)|ID:largeint|PRICE:float|PIC:blob\n"
                                                   "-- delta\n"
                                                   "unmodified: A|1|0.5|0x01\n"
                                                   "modified: ~|~|~|0x00\n"
                                                   "deleted: B|~|~|~\n"
                                                   "inserted: 中|1099511627776|~|0x00\n");
    EXPECT_FALSE(store.HasStored(3));
    EXPECT_TRUE(store.StoredValues(3).IsNull(0));
    EXPECT_EQ(store.StoredValues(0).GetDouble(2), 0.5);
    store.MergeChangeLog();
    EXPECT_EQ(TextOf(store.Data()).toStdString(), "CODE:string(10)|ID:largeint|PRICE:float|PIC:blob\n"
                                                  "A|1|~|0x00\n"
                                                  "中|1099511627776|~|0x00\n"
                                                  "C|3|1.5|~\n");
}

TEST(RecordStore, GivesItsPacketAsLongAsNothingHasChanged)
{
    const auto isShared = [](const TDataPacket &left, const TDataPacket &right) {
        return &left.Column(0) == &right.Column(0);
    };
    const TDataPacket packet = Abc();
    TRecordStore store(packet);
    store.Modify(1, StoreRow("B", 7));
    const TDataPacket changed = store.Data();
    EXPECT_FALSE(isShared(changed, packet));
    store.UndoLast();
    EXPECT_TRUE(isShared(store.Data(), packet));

    TRecordStore loaded(changed);
    EXPECT_TRUE(isShared(loaded.Data(), changed));
    loaded.MergeChangeLog();
    EXPECT_EQ(TextOf(loaded.Data()), TextOf(PacketOf(StoreFields(), {{"A", 1}, {"B", 7}, {"C", 3}})));
}

TEST(RecordStore, WalksADelta)
{
    TScript script("mod B 7; ins X 9; del A");
    const TDataPacket delta = script.Store().Delta();
    TRecordStore store(delta);
    EXPECT_EQ(TextOf(store), " B2*~7+X9-A1");
    EXPECT_TRUE(store.IsPresent(3));
    EXPECT_EQ(store.ChangeCount(), 0);
    EXPECT_EQ(TextOf(store.Data()), TextOf(delta));

    store.Modify(3, StoreRow("A", 4)); // loses the delta's mark, and gets it back
    EXPECT_EQ(TextOf(store), " B2*~7+X9*A4");
    EXPECT_EQ(DeltaOf(store), " A1*~4");
    store.Append(Abc());
    EXPECT_EQ(TextOf(store), " B2*~7+X9*A4 A1 B2 C3");
    store.UndoLast();
    EXPECT_EQ(TextOf(store), " B2*~7+X9-A1 A1 B2 C3");
}

TEST(RecordStore, AppendsByNameBehindChanges)
{
    TScript script("mod A 5; ins X 9 B; del C");
    TRecordStore &store = script.Store();
    store.Append(PacketOf({{"qty", ftSmallint}, {"Code", ftMemo}}, {{7, "D"}, {Null, Null}}));
    store.Append(PacketOf({{"CODE", ftString}}, {{"E"}}));
    EXPECT_EQ(TextOf(store), "*A5+X9 B2-C3 D7 ~~ E~");
    EXPECT_EQ(DeltaOf(store), " A1*~5+X9-C3");
    EXPECT_EQ(store.NaturalPlace(3), 1u);
    store.Delete(store.RecordLimit() - 1);
    store.Append(store.Data()); // of a log only the stored rows
    store.CancelUpdates();
    EXPECT_EQ(TextOf(store), " A1 B2 C3 D7 ~~ E~ A1 B2 C3 D7 ~~ E~");

    const std::string before = TextOf(store);
    const struct
    {
        QList<TPacketField> Fields;
        const char *Expected;
    } refusals[] = {
        {{{"CODE", ftString}, {"PRICE", ftFloat}}, "EDatabaseError: 追加数据失败：数据集没有字段“PRICE”"},
        {{{"CODE", ftString}, {"code", ftString}}, "EDatabaseError: 追加数据失败：数据集没有字段“code”"},
        {{{"QTY", ftFloat}}, "EDatabaseError: 追加数据失败：字段“QTY”的类型不符"},
    };
    for (const auto &refusal : refusals)
        EXPECT_EQ(RaisedBy([&] { store.Append(PacketOf(refusal.Fields, {})); }), refusal.Expected);
    EXPECT_EQ(TextOf(store), before);
}

// Few rows lie over the packet, many make a new one; neither is to be seen.
TEST(RecordStore, AppendsFewRowsAndMany)
{
    std::string expected;
    TRecordStore store(PacketOf(StoreFields(), {}));
    for (int count = 1; count < 400; count = count * 3 / 2 + 1) {
        for (const int rows : {count, 1, 2}) {
            TDataPacketBuilder builder(StoreFields());
            for (int i = 0; i < rows; ++i) {
                if (i % 3 != 0)
                    builder.AppendInt(1, i);
                builder.AppendText(0, "k");
                builder.EndRow();
                expected += " k" + (i % 3 != 0 ? std::to_string(i) : "~");
            }
            store.Append(std::move(builder).Build());
            ASSERT_EQ(TextOf(store), expected);
        }
        const quint32 last = store.RecordLimit() - 1;
        store.Modify(last, StoreRow("m", count));
        expected.replace(expected.rfind(' '), std::string::npos, " m" + std::to_string(count));
        store.MergeChangeLog();
    }
    store.Data().ValidateFull();
    EXPECT_EQ(TextOf(TRecordStore(store.Data())), expected);
}

TEST(RecordStore, ClearsAllAndRefusesToModifyWhatIsDeleted)
{
    TScript script("del A; ins X 9 B; mod B 7");
    TRecordStore &store = script.Store();
    EXPECT_EQ(RaisedBy([&] { store.Modify(0, StoreRow("A", 2)); }), "EDatabaseError: 记录已被删除，不能修改");
    EXPECT_EQ(TextOf(store), "-A1+X9*B7 C3");
    EXPECT_TRUE(store.HasMissing());
    store.Clear();
    EXPECT_EQ(TextOf(store), "");
    EXPECT_EQ(store.ChangeCount(), 0);
    EXPECT_FALSE(store.HasMissing());
    store.Insert(StoreRow("Z", 1), TRecordStore::NoRecord);
    EXPECT_EQ(TextOf(store.Data()), "CODE:string(10)|QTY:integer\n-- log\ninserted 0: Z|1\n");
}

class TListener final : public TStoreObserver
{
public:
    TListener(TRecordStore &store, QString name, QStringList &heard)
        : FStore(store), FName(name), FHeard(heard)
    {
        FStore.Attach(this);
    }
    ~TListener() override { FStore.Detach(this); }

    void RecordInserted(quint32 record) override { Hear("inserted", record); }
    void RecordModified(quint32 record, const TRowReader &old) override
    {
        Hear(("was " + TextOfRow(old) + ", modified").c_str(), record);
    }
    void RecordDeleted(quint32 record) override { Hear("deleted", record); }
    void StoreReset() override { Hear("reset", {}); }
    void ChangesMerged() override { Hear("merged", {}); }

    std::function<void()> AtCall;

private:
    void Hear(const char *what, std::optional<quint32> record)
    {
        QString text = FName + QStringLiteral(": ") + QString::fromLatin1(what);
        if (record)
            text += u' ' + QString::fromStdString(TextOfRow(FStore.RowOf(*record)));
        FHeard += text;
        if (const auto call = std::exchange(AtCall, {}))
            call();
    }

    TRecordStore &FStore;
    const QString FName;
    QStringList &FHeard;
};

TEST(RecordStore, TellsItsObserversOfEachChange)
{
    TRecordStore store(Abc());
    QStringList heard;
    const TListener listener(store, "L", heard);
    const quint32 inserted = store.Insert(StoreRow("X", 9), 0);
    store.Modify(inserted, StoreRow("X", 8));
    store.Delete(inserted);
    store.Delete(inserted);
    store.Delete(0);
    store.Modify(1, StoreRow("B", 7));
    store.UndoLast();
    store.UndoLast();
    store.UndoLast();
    store.CancelUpdates();
    store.MergeChangeLog();
    store.Delete(2);
    store.MergeChangeLog();
    store.Append(Abc());
    store.Clear();
    EXPECT_EQ(heard.join(QStringLiteral(", ")).toStdString(),
              "L: inserted X9, L: was X9, modified X8, L: deleted X8, L: deleted A1, L: was B2, modified B7, "
              "L: was B7, modified B2, L: inserted A1, L: deleted C3, L: merged, L: reset, L: reset");
}

TEST(RecordStore, ObserversComeAndGoWhileTheyAreTold)
{
    TRecordStore store(Abc());
    QStringList heard;
    TListener first(store, "1", heard);
    auto second = std::make_unique<TListener>(store, "2", heard);
    auto third = std::make_unique<TListener>(store, "3", heard);
    std::unique_ptr<TListener> late;
    first.AtCall = [&] {
        second.reset();
        late = std::make_unique<TListener>(store, "late", heard);
        store.Delete(0);
    };
    third->AtCall = [&] { third.reset(); };
    store.Modify(0, StoreRow("A", 5));
    store.Modify(1, StoreRow("B", 6));
    EXPECT_EQ(heard.join(QStringLiteral(", ")).toStdString(),
              "1: was A1, modified A5, 1: deleted A1, 3: deleted A1, "
              "late: deleted A1, 1: was B2, modified B6, late: was B2, modified B6");
}

} // namespace

} // namespace Korvane
