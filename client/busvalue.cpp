// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/busvalue.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantList>
#include <QVariantMap>

namespace {

QVariant unwrapped(const QDBusArgument &argument);

QVariantMap mapOf(const QDBusArgument &argument)
{
    QVariantMap map;
    argument.beginMap();
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        const QString key = unwrapped(argument).toString();
        map.insert(key, unwrapped(argument));
        argument.endMapEntry();
    }
    argument.endMap();
    return map;
}

QVariantList elementsOf(const QDBusArgument &argument)
{
    QVariantList list;
    while (!argument.atEnd())
        list.append(unwrapped(argument));
    return list;
}

/** Takes one value off the argument. */
QVariant unwrapped(const QDBusArgument &argument)
{
    switch (argument.currentType()) {
    case QDBusArgument::MapType:
        return mapOf(argument);
    case QDBusArgument::ArrayType: {
        argument.beginArray();
        const QVariantList list = elementsOf(argument);
        argument.endArray();
        return list;
    }
    case QDBusArgument::StructureType: {
        argument.beginStructure();
        const QVariantList list = elementsOf(argument);
        argument.endStructure();
        return list;
    }
    default:
        return BusValue::plain(argument.asVariant());
    }
}

} // namespace

QVariant BusValue::plain(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return plain(value.value<QDBusVariant>().variant());
    return value.userType() == qMetaTypeId<QDBusArgument>() ? unwrapped(value.value<QDBusArgument>()) : value;
}
