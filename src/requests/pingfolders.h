// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "easitems/easfolderitem.h"
#include "protocol/elements/pingfolderitem.h"

#include <QList>

class EasAccount;

/**
 * Which folders of an account's enabled services a Ping watches. A value on the stack; the account must
 * outlive it. Main thread only.
 */
class PingFolders
{
public:
    explicit PingFolders(EasAccount &account);

    /**
     * All folders that are synchronised, or, for a server that does not watch so many, one or two of each
     * service. Unread if one of the folders could not be read.
     */
    Lookup<QList<PingFolderItem>> getDefaultSynchronizedFolders(bool allFolders);

private:
    // Each of these is false if it could not read its folders.
    bool appendServices(bool allFolders);
    bool appendMail(bool allFolders);
    bool appendFirst(EasFolderItem::FolderType type, PingFolderItem::ClassId classId);
    bool appendAll(EasFolderItem::FolderType type, PingFolderItem::ClassId classId);
    void append(const QString &serverId, PingFolderItem::ClassId classId);

    EasAccount &mAccount;
    QList<PingFolderItem> mFolders;
};
