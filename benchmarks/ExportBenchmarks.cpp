// SPDX-License-Identifier: MIT
#include "ExportBenchmarks.h"

#include "LargeTable.h"
#include "datasets/ExTable.h"
#include "design/DBDFile.h"
#include "session/DBSession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <xlsxwriter.h>

namespace Bench {

using namespace Korvane;

namespace {

/// As many as the old format holds.
constexpr int ExportedRows = 65'000;

/// The first rows of the large table, in a dataset and as what a bare loop writes.
class TExportedItems
{
public:
    TExportedItems(std::shared_ptr<TLargeTable> large, const QString &folder)
        : FLarge(std::move(large)), FOurs(QDir(folder).filePath(QStringLiteral("exported"))),
          FTheirs(QDir(folder).filePath(QStringLiteral("exported-peer.xlsx")))
    {
    }

    void Prepare()
    {
        if (!FTable) {
            FTable = std::make_unique<TExTable>();
            FTable->SetDBDFile(&FLarge->Design());
            FTable->SetDBSession(&FLarge->Session());
            FTable->SetTable(LargeTableName);
            FTable->OpenTable(QString(), QString(), ExportedRows);
            FPacket = FTable->Data();
        }
        for (const QString &name : {Worksheet(), Workbook(), FTheirs})
            QFile::remove(name);
    }
    void ExportWorksheet() { FTable->ExportToExcel(Worksheet()); }
    void ExportWorkbook() { FTable->ExportToWorkbook(Workbook()); }
    void WriteByPeer();
    /// Whether the workbook has the peer's cells.
    bool AreSame()
    {
        Prepare();
        ExportWorkbook();
        WriteByPeer();
        return QProcess::execute(
                   QStringLiteral("python3"),
                   {QStringLiteral(KORVANE_BENCHMARKS_DIR "/same_cells.py"), Workbook(), FTheirs}) == 0;
    }

private:
    QString Worksheet() const { return FOurs + QStringLiteral(".xls"); }
    QString Workbook() const { return FOurs + QStringLiteral(".xlsx"); }

    const std::shared_ptr<TLargeTable> FLarge;
    const QString FOurs, FTheirs;
    std::unique_ptr<TExTable> FTable;
    TDataPacket FPacket;
};

/// A text of a packet, ended by a zero byte as the peer wants it.
const char *Terminated(std::string_view text, std::string &buffer)
{
    buffer.assign(text);
    return buffer.c_str();
}

void TExportedItems::WriteByPeer()
{
    QByteArray folder = QFile::encodeName(QFileInfo(FTheirs).path());
    lxw_workbook_options options = {.constant_memory = LXW_TRUE, .tmpdir = folder.data()};
    lxw_workbook *book = workbook_new_opt(QFile::encodeName(FTheirs).constData(), &options);
    lxw_worksheet *sheet = workbook_add_worksheet(book, nullptr);
    lxw_format *bold = workbook_add_format(book);
    format_set_bold(bold);
    worksheet_freeze_panes(sheet, 1, 0);
    int failures = 0;
    std::string text;
    for (int i = 0; i < FPacket.FieldCount(); ++i) {
        const lxw_col_t column = lxw_col_t(i);
        failures += worksheet_set_column(sheet, column, column, FTable->Fields(i)->DisplayWidth(), nullptr);
        const std::string label = FTable->Fields(i)->DisplayLabel().toStdString();
        failures += worksheet_write_string(sheet, 0, column, label.c_str(), bold);
    }
    for (qsizetype row = 0; row < FPacket.RowCount(); ++row)
        for (int i = 0; i < FPacket.FieldCount(); ++i) {
            const TPacketColumn &cells = FPacket.Column(i);
            if (cells.IsNull(row))
                continue;
            const lxw_row_t place = lxw_row_t(row + 1);
            const lxw_col_t column = lxw_col_t(i);
            if (cells.Kind() == TColumnKind::Text)
                failures +=
                    worksheet_write_string(sheet, place, column, Terminated(cells.Bytes(row), text), nullptr);
            else if (cells.Kind() == TColumnKind::Double)
                failures +=
                    worksheet_write_number(sheet, place, column, cells.Doubles()[size_t(row)], nullptr);
            else
                failures += worksheet_write_number(sheet, place, column, double(cells.Int(row)), nullptr);
        }
    if (workbook_close(book) != LXW_NO_ERROR || failures != 0)
        qFatal("the peer cannot write %s", qUtf8Printable(FTheirs));
}

} // namespace

QList<TComparison> ExportComparisons(const std::shared_ptr<TLargeTable> &table, const QString &folder)
{
    const auto items = std::make_shared<TExportedItems>(table, folder);
    const auto prepare = [items] { items->Prepare(); };
    const auto byPeer = [items] { items->WriteByPeer(); };
    const QString peer = QStringLiteral("libxlsxwriter, constant memory, the same cells as .xlsx");
    return {{.What = QStringLiteral("ExportToExcel of 65,000 rows of 15 columns"),
             .Peer = peer,
             .Goal = AtLeast(20),
             .Ours = [items] { items->ExportWorksheet(); },
             .Theirs = byPeer,
             .Prepare = prepare,
             .PeerRepetitions = 3},
            {.What = QStringLiteral("ExportToWorkbook of 65,000 rows of 15 columns"),
             .Peer = peer,
             .Goal = AtLeast(0.9),
             .Ours = [items] { items->ExportWorkbook(); },
             .Theirs = byPeer,
             .Prepare = prepare,
             .PeerRepetitions = 3,
             .Same = [items] { return items->AreSame(); }}};
}

} // namespace Bench
