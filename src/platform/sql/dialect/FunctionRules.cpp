// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/FunctionRules.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr quint8 Access = 1;
constexpr quint8 Mssql = 2;
constexpr quint8 Both = 3;
constexpr auto Unknown = TSqlValueKind::Unknown;
constexpr auto Text = TSqlValueKind::Text;
constexpr auto Number = TSqlValueKind::Number;
constexpr auto Whole = TSqlValueKind::Whole;

constexpr TFunctionRule Rules[] = {
    {"left"_L1, Both, 2, 2, "korvane_left"_L1, Text},
    {"right"_L1, Both, 2, 2, "korvane_right"_L1, Text},
    {"len"_L1, Both, 1, 1, "korvane_len"_L1, Whole},
    {"mid"_L1, Access, 2, 3, "korvane_mid"_L1, Text},
    {"substring"_L1, Mssql, 3, 3, "korvane_mid"_L1, Text},
    {"instr"_L1, Access, 2, 4, "korvane_instr"_L1, Whole},
    {"charindex"_L1, Mssql, 2, 3, "korvane_charindex"_L1, Whole},
    {"ucase"_L1, Access, 1, 1, "upper"_L1, Text},
    {"lcase"_L1, Access, 1, 1, "lower"_L1, Text},
    {"upper"_L1, Both, 1, 1, {}, Text},
    {"lower"_L1, Both, 1, 1, {}, Text},
    {"trim"_L1, Both, 1, 1, {}, Text},
    {"ltrim"_L1, Both, 1, 1, {}, Text},
    {"rtrim"_L1, Both, 1, 1, {}, Text},
    {"replace"_L1, Both, 3, 3, {}, Text},
    {"space"_L1, Both, 1, 1, "korvane_space"_L1, Text},
    {"string"_L1, Access, 2, 2, "korvane_string"_L1, Text},
    {"replicate"_L1, Mssql, 2, 2, "korvane_replicate"_L1, Text},
    {"chr"_L1, Access, 1, 1, "char"_L1, Text},
    {"char"_L1, Mssql, 1, 1, {}, Text},
    {"nchar"_L1, Mssql, 1, 1, "char"_L1, Text},
    {"asc"_L1, Access, 1, 1, "unicode"_L1, Whole},
    {"ascii"_L1, Mssql, 1, 1, "unicode"_L1, Whole},

    {"isnull"_L1, Access, 1, 1, {}, TSqlValueKind::Logic, TFunctionCase::NullTest},
    {"isnull"_L1, Mssql, 2, 2, "ifnull"_L1, Unknown},
    {"nz"_L1, Access, 1, 2, "ifnull"_L1, Unknown, TFunctionCase::Default},
    {"iif"_L1, Both, 3, 3, {}, Unknown},

    {"cstr"_L1, Access, 1, 1, "korvane_text"_L1, Text},
    {"str"_L1, Access, 1, 1, "korvane_str"_L1, Text},
    {"str"_L1, Mssql, 1, 3, "korvane_str"_L1, Text},
    {"cbyte"_L1, Access, 1, 1, "korvane_whole"_L1, Whole},
    {"cint"_L1, Access, 1, 1, "korvane_whole"_L1, Whole},
    {"clng"_L1, Access, 1, 1, "korvane_whole"_L1, Whole},
    {"csng"_L1, Access, 1, 1, "korvane_number"_L1, Number},
    {"cdbl"_L1, Access, 1, 1, "korvane_number"_L1, Number},
    {"cdec"_L1, Access, 1, 1, "korvane_number"_L1, Number},
    {"ccur"_L1, Access, 1, 1, "korvane_currency"_L1, Number},
    {"cbool"_L1, Access, 1, 1, "korvane_flag"_L1, Text},
    {"cdate"_L1, Access, 1, 1, "korvane_moment"_L1, Text},
    {"cvdate"_L1, Access, 1, 1, "korvane_moment"_L1, Text},
    {"datevalue"_L1, Access, 1, 1, "korvane_day"_L1, Text},
    {"val"_L1, Access, 1, 1, "korvane_val"_L1, Number},
    {"int"_L1, Access, 1, 1, "korvane_int"_L1, Whole},
    {"fix"_L1, Access, 1, 1, "korvane_fix"_L1, Whole},
    {"abs"_L1, Both, 1, 1, {}, Number},
    {"round"_L1, Both, 1, 3, "korvane_round"_L1, Number},
    {"sgn"_L1, Access, 1, 1, "sign"_L1, Whole},
    {"sqr"_L1, Access, 1, 1, "sqrt"_L1, Number},
    {"power"_L1, Mssql, 2, 2, "korvane_power"_L1, Number},
    {"isnumeric"_L1, Both, 1, 1, "korvane_isnumeric"_L1, Whole},
    {"format"_L1, Access, 1, 2, "korvane_format"_L1, Text},

    {"now"_L1, Access, 0, 0, "korvane_now"_L1, Text},
    {"date"_L1, Access, 0, 0, "korvane_date"_L1, Text, TFunctionCase::Clock},
    {"time"_L1, Access, 0, 0, "korvane_time"_L1, Text, TFunctionCase::Clock},
    {"getdate"_L1, Mssql, 0, 0, "korvane_now"_L1, Text},
    {"getutcdate"_L1, Mssql, 0, 0, "korvane_utcnow"_L1, Text},
    {"newid"_L1, Mssql, 0, 0, "korvane_newid"_L1, Text},
    {"scope_identity"_L1, Mssql, 0, 0, "last_insert_rowid"_L1, Whole},
    {"year"_L1, Both, 1, 1, "korvane_year"_L1, Whole},
    {"month"_L1, Both, 1, 1, "korvane_month"_L1, Whole},
    {"day"_L1, Both, 1, 1, "korvane_dayofmonth"_L1, Whole},
    {"hour"_L1, Access, 1, 1, "korvane_hour"_L1, Whole},
    {"minute"_L1, Access, 1, 1, "korvane_minute"_L1, Whole},
    {"second"_L1, Access, 1, 1, "korvane_second"_L1, Whole},
    {"weekday"_L1, Access, 1, 1, "korvane_weekday"_L1, Whole},
    {"dateserial"_L1, Access, 3, 3, "korvane_dateserial"_L1, Text},
    {"datepart"_L1, Both, 2, 2, "korvane_datepart"_L1, Whole, TFunctionCase::Part},
    {"dateadd"_L1, Both, 3, 3, "korvane_dateadd"_L1, Text, TFunctionCase::Part},
    {"datediff"_L1, Both, 3, 3, "korvane_datediff"_L1, Whole, TFunctionCase::Part},

    {"count"_L1, Both, 1, 1, {}, Whole},
    {"sum"_L1, Both, 1, 1, {}, Number},
    {"avg"_L1, Both, 1, 1, {}, Number},
};

} // namespace

const TFunctionRule *FindFunctionRule(QStringView name, TSqlDialect dialect)
{
    using TRuleMap = QHash<QString, const TFunctionRule *>;
    static const std::array<TRuleMap, 2> maps = [] {
        std::array<TRuleMap, 2> result;
        for (const TFunctionRule &rule : Rules) {
            if (rule.Dialects & Access)
                result[0].insert(rule.Name, &rule);
            if (rule.Dialects & Mssql)
                result[1].insert(rule.Name, &rule);
        }
        return result;
    }();
    return maps[dialect == TSqlDialect::Access ? 0 : 1].value(name.toString().toLower());
}

} // namespace Korvane
