// SPDX-License-Identifier: MIT
#include "support/DataSets.h"

#include <gtest/gtest.h>

namespace Korvane {

namespace {

const QVariant Null;

std::unique_ptr<TClientDataSet> Parts()
{
    return DataSetOf({{"CODE", ftString, 10}, {"QTY", ftInteger}, {"NAME", ftString, 10}, {"PIC", ftBlob}},
                     {{"b", 2, "王", Null},
                      {"A", 1, "李", Null},
                      {"B", 2, "陈", Null},
                      {"a", Null, "张", Null},
                      {"c", 1, Null, Null}});
}

TEST(ClientDataSetOrder, OrdersByFieldsAndIndexes)
{
    const struct
    {
        const char *Fields;
        TIndexOptions Options;
        const char *Down;
        const char *Blind;
        const char *View;
    } cases[] = {
        {"CODE", {}, "", "", "A B a b >c"},
        {"code", {}, "", "", "A B a b >c"},
        {"QTY", {}, "", "", "a A >c b B"},
        {"QTY;CODE", {}, "", "", "a A >c B b"},
        {"NAME", {}, "", "", ">c a A b B"},
        {"CODE", ixDescending, "", "", ">c b a B A"},
        {"CODE", ixCaseInsensitive, "", "", "A a b B >c"},
        {"CODE", ixDescending | ixCaseInsensitive, "", "", ">c b B A a"},
        {"QTY", ixDescending, "", "", "b B A >c a"},
        {"QTY;CODE", {}, "QTY", "", "B b A >c a"},
        {"QTY;CODE", {}, "CODE", "", "a >c A b B"},
        {"QTY;CODE", ixDescending, "CODE", "", "a >c A b B"}, // those that are named alone
        {"QTY;CODE", {}, "QTY", "CODE", "b B A >c a"},
        {"QTY;CODE", ixDescending, "", "CODE", "b B >c A a"},
    };
    for (const auto &[fields, options, down, blind, view] : cases) {
        // The last row stays current.
        const auto set = Parts();
        Do(*set, "last");
        if (!options && !*down && !*blind) {
            set->SetIndexFieldNames(fields);
            EXPECT_EQ(ViewOf(*set, "CODE"), view) << fields;
        }
        set->AddIndex("X", fields, options, down, blind);
        set->SetIndexName("x");
        EXPECT_EQ(set->IndexFieldNames(), "");
        EXPECT_EQ(ViewOf(*set, "CODE"), view) << fields;
        set->SetData(set->Data());
        EXPECT_EQ(ViewOf(*set, "CODE").remove(u'>'), QString(view).remove(u'>')) << fields;
        set->SetIndexFieldNames("QTY");
        EXPECT_EQ(set->IndexName(), "");
        set->SetIndexFieldNames({});
        EXPECT_EQ(ViewOf(*set, "CODE").remove(u'>'), "b A B a c");
    }
}

TEST(ClientDataSetOrder, ChangedRowsFindTheirPlaces)
{
    const struct
    {
        const char *Steps;
        const char *View;
    } cases[] = {
        {"append; CODE=a1; post", "A B a >a1 b c"},
        {"insert; CODE=Z; post", "A B >Z a b c"},
        {"first; edit; CODE=d; post", "B a b c >d"},
        {"last; edit; CODE=0; post", ">0 A B a b"},
        {"last; edit; CODE=0; first", ">0 A B a b"},
        {"last; edit; CODE=b1; post", "A B a b >b1"},
        {"first; edit; CODE=d; cancel", ">A B a b c"},
        // who comes later goes behind its equals, and to its age when all are ordered anew
        {"append; CODE=b; post", "A B a b >b c"},
        {"first; edit; CODE=b; post", "B a b >b c"},
        {"recno 4; edit; CODE=c; post", "A B a c >c"},
        {"recno 4; edit; CODE=c; post; edit; QTY=7; post", "A B a c >c"},
        {"recno 4; edit; CODE=c; post; refresh", "A B a >c c"},
        {"recno 4; edit; CODE=c; post; index; index CODE", "A B a >c c"},
        {"append; post", ">~ A B a b c"},
        {"first; delete; undo", "A >B a b c"},
        {"first; edit; CODE=d; post; undo", ">A B a b c"},
        {"first; edit; CODE=d; post; undo; last", "A B a b >c"},
        {"insert; CODE=Z; post; index", "b >Z A B a c"},
    };
    for (const auto &[steps, view] : cases) {
        const auto set = Parts();
        Do(*set, "index CODE; first");
        Do(*set, steps);
        EXPECT_EQ(ViewOf(*set, "CODE"), view) << steps;
    }
}

TEST(ClientDataSetOrder, TheNaturalOrderIsWhereRowsWerePut)
{
    const auto set = Parts();
    TClientDataSet clone;
    clone.CloneCursor(set.get(), true);
    Do(*set, "recno 3; insert; CODE=x; post; insert; CODE=w; post; append; CODE=z; post; first; insert; "
             "CODE=0; post");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">0 b A w x B a c z");
    EXPECT_EQ(ViewOf(clone, "CODE"), "0 >b A w x B a c z");
    Do(*set, "index CODE; index; filter CODE='x'; insert; CODE=x1; post; filter");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">0 b A w x1 x B a c z");
    // with nothing shown, there is nothing to put it before
    Do(*set, "filter CODE='none'; insert; CODE=e; post; filter");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">0 b A w x1 x B a c z e");
    Do(*set, "merge");
    TClientDataSet loaded;
    loaded.SetData(set->Data());
    EXPECT_EQ(ViewOf(loaded, "CODE"), ">0 b A w x1 x B a c z e");
}

