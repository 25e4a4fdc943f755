// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/account/easaccount.h"
#include "configurations/connectionaccountconfiguration.h"

#include <functional>

/** A connection that lives in memory. */
class FakeConnection : public ConnectionAccountConfiguration
{
public:
    explicit FakeConnection(EasAccountId id)
        : ConnectionAccountConfiguration(id, nullptr)
    {
    }

    bool acceptAllCertificates() const override { return acceptAll; }
    bool secureConnection() const override { return secure; }
    void setSecureConnection(bool value) override { secure = value; }
    int portNumber() const override { return port; }
    void setPortNumber(int value) override { port = value; }
    QString serverAddress() const override { return address; }
    void setServerAddress(const QString &value) override { address = value; }
    QString domainName() const override { return domain; }
    QString userCertificatePath() const override { return certificatePath; }

    bool acceptAll = false;
    bool secure = false;
    int port = 0;
    QString address = QStringLiteral("127.0.0.1");
    QString domain;
    QString certificatePath;
};

/**
 * An account that lives in memory: everything that the platform would bind is a member to set, and what the
 * engine tells it is counted.
 */
class FakeAccount : public EasAccount
{
public:
    explicit FakeAccount(EasAccountId id, QObject *parent = nullptr)
        : EasAccount(id, parent)
        , connection(new FakeConnection(id))
    {
    }

    /** Knows a version and these commands, so that requests need no negotiation. */
    void negotiated(const QStringList &commands)
    {
        setProtocolVersion(ExchangeActiveSync::ProtocolVersion141);
        setSupportedCommands(commands);
    }
    /** Its password is on its way, or has come. */
    void setReady(bool isReady)
    {
        ready = isReady;
        Q_EMIT readyChanged();
    }

    bool isReady() const override { return ready; }
    bool enabled() const override { return isEnabled; }
    QString userName() const override { return user; }
    QString password() const override { return secret; }
    QString serverAddress() const override { return connection ? connection->address : QString(); }
    int serverConflictPolicy() const override { return conflictPolicy; }
    QString sslCertificatePassword() const override { return certificateSecret; }
    QSharedPointer<CalendarAccountConfiguration> calendarConfiguration() const override { return calendar; }
    QSharedPointer<ContactsAccountConfiguration> contactsConfiguration() const override { return contacts; }
    QSharedPointer<EmailAccountConfiguration> emailConfiguration() const override { return email; }
    QSharedPointer<ScheduleAccountConfiguration> scheduleConfiguration() const override { return schedule; }
    QSharedPointer<ConnectionAccountConfiguration> connectionConfiguration() const override
    {
        return connection;
    }
    QSharedPointer<MailStorage> mailStorage() const override { return mails; }
    QSharedPointer<CalendarStorage> calendarStorage() const override { return events; }
    QSharedPointer<ContactStorage> contactStorage() override { return people; }
    ExchangeActiveSync::ProtocolVersion preferredProtocolVersion() const override { return preferredVersion; }
    QString policyKey() const override { return policy; }
    void setPolicyKey(const QString &key) override { policy = key; }
    bool firstSyncCompleted() const override { return firstSyncDone; }
    void setFirstSyncCompleted(bool completed) override { firstSyncDone = completed; }
    QStringList lastKnownVersions() const override { return knownVersions; }
    void setLastKnownVersions(const QStringList &versions) override { knownVersions = versions; }
    QStringList lastKnownSupportedCommands() const override { return knownCommands; }
    void setLastKnownSupportedCommands(const QStringList &commands) override { knownCommands = commands; }
    ProvisionManager *provisionManager() override { return provisions; }
    bool remoteWipeRequested() override
    {
        ++wipeRequests;
        if (recordsWipe) {
            wipeOrdered = true;
            Q_EMIT remoteWipeOrdered(id());
        }
        return recordsWipe;
    }
    void remoteWipeAcknowledged() override { ++wipeAcknowledgements; }
    bool isRemoteWipeRequested() const override { return wipeOrdered; }
    void credentialsNeedUpdate() override { ++blocks; }
    bool isCredentialsNeedUpdate() override { return blocked || blocks > 0; }
    void setAlwaysOn(bool on) override
    {
        alwaysOnSwitch = on;
        EasAccount::setAlwaysOn(on);
    }
    void onAuthenticationFailedError() override
    {
        ++refusals;
        if (whenRefused)
            whenRefused();
    }

    bool ready = true;
    bool isEnabled = true;
    bool alwaysOnSwitch = false;
    /** Its credentials were refused before the test began. */
    bool blocked = false;
    QString user = QStringLiteral("alice");
    QString secret = QStringLiteral("s3cret");
    QString certificateSecret;
    int conflictPolicy = 1;
    QString policy;
    bool firstSyncDone = false;
    QStringList knownVersions;
    QStringList knownCommands;
    ExchangeActiveSync::ProtocolVersion preferredVersion = ExchangeActiveSync::ProtocolVersionUnknown;
    QSharedPointer<FakeConnection> connection;
    QSharedPointer<CalendarAccountConfiguration> calendar;
    QSharedPointer<ContactsAccountConfiguration> contacts;
    QSharedPointer<EmailAccountConfiguration> email;
    QSharedPointer<ScheduleAccountConfiguration> schedule;
    QSharedPointer<MailStorage> mails;
    QSharedPointer<CalendarStorage> events;
    QSharedPointer<ContactStorage> people;

    int wipeRequests = 0;
    int wipeAcknowledgements = 0;
    bool recordsWipe = true;
    bool wipeOrdered = false;
    ProvisionManager *provisions = nullptr;
    /** How often the credentials were marked as refused. */
    int blocks = 0;
    /** How often a server refused the credentials. */
    int refusals = 0;
    std::function<void()> whenRefused;
};
