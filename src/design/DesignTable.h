// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBObject.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Text.h"
#include "platform/sql/ADOConnection.h"

#include <QHash>

#include <span>
#include <variant>
#include <vector>

namespace Korvane {

/// One column of a design table and the member of the row object that takes it.
template <class Row> struct TDesignColumn
{
    QString Name;
    std::variant<QString Row::*, int Row::*, bool Row::*> Member;
};

/// What is read of a design table and how: the statement, the columns, and the columns by
/// which the rows are ordered.
template <class Row> struct TDesignLayout
{
    QString Statement;
    QList<TDesignColumn<Row>> Columns;
    QList<std::variant<QString Row::*, int Row::*, bool Row::*>> Order;
};

/// The rows of one design table, read at once, decoded once, and kept in order. The order is
/// the statement's, blind to the case of letters whatever the store is, so that a Jet file and
/// any other store walk alike. Lookups are whole-value and exact in case, and find the first
/// row in order; each combination of columns gets a hash at its first use.
template <class Row> class TDesignTable
{
public:
    explicit TDesignTable(const TDesignLayout<Row> &layout) : FLayout(layout) {}

    /// Reads the table. Raises EDatabaseError when a column is missing.
    void Open(TADOConnection &connection)
    {
        Close();
        const TDataPacket packet = connection.Query(FLayout.Statement);
        Decode(packet);
        const auto before = [this](const Row &left, const Row &right) { return StandsBefore(left, right); };
        if (!std::is_sorted(FRows.begin(), FRows.end(), before)) // as the statement asks, it mostly is
            std::stable_sort(FRows.begin(), FRows.end(), before);
        FOpen = true;
    }

    void Close()
    {
        FReading = ++LatestReading;
        FOpen = false;
        FRows.clear();
        FGroups.clear();
        FPairs.clear();
    }

    /// Another number after each Open and Close, and the same in no two tables. What was worked
    /// out from the rows holds as long as this stays.
    quint64 Reading() const { return FReading; }
    /// The rows in order. Raises EDatabaseError when the table is closed.
    const std::vector<Row> &Rows() const
    {
        if (!FOpen)
            throw EDatabaseError(QStringLiteral("数据集未打开，无法执行此操作"));
        return FRows;
    }

    /// The first row whose column equals the value; null if there is none.
    const Row *Locate(QString Row::*column, const QString &value)
    {
        const auto &rows = RowsWith(column, value);
        return rows.empty() ? nullptr : &FRows[rows.front()];
    }

    /// The first row in which both columns equal their values; null if there is none.
    const Row *Locate(QString Row::*first, const QString &firstValue, QString Row::*second,
                      const QString &secondValue)
    {
        const TPairIndex &index = PairsOf(first, second);
        const auto found = index.Rows.constFind({firstValue, secondValue});
        return found == index.Rows.constEnd() ? nullptr : &FRows[*found];
    }

    /// The indexes of all rows whose column equals the value, in order.
    const std::vector<quint32> &RowsWith(QString Row::*column, const QString &value)
    {
        static const std::vector<quint32> none;
        const TGroupIndex &index = GroupsOf(column);
        const auto found = index.Rows.constFind(value);
        return found == index.Rows.constEnd() ? none : *found;
    }

private:
    struct TGroupIndex
    {
        QString Row::*Column;
        QHash<QString, std::vector<quint32>> Rows;
    };
    struct TPairIndex
    {
        QString Row::*First;
        QString Row::*Second;
        QHash<std::pair<QString, QString>, quint32> Rows;
    };

    void Decode(const TDataPacket &packet)
    {
        FRows.resize(size_t(packet.RowCount()));
        for (const TDesignColumn<Row> &column : FLayout.Columns) {
            const int field = packet.IndexOf(column.Name);
            if (field < 0)
                throw EDatabaseError(
                    QStringLiteral("数据库设计文件缺少栏位“%1”：%2").arg(column.Name, FLayout.Statement));
            std::visit([&](auto member) { DecodeColumn(packet, field, member); }, column.Member);
        }
    }

    void DecodeColumn(const TDataPacket &packet, int field, QString Row::*member)
    {
        for (size_t i = 0; i < FRows.size(); ++i)
            FRows[i].*member = packet.Text(field, qsizetype(i));
    }
    void DecodeColumn(const TDataPacket &packet, int field, int Row::*member)
    {
        const TPacketColumn &column = packet.Column(field);
        const bool whole = column.Kind() == TColumnKind::Int32 || column.Kind() == TColumnKind::Int64;
        for (size_t i = 0; i < FRows.size(); ++i)
            FRows[i].*member =
                whole ? int(column.Int(qsizetype(i))) : packet.Value(field, qsizetype(i)).toInt();
    }
    /// A flag is true for an exact "Y" alone.
    void DecodeColumn(const TDataPacket &packet, int field, bool Row::*member)
    {
        for (size_t i = 0; i < FRows.size(); ++i)
            FRows[i].*member = packet.Text(field, qsizetype(i)) == QLatin1String("Y");
    }

    bool StandsBefore(const Row &left, const Row &right) const
    {
        for (const auto &key : FLayout.Order) {
            const int order =
                std::visit([&](auto member) { return Compare(left.*member, right.*member); }, key);
            if (order != 0)
                return order < 0;
        }
        return false;
    }
    static int Compare(const QString &left, const QString &right) { return CompareText(left, right); }
    static int Compare(int left, int right) { return left < right ? -1 : left > right; }

    const TGroupIndex &GroupsOf(QString Row::*column)
    {
        const std::vector<Row> &rows = Rows();
        for (const TGroupIndex &index : FGroups)
            if (index.Column == column)
                return index;
        TGroupIndex index{column, {}};
        for (size_t i = 0; i < rows.size(); ++i)
            index.Rows[rows[i].*column].push_back(quint32(i));
        FGroups.push_back(std::move(index));
        return FGroups.back();
    }

    const TPairIndex &PairsOf(QString Row::*first, QString Row::*second)
    {
        const std::vector<Row> &rows = Rows();
        for (const TPairIndex &index : FPairs)
            if (index.First == first && index.Second == second)
                return index;
        TPairIndex index{first, second, {}};
        index.Rows.reserve(qsizetype(rows.size()));
        for (size_t i = rows.size(); i-- > 0;) // the first of equal rows is put in last and stays
            index.Rows.insert({rows[i].*first, rows[i].*second}, quint32(i));
        FPairs.push_back(std::move(index));
        return FPairs.back();
    }

    static inline quint64 LatestReading = 0;

    const TDesignLayout<Row> &FLayout;
    quint64 FReading = ++LatestReading;
    bool FOpen = false;
    std::vector<Row> FRows;
    std::vector<TGroupIndex> FGroups;
    std::vector<TPairIndex> FPairs;
};

} // namespace Korvane
