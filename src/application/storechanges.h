// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QStringList>

class EasAccount;

/** Tells of what the user has changed in any store of one account. Owned by the AlwaysOnManager, main thread
 * only. */
class StoreChanges : public QObject
{
    Q_OBJECT

public:
    explicit StoreChanges(QObject *parent = nullptr);

    /** Listens to the stores that the account has now; again whenever they may have changed. */
    void watch(EasAccount &account);

Q_SIGNALS:
    /** Local identifiers of folders. */
    void changed(const QStringList &localFolderIds);
};
