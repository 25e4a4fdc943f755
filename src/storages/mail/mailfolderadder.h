// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QPair>
#include <QSet>
#include <QString>

#include <qmailid.h>

#include <memory>
#include <optional>

struct MailStoreContext;
class EasFolderItem;
class MailFolderChanges;
class QMailAccount;
class QMailFolder;

/**
 * Adds the new folders of one reply to the mail store, parents before their children.
 *
 * A folder that an interrupted run has added already, and of which the mapping knows nothing, is taken over:
 * it has the name and the parent. Lives on the stack of MailFolderAdapter; its time is linear in the reply
 * and the folders of the account.
 */
class MailFolderAdder
{
public:
    /** The map is that of the mapping before the reply; all of them have to outlive the adder. */
    MailFolderAdder(const MailStoreContext &context, MailFolderChanges &changes,
        const QMap<QString, QString> &serverToLocal);

    /** Orders the items and writes local identifiers into them; items of other kinds of folders are passed
     * over. */
    bool add(QMailAccount &account, QList<EasFolderItem> &items);
    /** Takes out of the store again what add() has put in. */
    void rollBack(QList<EasFolderItem> &items) const;

private:
    /** Parent and name of a folder. */
    using Place = QPair<quint64, QString>;

    void setParents(QList<EasFolderItem> &items) const;
    bool addItem(EasFolderItem &item);
    /** The folder of the store that the item is; invalid for none. */
    QMailFolderId present(const EasFolderItem &item);
    void findStrays();
    std::unique_ptr<QMailFolder> mailFolderOf(const EasFolderItem &item) const;
    bool commitStandardFolders(QMailAccount &account) const;

    const MailStoreContext &mContext;
    MailFolderChanges &mChanges;
    const QMap<QString, QString> &mServerToLocal;
    /** Folders of the store that the mapping does not know; read when the first is looked for. */
    std::optional<QMultiHash<Place, QMailFolderId>> mStrays;
    QSet<QMailFolderId> mAdopted;
};
