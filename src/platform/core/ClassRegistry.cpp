// SPDX-License-Identifier: MIT
#include "platform/core/ClassRegistry.h"

#include "platform/core/Exceptions.h"

#include <QHash>
#include <QStringList>

#include <cxxabi.h>

#include <cstdlib>
#include <list>
#include <typeinfo>
#include <unordered_map>

namespace Korvane {

namespace {

/// Entries stay where they are as long as they are registered, so that references and
/// pointers to them can be kept.
struct TRegistry
{
    std::list<TClassInfo> Classes;
    QHash<QString, const TClassInfo *> ByName; // key in lower case
    std::unordered_map<std::type_index, const TClassInfo *> ByType;
    quint64 Version = 0;

    void Remove(const TClassInfo *info)
    {
        ++Version;
        if (ByName.value(info->Name.toLower()) == info)
            ByName.remove(info->Name.toLower());
        ByType.erase(info->Type);
        Classes.remove_if([info](const TClassInfo &entry) { return &entry == info; });
    }
};

/// A type's name as it stands in the source.
QString ReadableName(const std::type_info &type)
{
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), &std::free);
    const QString text = QString::fromUtf8(name ? name.get() : type.name());
    return text.mid(text.lastIndexOf(QLatin1Char(':')) + 1);
}

TRegistry &Registry()
{
    static TRegistry registry;
    return registry;
}

} // namespace

const TClassInfo *GetClass(const QString &name) { return Registry().ByName.value(name.toLower()); }

const TClassInfo &FindClass(const QString &name)
{
    if (const TClassInfo *info = GetClass(name))
        return *info;
    throw EClassNotFound(QStringLiteral("没有找到类") + name);
}

const TClassInfo &ClassOf(const TPersistent &object)
{
    const auto &byType = Registry().ByType;
    const auto found = byType.find(std::type_index(typeid(object)));
    if (found == byType.end())
        throw EClassNotFound(QStringLiteral("没有找到类") + ReadableName(typeid(object)));
    return *found->second;
}

QStringList RegisteredClasses()
{
    QStringList names;
    for (const TClassInfo &info : Registry().Classes)
        names.append(info.Name);
    return names;
}

void RegisterClass(TClassInfo info)
{
    TRegistry &registry = Registry();
    const TClassInfo *known = GetClass(info.Name);
    if (known && known->Type == info.Type)
        return;
    if (known)
        registry.Remove(known);
    ++registry.Version;
    registry.Classes.push_back(std::move(info));
    const TClassInfo *added = &registry.Classes.back();
    registry.ByName.insert(added->Name.toLower(), added);
    registry.ByType.insert_or_assign(added->Type, added);
}

void UnRegisterClass(std::type_index type)
{
    TRegistry &registry = Registry();
    const auto found = registry.ByType.find(type);
    if (found != registry.ByType.end())
        registry.Remove(found->second);
}

quint64 RegistryVersion() { return Registry().Version; }

QString ClassNameOf(const QMetaObject &meta)
{
    const QString name = QString::fromLatin1(meta.className());
    return name.mid(name.lastIndexOf(QLatin1Char(':')) + 1);
}

} // namespace Korvane
