// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlFunctions.h"

#include "platform/core/FormatFloat.h"
#include "platform/data/LikePattern.h"
#include "platform/sql/dialect/SqlCall.h"

#include <charconv>
#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

struct TRegistered
{
    void (*Body)(TSqlCall &call);
    TSqlDialect Dialect;
};

/// NOTE: no exception may cross the engine's C frames.
void Invoke(sqlite3_context *context, int count, sqlite3_value **values)
{
    const auto *function = static_cast<const TRegistered *>(sqlite3_user_data(context));
    try {
        TSqlCall call(context, count, values, function->Dialect);
        function->Body(call);
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception &error) {
        sqlite3_result_error(context, error.what(), -1);
    } catch (...) {
        sqlite3_result_error(context, "SQL 函数出错", -1);
    }
}

void Register(sqlite3 *db, const TSqlFunction &function, int arguments, TSqlDialect dialect)
{
    auto data = std::make_unique<TRegistered>(TRegistered{function.Body, dialect});
    const int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS | (function.IsDeterministic ? SQLITE_DETERMINISTIC : 0);
    // NOTE: the engine destroys the data also when it refuses the function.
    const int code =
        sqlite3_create_function_v2(db, function.Name, arguments, flags, data.release(), &Invoke, nullptr,
                                   nullptr, [](void *p) { delete static_cast<TRegistered *>(p); });
    if (code != SQLITE_OK)
        throw ESqlError(QString::fromUtf8(sqlite3_errmsg(db)), code);
}

/// What a pattern means in a dialect; the third argument of like is the escape character.
TLikeSyntax LikeSyntax(TSqlCall &call)
{
    TLikeSyntax syntax{TLikeSyntax::AsciiBlind};
    syntax.Shell = call.Dialect == TSqlDialect::Access;
    syntax.Negation = syntax.Shell ? U'!' : U'^';
    std::string_view escape = call.Count() > 2 ? call.Text(2) : std::string_view();
    if (!escape.empty()) {
        syntax.Escape = NextCodePoint(escape);
        if (!escape.empty())
            throw ESqlError(QStringLiteral("ESCAPE 后只能有一个字符"));
    }
    return syntax;
}

void Like(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    auto *pattern = static_cast<TLikePattern *>(sqlite3_get_auxdata(call.Context(), 0));
    std::unique_ptr<TLikePattern> fresh;
    if (!pattern) {
        fresh = std::make_unique<TLikePattern>(call.Text(0), LikeSyntax(call));
        pattern = fresh.get();
    }
    call.SetInteger(pattern->Matches(call.Text(1)));
    if (!fresh)
        return;
    // A constant pattern is kept for the statement's other rows.
    sqlite3_set_auxdata(call.Context(), 0, fresh.release(),
                        [](void *p) { delete static_cast<TLikePattern *>(p); });
}

constexpr TSqlFunction LikeFunction{"like", 2, 3, true, &Like};

} // namespace

void RegisterSqlFunctions(sqlite3 *db, TSqlDialect dialect)
{
    const auto registerAll = [&](std::span<const TSqlFunction> functions) {
        for (const TSqlFunction &function : functions) {
            if (function.MaxArguments < 0)
                Register(db, function, -1, dialect);
            for (int count = function.MinArguments; count <= function.MaxArguments; ++count)
                Register(db, function, count, dialect);
        }
    };
    registerAll(SqlTextFunctions());
    registerAll(SqlNumberFunctions());
    registerAll(SqlDateFunctions());
    registerAll({&LikeFunction, 1});
}

bool TSqlCall::AnyNull() const
{
    for (int i = 0; i < FCount; ++i) {
        if (IsNull(i))
            return true;
    }
    return false;
}

std::string_view TSqlCall::Text(int i)
{
    if (Type(i) == SQLITE_FLOAT) {
        std::string &buffer = FBuffers[i % 4];
        buffer = GeneralNumber(sqlite3_value_double(FValues[i]));
        return buffer;
    }
    // NOTE: the text goes first: it decides the number of bytes.
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(FValues[i]));
    return text ? std::string_view(text, size_t(sqlite3_value_bytes(FValues[i]))) : std::string_view();
}

double TSqlCall::Number(int i)
{
    if (IsNumber(i))
        return sqlite3_value_double(FValues[i]);
    if (const auto number = ParseSqlNumber(Text(i)))
        return *number;
    throw ESqlError(u"“%1”不是数值"_s.arg(String(i).left(100)));
}

int TSqlCall::Position(int i) { return int(std::clamp(std::trunc(Number(i)), -2147483647.0, 2147483647.0)); }

void TSqlCall::SetText(std::string_view utf8)
{
    sqlite3_result_text64(FContext, utf8.data() ? utf8.data() : "", utf8.size(), SQLITE_TRANSIENT,
                          SQLITE_UTF8);
}

void TSqlCall::SetNumber(double value)
{
    if (std::isnan(value))
        return;
    if (std::abs(value) < 9e15 && value == std::trunc(value))
        SetInteger(qint64(value));
    else
        SetDouble(value);
}

void TSqlCall::SetBlob(std::string_view bytes)
{
    sqlite3_result_blob64(FContext, bytes.data() ? bytes.data() : "", bytes.size(), SQLITE_TRANSIENT);
}

std::optional<double> ParseSqlNumber(std::string_view text)
{
    while (!text.empty() && text.front() <= ' ' && text.front() >= 0)
        text.remove_prefix(1);
    while (!text.empty() && text.back() <= ' ' && text.back() >= 0)
        text.remove_suffix(1);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string GeneralNumber(double value)
{
    static const TFormatSettings settings;
    return FloatToStr(value, settings).toStdString();
}

} // namespace Korvane
