// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"

#include <QList>
#include <QStringList>

/** The folders of a stub store: keeps a line for each change that it gets, and answers as a test says. */
struct StubFolders
{
    bool update(QList<EasFolderItem> &added, const QList<EasFolderItem> &changed, const QStringList &deleted)
    {
        ++calls;
        for (EasFolderItem &item : added) {
            changes.append(QStringLiteral("+%1 %2 %3 %4")
                               .arg(item.serverId(), item.serverParentId(), item.displayName())
                               .arg(item.type()));
            if (accepts)
                item.setLocalId(QStringLiteral("local-") + item.serverId());
        }
        for (const EasFolderItem &item : changed)
            changes.append(
                QStringLiteral("*%1 %2 %3").arg(item.serverId(), item.serverParentId(), item.displayName()));
        for (const QString &serverId : deleted)
            changes.append(QLatin1Char('-') + serverId);
        return accepts;
    }

    bool accepts = true;
    int calls = 0;
    QStringList changes;
};
