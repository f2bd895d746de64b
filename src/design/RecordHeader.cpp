// SPDX-License-Identifier: MIT
#include "design/RecordHeader.h"

#include "design/DBDQuery.h"
#include "platform/core/Exceptions.h"

#include <QSet>

#include <algorithm>

namespace Korvane {

namespace {

/// With the words that Qt makes keywords of, where they are not turned off, and the type that
/// the generated text itself needs.
const QSet<QString> &Keywords()
{
    static const QStringList words =
        QStringLiteral(
            "alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t char32_t "
            "char8_t class co_await co_return co_yield compl concept const const_cast consteval constexpr "
            "constinit continue decltype default delete do double dynamic_cast else enum explicit export "
            "extern false float for friend goto if inline int long mutable namespace new noexcept not not_eq "
            "nullptr operator or or_eq private protected public register reinterpret_cast requires return "
            "short signed sizeof static static_assert static_cast struct switch template this thread_local "
            "throw true try typedef typeid typename union unsigned using virtual void volatile wchar_t while "
            "xor xor_eq emit foreach forever signals slots QString")
            .split(u' ');
    static const QSet<QString> keywords(words.begin(), words.end());
    return keywords;
}

/// The members that each record class has from TDBObject and from its Q_GADGET.
bool IsInherited(const QString &name)
{
    for (const char *member : {"KeyValues", "GetClassProperties", "Clear", "staticMetaObject",
                               "qt_static_metacall", "QtGadgetHelper", "qt_check_for_QGADGET_macro"})
        if (name == QLatin1StringView(member))
            return true;
    return false;
}

bool IsLetter(QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

/// An identifier in ASCII that is not reserved for the compiler.
bool IsIdentifier(const QString &name)
{
    const auto belongs = [](QChar c) { return IsLetter(c) || (c >= u'0' && c <= u'9') || c == u'_'; };
    return !name.isEmpty() && IsLetter(name.front()) && std::all_of(name.begin(), name.end(), belongs) &&
           !name.contains(QLatin1StringView("__"));
}

/// What is wrong with a name; empty if nothing is.
QString FaultOf(const QString &name)
{
    if (name.isEmpty())
        return QStringLiteral("是空的");
    if (!IsIdentifier(name))
        return QStringLiteral("不是合法的 C++ 标识符");
    if (Keywords().contains(name))
        return QStringLiteral("是 C++ 或 Qt 的保留字");
    return {};
}

QString TypeOf(const TFieldsObject &field)
{
    switch (GetDataType(field.FieldType)) {
    case dtInt:
    case dtSmallint:
        return QStringLiteral("int");
    case dtDecimal:
    case dtFloat:
        return QStringLiteral("double");
    case dtBoolean:
        return QStringLiteral("bool");
    default:
        return QStringLiteral("QString");
    }
}

QString InitialValueOf(const QString &type)
{
    if (type == QLatin1StringView("QString"))
        return {};
    return type == QLatin1StringView("bool") ? QStringLiteral(" = false") : QStringLiteral(" = 0");
}

/// A text for the end of a line: in one line, and with no "\" that would carry it on.
QString CommentText(const QString &text)
{
    QString comment = text.simplified();
    if (comment.endsWith(u'\\'))
        comment += u'.';
    return comment;
}

/// The definition as a message names it.
QString Described(const TRecordClass &recordClass)
{
    return recordClass.Comment.isEmpty()
               ? QStringLiteral("类“%1”").arg(recordClass.Name)
               : QStringLiteral("类“%1”（%2）").arg(recordClass.Name, recordClass.Comment);
}

[[noreturn]] void RaiseProperty(const TRecordClass &recordClass, const TFieldsObject &field,
                                const QString &fault)
{
    throw Exception(QStringLiteral("不能生成%1：栏位 %2 的属性名“%3”%4")
                        .arg(Described(recordClass), field.FieldCode, field.FieldProp, fault));
}

void CheckProperties(const TRecordClass &recordClass)
{
    QSet<QString> names;
    for (const auto &field : recordClass.Fields) {
        const QString &name = field->FieldProp;
        if (const QString fault = FaultOf(name); !fault.isEmpty())
            RaiseProperty(recordClass, *field, fault);
        if (IsInherited(name))
            RaiseProperty(recordClass, *field, QStringLiteral("是 TDBObject 的成员"));
        if (name == recordClass.Name)
            RaiseProperty(recordClass, *field, QStringLiteral("就是类名"));
        // Properties are found blind to case.
        if (names.contains(name.toLower()))
            RaiseProperty(recordClass, *field, QStringLiteral("重复（不分大小写）"));
        names.insert(name.toLower());
    }
}

void CheckClass(const TRecordClass &recordClass)
{
    if (const QString fault = FaultOf(recordClass.Name); !fault.isEmpty())
        throw Exception(QStringLiteral("不能生成%1：类名%2").arg(Described(recordClass), fault));
    // A class registered by the name of one of the library's would take its place.
    const TClassInfo *known = GetClass(recordClass.Name);
    if (known && QLatin1StringView(known->Meta->className()) == QLatin1StringView("Korvane::") + known->Name)
        throw Exception(QStringLiteral("不能生成%1：类名与系统的类重名").arg(Described(recordClass)));
    CheckProperties(recordClass);
}

bool HaveSameProperties(const TRecordClass &left, const TRecordClass &right)
{
    return std::equal(left.Fields.begin(), left.Fields.end(), right.Fields.begin(), right.Fields.end(),
                      [](const auto &one, const auto &other) {
                          return one->FieldProp == other->FieldProp && TypeOf(*one) == TypeOf(*other);
                      });
}

/// The classes to write, checked.
QList<TRecordClass> DistinctClasses(const QList<TRecordClass> &classes)
{
    QList<TRecordClass> distinct;
    for (const TRecordClass &recordClass : classes) {
        CheckClass(recordClass);
        const auto known = std::find_if(distinct.begin(), distinct.end(), [&](const TRecordClass &other) {
            return other.Name.compare(recordClass.Name, Qt::CaseInsensitive) == 0;
        });
        if (known == distinct.end())
            distinct.append(recordClass);
        else if (known->Name != recordClass.Name)
            throw Exception(QStringLiteral("不能生成%1：与%2只有大小写不同")
                                .arg(Described(recordClass), Described(*known)));
        else if (!HaveSameProperties(*known, recordClass))
            throw Exception(QStringLiteral("不能生成%1：与%2同名而栏位不同")
                                .arg(Described(recordClass), Described(*known)));
    }
    return distinct;
}

QString ClassTextOf(const TRecordClass &recordClass)
{
    QString properties, members;
    for (const auto &field : recordClass.Fields) {
        const QString type = TypeOf(*field);
        const QString comment = CommentText(field->FieldName);
        properties += QStringLiteral("    Q_PROPERTY(%1 %2 MEMBER %2)\n").arg(type, field->FieldProp);
        members += QStringLiteral("    %1 %2%3;").arg(type, field->FieldProp, InitialValueOf(type)) +
                   (comment.isEmpty() ? QString() : QStringLiteral(" ///< ") + comment) + u'\n';
    }
    const QString comment = CommentText(recordClass.Comment);
    return (comment.isEmpty() ? QString() : QStringLiteral("/// ") + comment + u'\n') +
           QStringLiteral("class %1 : public Korvane::TDBObject\n"
                          "{\n"
                          "    Q_GADGET\n")
               .arg(recordClass.Name) +
           properties + QStringLiteral("\npublic:\n") + members +
           QStringLiteral("};\n"
                          "inline const bool %1Registered = (Korvane::RegisterClass<%1>(), true);\n")
               .arg(recordClass.Name);
}

void CheckNameSpace(const QString &nameSpace)
{
    for (const QString &part : nameSpace.split(QStringLiteral("::")))
        if (const QString fault = FaultOf(part); !fault.isEmpty())
            throw Exception(QStringLiteral("名字空间“%1”%2").arg(nameSpace, fault));
}

} // namespace

TRecordClass RecordClassOf(const TDBDTable &definition)
{
    const TTablesObject &table = *definition.TableObject();
    return {table.TableClass, QStringLiteral("%1 %2").arg(table.TableCode, table.TableName).trimmed(),
            definition.TableFields()};
}

TRecordClass RecordClassOf(const TDBDQuery &definition)
{
    const TQuerysObject &query = *definition.QueryObject();
    return {query.QueryClass, QStringLiteral("%1 %2").arg(query.QueryCode, query.QueryName).trimmed(),
            definition.QueryFields()};
}

QString RecordHeaderText(const QList<TRecordClass> &classes, const QString &origin, const QString &nameSpace)
{
    if (!nameSpace.isEmpty())
        CheckNameSpace(nameSpace);
    QStringList texts;
    for (const TRecordClass &recordClass : DistinctClasses(classes))
        texts.append(ClassTextOf(recordClass));
    QString text = texts.join(u'\n');
    if (!nameSpace.isEmpty())
        text = QStringLiteral("namespace ") + nameSpace + QStringLiteral(" {\n\n") + text +
               QStringLiteral("\n} // namespace ") + nameSpace + u'\n';
    return QStringLiteral("// Generated by korvane class --cpp from %1; do not edit.\n"
                          "#pragma once\n"
                          "\n"
                          "#include <Korvane/DBObject.h>\n"
                          "\n")
               .arg(CommentText(origin)) +
           text;
}

} // namespace Korvane
