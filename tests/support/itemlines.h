// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/** Items that a store is given, in one line for comparing: " +local=folder/server *folder/server -server". */
namespace ItemLines {

template <class Item>
QString of(const QList<Item> &added, const QList<Item> &changed, const QStringList &deleted)
{
    QString line;
    for (const Item &item : added)
        line += QStringLiteral(" +%1=%2/%3").arg(item.localId(), item.collectionId(), item.serverId());
    for (const Item &item : changed)
        line += QStringLiteral(" *%1/%2").arg(item.collectionId(), item.serverId());
    for (const QString &serverId : deleted)
        line += QStringLiteral(" -") + serverId;
    return line;
}

} // namespace ItemLines
