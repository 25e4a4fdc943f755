// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

/** The mapping's rows of one contact folder, as read at one moment. A server may use an identifier of one
 * folder in another folder again, so rows are never looked up without their folder. */
class ContactFolderRows
{
public:
    /** Nothing if the mapping could not be read. */
    static std::optional<ContactFolderRows> read(EasAccountId accountId, const QString &folderServerId);

    bool hasLocalId(const QString &localId) const { return mLocalToServer.contains(localId); }
    bool hasServerId(const QString &serverId) const { return mServerToLocal.contains(serverId); }
    /** Empty without such a row. */
    QString localId(const QString &serverId) const { return mServerToLocal.value(serverId); }
    QString serverId(const QString &localId) const { return mLocalToServer.value(localId); }
    QStringList localIds() const { return mLocalToServer.keys(); }

    /** The picture that came with the contact. */
    QUrl avatar(const QString &localId) const { return mAvatars.value(localId); }

    void insert(const QString &serverId, const QString &localId, const QUrl &avatar = QUrl());

private:
    QMap<QString, QString> mLocalToServer;
    QMap<QString, QString> mServerToLocal;
    QMap<QString, QUrl> mAvatars;
};
