// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Persistent.h"

#include <QMetaObject>
#include <QString>

#include <functional>
#include <memory>
#include <typeindex>

namespace Korvane {

/// What the registry knows of a class.
struct TClassInfo
{
    QString Name;
    const QMetaObject *Meta;
    std::type_index Type;
    std::function<std::unique_ptr<TPersistent>()> Create;
};

/// The class registered under a name, blind to the case of letters; null if there is none.
const TClassInfo *GetClass(const QString &name);
/// The same; raises EClassNotFound "没有找到类" and the name.
const TClassInfo &FindClass(const QString &name);
/// The entry of an object's own run-time class. Raises EClassNotFound when that class was
/// never registered: its properties would not be found.
const TClassInfo &ClassOf(const TPersistent &object);
/// Names of all registered classes, in order of registration.
QStringList RegisteredClasses();

void RegisterClass(TClassInfo info);
void UnRegisterClass(std::type_index type);
/// Another number after each class that comes or goes. What was worked out from a class holds
/// as long as this stays.
quint64 RegistryVersion();

/// The name of a class without its namespace.
QString ClassNameOf(const QMetaObject &meta);

/// Makes a class known by its name, so that objects of it can be made by name and their
/// properties reached. T derives from TPersistent and declares Q_GADGET. Registering a class
/// again changes nothing; another class of the same name takes its place.
template <class T> void RegisterClass()
{
    RegisterClass(TClassInfo{ClassNameOf(T::staticMetaObject), &T::staticMetaObject, typeid(T),
                             [] { return std::unique_ptr<TPersistent>(std::make_unique<T>()); }});
}

template <class T> void UnRegisterClass() { UnRegisterClass(std::type_index(typeid(T))); }

} // namespace Korvane