TEST(ClientDataSetOrder, OrdersTextsByLocale)
{
    const auto set = Parts();
    set->SetIndexFieldNames("NAME;CODE");
    EXPECT_EQ(ViewOf(*set, "NAME").remove(u'>'), "~ 张 李 王 陈");
    set->SetSortLocale("zh");
    EXPECT_EQ(ViewOf(*set, "NAME").remove(u'>'), "~ 陈 李 王 张");
    EXPECT_TRUE(set->FindKey({"王"}));
    EXPECT_EQ(set->RecNo(), 4);
    Do(*set, "append; NAME=马; post");
    EXPECT_EQ(ViewOf(*set, "NAME"), "~ 陈 李 >马 王 张");
    Do(*set, "index CODE");
    EXPECT_EQ(ViewOf(*set, "CODE").remove(u'>'), "~ a A b B c");
    EXPECT_EQ(KindRaised([&] { set->SetSortLocale("no such language"); }), "EDatabaseError");
    EXPECT_EQ(set->SortLocale(), "zh");
    set->SetSortLocale({});
    EXPECT_EQ(ViewOf(*set, "CODE").remove(u'>'), "~ A B a b c");
}

TEST(ClientDataSetOrder, FindsKeys)
{
    const struct
    {
        const char *Down;
        QVariantList Key;
        const char *Found;   // the code, or empty
        const char *Nearest; // the code
    } cases[] = {
        // a~ A1 c1 B2 b2
        {"", {1}, "A", "A"},
        {"", {"1"}, "A", "A"},
        {"", {Null}, "a", "a"},
        {"", {2, "b"}, "b", "b"},
        {"", {1, "B"}, "", "c"},
        {"", {0}, "", "A"},
        {"", {3}, "", "b"},
        {"", {1, "z"}, "", "B"},
        // B2 b2 A1 c1 a~
        {"QTY", {1}, "A", "A"},
        {"QTY", {3}, "", "B"},
        {"QTY", {2}, "B", "B"},
        {"QTY", {0}, "", "a"},
        {"QTY", {Null}, "a", "a"},
        {"QTY", {1, "B"}, "", "c"},
        // b2 B2 c1 A1 a~
        {"QTY;CODE", {1, "B"}, "", "A"},
        {"QTY;CODE", {2, "z"}, "", "b"},
        {"QTY;CODE", {2, "B"}, "B", "B"},
    };
    for (const auto &[down, key, found, nearest] : cases) {
        const auto set = Parts();
        set->AddIndex("X", "QTY;CODE", {}, down);
        set->SetIndexName("X");
        set->SetRecNo(3);
        const QString before = set->FieldByName(u"CODE")->AsString();
        EXPECT_EQ(set->FindKey(key), *found != 0) << down;
        EXPECT_EQ(set->FieldByName(u"CODE")->AsString(), *found ? QString(found) : before);
        set->FindNearest(key);
        EXPECT_EQ(set->FieldByName(u"CODE")->AsString(), nearest) << down << " " << found;
    }
    const auto set = Parts();
    set->AddIndex("BLIND", "CODE", ixCaseInsensitive);
    set->SetIndexName("BLIND");
    EXPECT_TRUE(set->FindKey({"B"}));
    EXPECT_EQ(ViewOf(*set, "CODE"), "A a >b B c");
    EXPECT_EQ(KindRaised([&] { set->FindKey({"B", 1}); }), "EDatabaseError");
    EXPECT_EQ(KindRaised([&] { set->FindKey({}); }), "EDatabaseError");
    Do(*set, "index");
    EXPECT_EQ(KindRaised([&] { set->FindKey({"B"}); }), "EDatabaseError");
    EXPECT_EQ(KindRaised([&] { set->FindNearest({"B"}); }), "EDatabaseError");
    Do(*set, "index CODE; filter CODE='none'");
    set->FindNearest({"B"});
    EXPECT_FALSE(set->FindKey({"B"}));
    EXPECT_EQ(PlaceOf(*set), "browse 0/0 bof eof");
}

