// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/exchangeactivesync.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

class EasAccount;
class FolderSyncCustomCommand;
class OptionsCommand;

/**
 * Finds out which protocol versions and commands an account's server offers: it asks with OPTIONS, or takes
 * what the account remembers of the last answer, or reads the headers of a FolderSync that is sent as 12.0.
 *
 * Belongs to the request that needs a version. Emits finished() once, or nothing after stop(). Main thread
 * only.
 */
class VersionNegotiator : public QObject
{
    Q_OBJECT

public:
    explicit VersionNegotiator(EasAccountId accountId, QObject *parent = nullptr);
    ~VersionNegotiator() override;

    void start();
    /** Gives up; the status is 10005 then. */
    void stop();

    /** Status of the last command that ended. */
    int status() const;
    /** In the server's order; unknown ones are left out. */
    QList<ExchangeActiveSync::ProtocolVersion> versions() const;
    /** As the server told them, or guessed. */
    QStringList supportedCommands() const;
    /** Gives the account its protocol version and commands out of what was found: the version that the user
     * prefers, or else the best one. Returns it; unknown if the server offers none that the engine speaks. */
    ExchangeActiveSync::ProtocolVersion settle(EasAccount &account) const;

Q_SIGNALS:
    void finished(bool success);

private Q_SLOTS:
    void onOptionsReady(bool success);
    void folderSyncReady(bool success);

private:
    EasAccount *account() const;
    bool takeCachedVersions();
    void takeCachedCommands();
    void startFolderSync();
    void updateSupportedVersions(const QString &versions, bool updateCache);
    void syncSupportedCommands(const QStringList &commands);

    EasAccountId mAccountId;
    qint32 mStatus = 0;
    QList<ExchangeActiveSync::ProtocolVersion> mVersions;
    QStringList mSupportedCommands;
    QPointer<OptionsCommand> mOptionsCommand;
    QPointer<FolderSyncCustomCommand> mFolderSyncCommand;
};
