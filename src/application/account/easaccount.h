// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/exchangeactivesync.h"

#include <QDateTime>
#include <QObject>
#include <QSharedPointer>
#include <QStringList>

#include <array>

class AlwaysOnManager;
class CalendarAccountConfiguration;
class CalendarStorage;
class ConnectionAccountConfiguration;
class ContactsAccountConfiguration;
class ContactStorage;
class EmailAccountConfiguration;
class MailStorage;
class ProvisionManager;
class ScheduleAccountConfiguration;

/**
 * One Exchange account as requests, commands and stores see it.
 *
 * The base keeps what lives only as long as the daemon: the negotiated version, the supported commands, the
 * heartbeat, the cookie of the basic authentication, the always-on switch. Everything that stands in the
 * platform's account record, and the stores, come from the binding.
 *
 * Account objects belong to AccountStorage. A request asks for its account each time it needs it and expects
 * null; it holds configurations and stores, which are shared pointers that may be null, only for the length
 * of a call. Main thread only.
 */
class EasAccount : public QObject
{
    Q_OBJECT

public:
    /** Whose last synchronisation a time is. These are not the bits of the syncService call. */
    enum ServiceFlag { ContactsService = 1, CalendarService = 2, EmailService = 4 };
    Q_DECLARE_FLAGS(Service, ServiceFlag)
    Q_FLAG(Service)

    EasAccount(EasAccountId id, QObject *parent);
    ~EasAccount() override;

    /** The version as URLs, headers and the account record have it; empty for an unknown one. */
    static QByteArray encodedProtocolVersion(ExchangeActiveSync::ProtocolVersion version);
    static ExchangeActiveSync::ProtocolVersion toProtocolVersion(const QByteArray &text);

    EasAccountId id() const;
    void setId(EasAccountId id);

    /** Null until the account was switched to always-on for the first time. */
    AlwaysOnManager *alwaysOnManager() const;

    /** The encoded form of protocolVersion(). */
    QByteArray encodedProtocolVersion() const;

    /** Builds the cookie anew from the present credentials; nothing else does. */
    void refreshAuthenticationCache();
    void clearAuthenticationCache();

    virtual bool alwaysOn() const;
    virtual void setAlwaysOn(bool on);
    virtual bool enabled() const = 0;
    virtual QString userName() const = 0;
    virtual QString password() const = 0;
    /** Base64 of the basic credentials. A secret like the password itself. */
    virtual QByteArray authenticationBasicCookie() const;
    virtual QString serverAddress() const = 0;
    virtual int serverConflictPolicy() const = 0;
    virtual QString sslCertificatePassword() const = 0;
    virtual QSharedPointer<CalendarAccountConfiguration> calendarConfiguration() const = 0;
    virtual QSharedPointer<ContactsAccountConfiguration> contactsConfiguration() const = 0;
    virtual QSharedPointer<EmailAccountConfiguration> emailConfiguration() const = 0;
    virtual QSharedPointer<ScheduleAccountConfiguration> scheduleConfiguration() const = 0;
    virtual QSharedPointer<ConnectionAccountConfiguration> connectionConfiguration() const = 0;
    /** Null while the account's mail service is disabled. */
    virtual QSharedPointer<MailStorage> mailStorage() const = 0;
    virtual QSharedPointer<CalendarStorage> calendarStorage() const = 0;
    /** Created at the first call. */
    virtual QSharedPointer<ContactStorage> contactStorage() = 0;
    virtual QString deviceId() const;
    virtual QString deviceType() const;
    virtual ExchangeActiveSync::ProtocolVersion protocolVersion() const;
    virtual void setProtocolVersion(ExchangeActiveSync::ProtocolVersion version);
    /** The version that the user chose; ProtocolVersionUnknown lets the negotiation choose. */
    virtual ExchangeActiveSync::ProtocolVersion preferredProtocolVersion() const = 0;
    virtual const QStringList &supportedCommands() const;
    virtual void setSupportedCommands(const QStringList &commands);
    virtual bool commandIsSupported(const QString &command);
    virtual QString policyKey() const = 0;
    virtual void setPolicyKey(const QString &policyKey) = 0;
    /** The time of one service; invalid for a combination of flags. */
    virtual QDateTime lastSyncTime(Service service) const;
    /** Sets the time of every service in the flags. */
    virtual void setLastSyncTime(Service services, const QDateTime &time);
    /** Seconds. */
    virtual int heartbeatInterval() const;
    virtual void setHeartbeatInterval(int seconds);
    virtual bool firstSyncCompleted() const = 0;
    virtual void setFirstSyncCompleted(bool completed) = 0;
    /** Versions and commands of the last OPTIONS reply, kept across restarts. */
    virtual QStringList lastKnownVersions() const = 0;
    virtual void setLastKnownVersions(const QStringList &versions) = 0;
    virtual QStringList lastKnownSupportedCommands() const = 0;
    virtual void setLastKnownSupportedCommands(const QStringList &commands) = 0;
    /** Made at the first call. */
    virtual ProvisionManager *provisionManager() = 0;
    /**
     * The server orders that the account be wiped. False if the order could not be written down: then nothing
     * happens, and the acknowledgement has to say so. Otherwise no store can be reached from here on, every
     * request ends with RequestStatusWipeAcknowledged, no command but Provision is sent, and the wipe begins
     * after remoteWipeAcknowledged(), or by itself after ten seconds.
     */
    virtual bool remoteWipeRequested() = 0;
    /** The exchange that acknowledges the order is over, however it ended. */
    virtual void remoteWipeAcknowledged() = 0;
    /** Whether a wipe was ordered, now or before a restart. */
    virtual bool isRemoteWipeRequested() const = 0;
    /** False while credentials are being fetched. */
    virtual bool isReady() const;
    /** Marks the credentials as refused: the account is blocked until the user enters new ones. */
    virtual void credentialsNeedUpdate() = 0;
    virtual bool isCredentialsNeedUpdate() = 0;

public Q_SLOTS:
    /** A server refused the present credentials; they may have changed since they were fetched. */
    virtual void onAuthenticationFailedError() = 0;

Q_SIGNALS:
    void credentialsChanged(EasAccountId accountId);
    void sslCertificateCredentialsChanged(EasAccountId accountId);
    void calendarConfigurationChanged(EasAccountId accountId);
    void contactsConfigurationChanged(EasAccountId accountId);
    void connectionConfigurationChanged(EasAccountId accountId);
    void emailConfigurationChanged(EasAccountId accountId);
    void scheduleConfigurationChanged(EasAccountId accountId);
    void readyChanged();
    /** The order to wipe the account has been written down; its acknowledgement is to follow. */
    void remoteWipeOrdered(EasAccountId accountId);
    /** The wipe itself begins, whatever still runs. */
    void remoteWipeBegun(EasAccountId accountId);

private Q_SLOTS:
    void onAccountConfigChanged(qulonglong accountId);

private:
    int mHeartbeatInterval = 300;
    bool mAlwaysOn = false;
    EasAccountId mId;
    std::array<QDateTime, 3> mLastSyncTimes;
    ExchangeActiveSync::ProtocolVersion mProtocolVersion = ExchangeActiveSync::ProtocolVersionUnknown;
    AlwaysOnManager *mAlwaysOnManager = nullptr;
    QStringList mSupportedCommands;
    QByteArray mAuthenticationBasicCookie;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(EasAccount::Service)
