// SPDX-License-Identifier: MIT
#include "LargeTable.h"

#include "LargeDesign.h"
#include "datasets/ExDB.h"
#include "design/DBDFile.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "session/DBSession.h"

#include <QDir>

#include <array>

namespace Bench {

using namespace Korvane;

namespace {

constexpr auto Design = R"(
insert into Tables values('LARGEITEM', 'TLargeItem', '大表', null);
insert into Fields values
  ('LARGEITEM',  1, 'ITEMCODE', '物料编号', 'ItemCode',  'char',     0, 11, 'N', 'Y', 'Y', null, null),
  ('LARGEITEM',  2, 'ITEMNAME', '物料名称', 'ItemName',  'varchar',  0, 40, 'N', 'N', 'Y', null, null),
  ('LARGEITEM',  3, 'CATEGORY', '物料分类', 'Category',  'varchar',  0, 20, 'N', 'N', 'N', null, null),
  ('LARGEITEM',  4, 'QTY',      '数量',     'Qty',       'int',      0,  8, 'N', 'N', 'N', '0',  null),
  ('LARGEITEM',  5, 'LEADDAYS', '前置天数', 'LeadDays',  'smallint', 0,  6, 'N', 'N', 'N', '0',  null),
  ('LARGEITEM',  6, 'PRICE',    '单价',     'Price',     'decimal',  2, 12, 'N', 'N', 'N', '0',  null),
  ('LARGEITEM',  7, 'WEIGHT',   '重量',     'Weight',    'float',    0,  8, 'N', 'N', 'N', '0',  null),
  ('LARGEITEM',  8, 'STOPPED',  '停用',     'IsStopped', 'boolean',  0,  6, 'N', 'N', 'Y', 'N',  null),
  ('LARGEITEM',  9, 'MADEDATE', '生产日期', 'MadeDate',  'date',     0,  8, 'N', 'N', 'N', null, null),
  ('LARGEITEM', 10, 'NOTE',     '备注',     'Note',      'varchar',  0, 60, 'N', 'N', 'N', null, null);
)";

constexpr auto Insert =
    "insert into LARGEITEM(CREATOR, CREATEDATE, MODIFIER, MODIFYDATE, CREATORGROUP, "
    "ITEMCODE, ITEMNAME, CATEGORY, QTY, LEADDAYS, PRICE, WEIGHT, STOPPED, MADEDATE, NOTE) "
    "values('u101', '20240102080000', 'u101', '20240102080000', 'SalesA', "
    "?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

constexpr std::array Materials = {"不锈钢", "镀锌", "黄铜", "铝合金", "碳钢", "尼龙", "橡胶",
                                  "聚乙烯", "陶瓷", "铸铁", "硅胶",   "木质", "紫铜", "玻璃",
                                  "合金钢", "塑料", "ABS",  "PVC",    "PTFE", "高强"};
constexpr std::array Things = {
    "螺栓", "螺母", "垫圈",   "销钉",   "轴承",   "齿轮",   "链条",   "皮带",   "弹簧",   "密封圈",
    "阀门", "接头", "软管",   "法兰",   "弯头",   "三通",   "水泵",   "电机",   "开关",   "插座",
    "电缆", "灯具", "熔断器", "继电器", "传感器", "仪表",   "扳手",   "钳子",   "螺丝刀", "锤子",
    "锯条", "钻头", "砂轮",   "卷尺",   "手套",   "口罩",   "护目镜", "安全帽", "纸箱",   "胶带",
    "标签", "托盘", "油漆",   "胶水",   "润滑油", "清洁剂", "砂纸",   "焊条",   "铁丝",   "滤芯"};
constexpr int Specs = 50;
constexpr int Categories = 200;

/// The same sequence on every machine.
class TNumbers
{
public:
    quint32 Below(quint32 bound)
    {
        FState = FState * 6364136223846793005u + 1442695040888963407u;
        return quint32((FState >> 33) * bound >> 31);
    }

private:
    quint64 FState = 20240618;
};

std::vector<std::string> MakeNames()
{
    std::vector<std::string> names;
    for (const char *material : Materials)
        for (const char *thing : Things)
            for (int spec = 0; spec < Specs; ++spec)
                names.push_back(std::string(material) + thing + "M" + std::to_string(spec / 5 * 2 + 4) + "×" +
                                std::to_string(spec % 5 * 15 + 10));
    return names;
}

std::vector<std::string> MakeCategories()
{
    std::vector<std::string> categories;
    for (int i = 0; i < Categories; ++i)
        categories.push_back(std::string(Things[size_t(i) % Things.size()]) + "类" +
                             std::to_string(i / 50 + 1));
    return categories;
}

std::string DateText(TNumbers &numbers)
{
    return std::to_string(20150101 + numbers.Below(10) * 10000 + numbers.Below(12) * 100 + numbers.Below(28));
}

void BindRow(TSqliteStatement &insert, int row, TNumbers &numbers, const std::vector<std::string> &names,
             const std::vector<std::string> &categories)
{
    const std::string code = LargeCode(row).toStdString();
    insert.BindText(lcCode + 1, code);
    insert.BindText(lcName + 1, names[numbers.Below(quint32(names.size()))]);
    insert.BindText(lcCategory + 1, categories[numbers.Below(Categories)]);
    insert.BindInt(lcQty + 1, numbers.Below(100'000));
    insert.BindInt(lcLeadDays + 1, numbers.Below(90));
    insert.BindDouble(lcPrice + 1, numbers.Below(10'000'000) / 100.0);
    insert.BindDouble(lcWeight + 1, numbers.Below(1'000'000) / 1024.0);
    insert.BindText(lcStopped + 1, numbers.Below(10) == 0 ? "Y" : "N");
    insert.BindText(lcMadeDate + 1, DateText(numbers));
    if (numbers.Below(4) == 0)
        insert.BindNull(lcNote + 1);
    else
        insert.BindText(lcNote + 1, "第" + std::to_string(numbers.Below(5000)) + "批次，随货附合格证");
}

void FillRows(const QString &fileName)
{
    TSqliteDatabase database(fileName, TSqliteOpen::ReadWrite);
    database.Run("begin");
    TSqliteStatement insert(database, Insert);
    const auto names = MakeNames();
    const auto categories = MakeCategories();
    TNumbers numbers;
    for (int row = 0; row < LargeRows; ++row) {
        BindRow(insert, row, numbers, names, categories);
        insert.Step();
        insert.Reset();
    }
    database.Run("commit");
}

} // namespace

QString LargeCode(int row) { return QStringLiteral("P%1").arg(row, 10, 10, QLatin1Char('0')); }

QStringList LargeMaterials() { return {Materials.begin(), Materials.end()}; }
QStringList LargeThings() { return {Things.begin(), Things.end()}; }

TLargeTable::TLargeTable(const QString &folder) : FFolder(folder) { RegisterClass<TLargeItem>(); }

TLargeTable::~TLargeTable() = default;

TDBDFile &TLargeTable::Design()
{
    if (!FDesign) {
        const QString fileName = QDir(FFolder).filePath(QStringLiteral("largetable.store"));
        MakeDesign(fileName);
        FDesign = std::make_unique<TDBDFile>();
        FDesign->SetFileName(fileName);
        FDesign->SetActived(true);
    }
    return *FDesign;
}

const QString &TLargeTable::File()
{
    if (FFile.isEmpty()) {
        const QString fileName = QDir(FFolder).filePath(QStringLiteral("largetable.db"));
        MakeDatabase(fileName);
        FFile = fileName;
    }
    return FFile;
}

TDBSession &TLargeTable::Session()
{
    if (!FSession)
        FSession = ConnectTo(File());
    return *FSession;
}

QString TLargeTable::CopyAs(const QString &name)
{
    const QString target = QDir(FFolder).filePath(name);
    RemoveDatabaseFile(target);
    if (!QFile::copy(File(), target))
        qFatal("cannot copy %s to %s", qUtf8Printable(File()), qUtf8Printable(target));
    return target;
}

void TLargeTable::MakeDesign(const QString &fileName) const
{
    MakeEmptyDesign(fileName);
    TSqliteDatabase(fileName, TSqliteOpen::ReadWrite).Run(::Bench::Design);
}

void TLargeTable::MakeDatabase(const QString &fileName)
{
    RemoveDatabaseFile(fileName);
    {
        TDBSession session;
        session.SetDBType(dbtAccess);
        session.SetDBName(fileName);
        Design().CreateDB(session, true);
    }
    FillRows(fileName);
}

std::unique_ptr<TExTable> NewTable(TLargeTable &large)
{
    auto table = std::make_unique<TExTable>();
    table->SetDBDFile(&large.Design());
    table->SetDBSession(&large.Session());
    table->SetTable(LargeTableName);
    return table;
}

std::unique_ptr<TDBSession> ConnectTo(const QString &file)
{
    auto session = std::make_unique<TDBSession>();
    session->SetDBType(dbtAccess);
    session->SetDBName(file);
    session->SetConnected(true);
    return session;
}

} // namespace Bench