TEST(ClientDataSetOrder, KeepsAListOfIndexes)
{
    const auto set = Parts();
    set->AddIndex("BYQTY", "QTY", {});
    set->IndexDefs().append({"DOWN", "CODE", ixDescending, {}, {}});
    EXPECT_EQ(set->FindIndex("byqty")->Fields, "QTY");
    EXPECT_EQ(set->FindIndex("none"), nullptr);
    set->SetIndexName("DOWN");
    EXPECT_EQ(ViewOf(*set, "CODE"), "c >b a B A");
    set->DeleteIndex("byqty");
    EXPECT_EQ(ViewOf(*set, "CODE"), "c >b a B A");
    set->DeleteIndex("down");
    EXPECT_EQ(set->IndexName(), "");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">b A B a c");
    EXPECT_TRUE(set->IndexDefs().isEmpty());

    set->AddIndex("X", "CODE", {});
    set->SetIndexName("X");
    const std::function<void()> refused[] = {
        [&] { set->AddIndex("x", "QTY", {}); },
        [&] { set->AddIndex("", "QTY", {}); },
        [&] { set->AddIndex("Y", "NO_SUCH", {}); },
        [&] { set->AddIndex("Y", "", {}); },
        [&] { set->AddIndex("Y", "PIC", {}); },
        [&] { set->AddIndex("Y", "QTY", ixUnique); },
        [&] { set->DeleteIndex("Y"); },
        [&] { set->SetIndexName("Y"); },
        [&] { set->SetIndexFieldNames("NO_SUCH"); },
        [&] { set->SetIndexFieldNames("CODE;PIC"); },
    };
    for (const auto &call : refused) {
        EXPECT_EQ(KindRaised(call), "EDatabaseError");
        EXPECT_EQ(set->IndexDefs().size(), 1);
        EXPECT_EQ(set->IndexName(), "X");
        EXPECT_EQ(ViewOf(*set, "CODE"), "A B a >b c");
    }
}

TEST(ClientDataSetOrder, AUniqueIndexRefusesASecondKey)
{
    const auto set = Parts();
    set->AddIndex("CODES", "CODE", ixUnique);
    set->AddIndex("KEYS", "QTY;NAME", ixPrimary);
    const struct
    {
        const char *Steps;
        const char *Raised;
    } cases[] = {
        {"append; CODE=b", "EDatabaseError"},
        {"append; CODE=d; QTY=2; NAME=王", "EDatabaseError"},
        {"append; CODE=d; QTY=3; NAME=王", "nothing"},
        {"first; edit; CODE=A", "EDatabaseError"},
        {"first; edit; CODE=b", "nothing"},
        {"first; edit; QTY=5; CODE=e", "nothing"},
        {"append; CODE=b; QTY=2; NAME=王", "nothing"},
        {"last; delete; append; CODE=b; QTY=2; NAME=王", "nothing"},
        {"filter CODE='none'; append; CODE=A", "EDatabaseError"},
    };
    for (const auto &[steps, raised] : cases) {
        Do(*set, steps);
        EXPECT_EQ(KindRaised([&] { set->Post(); }), raised) << steps;
        EXPECT_EQ(set->State() == dsBrowse, raised == QLatin1String("nothing")) << steps;
        Do(*set, "cancel");
    }
    Do(*set, "filter");
    EXPECT_EQ(ViewOf(*set, "CODE").remove(u'>'), "e A B a c d b");
}

} // namespace

} // namespace Korvane
