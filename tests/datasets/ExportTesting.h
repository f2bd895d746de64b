// SPDX-License-Identifier: MIT
#pragma once

#include "datasets/ExDB.h"
#include "support/Packets.h"
#include "support/ScriptedPrompts.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

#include <sys/resource.h>

namespace Korvane::Testing {

using namespace Qt::StringLiterals;

inline QByteArray BytesOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

inline QString RunProgram(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.waitForFinished(60'000);
    return QString::fromUtf8(process.readAll());
}

/// What programs that others have written read in a spreadsheet file.
inline QString SheetOf(const QString &fileName)
{
    return RunProgram(QStringLiteral(KORVANE_PYTHON),
                      {QStringLiteral(KORVANE_SOURCE_DIR "/tests/support/read_sheet.py"), fileName});
}

/// No file of the process can become larger, as if the disk were full.
class SmallDisk
{
public:
    explicit SmallDisk(rlim_t bytes) : FHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &FBefore);
        const rlimit limit{bytes, FBefore.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;
    ~SmallDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &FBefore);
        std::signal(SIGXFSZ, FHandler);
    }

private:
    void (*FHandler)(int);
    rlimit FBefore;
};

/// A dataset with rows of its own and a folder that its files go to.
class ExportTest : public testing::Test
{
protected:
    void Load(const QList<TPacketField> &fields, const QList<QVariantList> &rows)
    {
        Set.SetData(PacketOf(fields, rows));
    }
    /// So many rows of one column of numbers from 1.
    void LoadNumbers(int count)
    {
        TDataPacketBuilder builder({{u"NO"_s, ftInteger}});
        for (int no = 1; no <= count; ++no) {
            builder.AppendInt(0, no);
            builder.EndRow();
        }
        Set.SetData(std::move(builder).Build());
    }
    /// A field of every kind, with values at the ends of the types, empty ones and none.
    void LoadKinds()
    {
        Load({{u"CODE"_s, ftString, 20},
              {u"QTY"_s, ftInteger},
              {u"DAYS"_s, ftSmallint},
              {u"RATE"_s, ftFloat},
              {u"PRICE"_s, ftBCD},
              {u"MADE"_s, ftDate},
              {u"STOPPED"_s, ftBoolean},
              {u"NOTE"_s, ftMemo},
              {u"PIC"_s, ftBlob},
              {u"BIG"_s, ftLargeint}},
             {{u"A1"_s, 5, 1, 0.5, 1.25, 45000.0, 1, u"螺丝 M8"_s, QByteArray("x"), 123456789012345678LL},
              {u""_s, -1, -32768, -1e300, 0.1, 1.0, 0, u"→𠀀"_s, QByteArray(""), 12},
              {u"007"_s, 536870911, 0, 0.0, 1e15, 73050.0, 1, u"a\nb"_s, {}, -5},
              {{}, {}, {}, {}, {}, {}, {}, {}, {}, {}}});
        Set.FieldByName(u"CODE")->SetDisplayLabel(u"编号"_s);
        Set.FieldByName(u"CODE")->SetDisplayWidth(6);
        Set.FieldByName(u"STOPPED")->SetDisplayFormat(u"是;否"_s);
    }
    /// Two fields that a masked and a hidden one stand between.
    void LoadSecrets()
    {
        Load({{u"A"_s, ftString, 9},
              {u"PASS"_s, ftString, 20},
              {u"PIN"_s, ftInteger},
              {u"COST"_s, ftFloat},
              {u"Z"_s, ftString, 9}},
             {{u"a1"_s, u"geheim77"_s, 1234567, 9.5, u"z1"_s}, {u"a2"_s, u"******"_s, 7, 1.5, u"z2"_s}});
        for (const QString &name : {u"PASS"_s, u"PIN"_s})
            Set.FieldByName(name)->OnGetText = [](TField *, QString &text, bool) { text = u"******"_s; };
        Set.FieldByName(u"COST")->SetVisible(false);
    }

    QString Path(const QString &name) const { return Folder.filePath(name); }
    /// What stands in the folder, hidden files too.
    QStringList Files() const
    {
        return QDir(Folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QTemporaryDir Folder;
    TExTable Set;
};

} // namespace Korvane::Testing
