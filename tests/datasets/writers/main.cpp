// SPDX-License-Identifier: MIT
// One of many users of a database, in a process of its own:
//
//     korvane_writer save|hold DESIGN access|mssql SERVER DATABASE USER NAME COUNT APPLICATION
//
// The password stands in KORVANE_WRITER_PASSWORD. It says "ready", waits for a line, and saves rows of LINE,
// each in a transaction with a count in PART; what other users are in the way of it does again. In the end it
// says how often that was. "hold" says "holding" before it commits the last row, and stays there.
#include "datasets/DataSetRecords.h"

#include "datasets/ExDB.h"
#include "design/DBDFile.h"
#include "general/SessionValues.h"

#include <QCoreApplication>

#include <cstdio>
#include <iostream>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

void Say(const std::string &line) { std::cout << line << std::endl; }
void WaitForALine()
{
    std::string line;
    std::getline(std::cin, line);
}

/// Whether an error says that another user was in the way.
bool IsPassing(const QString &message)
{
    return message.startsWith(u"数据库正被其他用户锁定，请稍后再试"_s) ||
           message.startsWith(u"与其他用户互相等待，请稍后再试"_s);
}

class TWriter
{
public:
    explicit TWriter(const QStringList &arguments) : FName(arguments[7])
    {
        AUserCode = FName;
        RegisterClass<Testing::TLineRecord>();
        FDesign.SetFileName(arguments[2]);
        FDesign.SetActived(true);
        FSession.SetDBType(arguments[3] == "mssql"_L1 ? dbtMSSQL : dbtAccess);
        FSession.SetDBServer(arguments[4]);
        FSession.SetDBName(arguments[5]);
        FSession.SetDBUser(arguments[6]);
        FSession.SetDBPassword(qEnvironmentVariable("KORVANE_WRITER_PASSWORD"));
        FSession.SetAppName(arguments[9]);
        FSession.SetConnected(true);
        FLines.SetDBDFile(&FDesign);
        FLines.SetDBSession(&FSession);
        FLines.SetTable(u"LINE"_s);
        Read();
    }

    void Save(int number)
    {
        while (!TrySave(number)) {
            ++FRepeats;
            Read();
        }
    }
    void Hold(int number)
    {
        FSession.BeginTrans();
        Write(number);
        Say("holding");
        WaitForALine();
    }
    int Repeats() const { return FRepeats; }

private:
    bool TrySave(int number)
    {
        try {
            FSession.BeginTrans();
            Write(number);
            FSession.CommitTrans();
            return true;
        } catch (const Exception &error) {
            FSession.RollbackTrans();
            if (!IsPassing(error.Message()))
                throw;
            return false;
        }
    }
    void Write(int number)
    {
        // The first row of a few goes with both counts, in either order, so that they wait for each other.
        // What is repeated takes the common order.
        const int digit = FName.back().digitValue();
        const bool isSpecial = number == 1 && digit <= 1, isReversed = digit == 1 && FRepeats == 0;
        if (isSpecial)
            Count(isReversed ? u"P2"_s : u"P1"_s);
        FLines.Append();
        FLines.FieldByName(u"BILLCODE")->SetAsString(FName);
        FLines.FieldByName(u"NO")->SetAsString(u"%1"_s.arg(number, 4, 10, QLatin1Char('0')));
        FLines.FieldByName(u"QTY")->SetAsInteger(number);
        FLines.Post();
        Count(isSpecial && !isReversed ? u"P2"_s : u"P1"_s);
    }
    void Count(const QString &part)
    {
        FSession.Execute(u"update PART set QTY=QTY+1 where CODE='%1'"_s.arg(part));
    }
    void Read()
    {
        if (FLines.Active())
            FLines.Cancel();
        FLines.OpenTable(u"BILLCODE"_s, FName, ooEqualAnd);
    }

    const QString FName;
    TDBDFile FDesign;
    TDBSession FSession;
    TExTable FLines;
    int FRepeats = 0;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    try {
        TWriter writer(arguments);
        Say("ready");
        WaitForALine();
        const int count = arguments[8].toInt();
        const bool isHolding = arguments[1] == "hold"_L1;
        for (int number = 1; number <= count - isHolding; ++number)
            writer.Save(number);
        if (isHolding)
            writer.Hold(count);
        Say(std::to_string(writer.Repeats()));
        return 0;
    } catch (const Exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
