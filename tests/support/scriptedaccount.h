// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/account/easaccount.h"
#include "configurations/connectionaccountconfiguration.h"

/** A connection whose settings are its fields. */
class ScriptedConnection : public ConnectionAccountConfiguration
{
public:
    explicit ScriptedConnection(EasAccountId id);
    ~ScriptedConnection() override;

    bool acceptAllCertificates() const override { return acceptsAll; }
    bool secureConnection() const override { return secure; }
    void setSecureConnection(bool on) override { secure = on; }
    int portNumber() const override { return port; }
    void setPortNumber(int number) override { port = number; }
    QString serverAddress() const override { return address; }
    void setServerAddress(const QString &text) override { address = text; }
    QString domainName() const override { return domain; }
    QString userCertificatePath() const override { return certificatePath; }

    bool acceptsAll = false;
    bool secure = false;
    int port = 0;
    QString address = QStringLiteral("127.0.0.1");
    QString domain;
    QString certificatePath;
};

/** An account whose record is its fields, and which counts what the engine tells it. */
class ScriptedAccount : public EasAccount
{
    Q_OBJECT

public:
    explicit ScriptedAccount(EasAccountId id, QObject *parent = nullptr);
    ~ScriptedAccount() override;

    /** Knows a version and these commands, so that requests need no negotiation. */
    void negotiated(const QStringList &commands);

    /** Its password is on its way, or has come. */
    void setReady(bool isReady);

    bool isReady() const override { return ready; }
    bool enabled() const override { return isEnabled; }
    QString userName() const override { return user; }
    QString password() const override { return QStringLiteral("s3cret"); }
    QString serverAddress() const override { return connection ? connection->address : QString(); }
    int serverConflictPolicy() const override { return 0; }
    QString sslCertificatePassword() const override { return certificatePassword; }
    QSharedPointer<CalendarAccountConfiguration> calendarConfiguration() const override;
    QSharedPointer<ContactsAccountConfiguration> contactsConfiguration() const override;
    QSharedPointer<EmailAccountConfiguration> emailConfiguration() const override;
    QSharedPointer<ScheduleAccountConfiguration> scheduleConfiguration() const override;
    QSharedPointer<ConnectionAccountConfiguration> connectionConfiguration() const override;
    QSharedPointer<MailStorage> mailStorage() const override;
    QSharedPointer<CalendarStorage> calendarStorage() const override;
    QSharedPointer<ContactStorage> contactStorage() override;
    ExchangeActiveSync::ProtocolVersion preferredProtocolVersion() const override { return preferred; }
    QString policyKey() const override { return policy; }
    void setPolicyKey(const QString &key) override { policy = key; }
    bool firstSyncCompleted() const override { return false; }
    void setFirstSyncCompleted(bool) override {}
    QStringList lastKnownVersions() const override { return knownVersions; }
    void setLastKnownVersions(const QStringList &versions) override { knownVersions = versions; }
    QStringList lastKnownSupportedCommands() const override { return knownCommands; }
    void setLastKnownSupportedCommands(const QStringList &commands) override { knownCommands = commands; }
    ProvisionManager *provisionManager() override { return nullptr; }
    void remoteWipeRequested() override {}
    void credentialsNeedUpdate() override { ++needUpdateCalls; }
    bool isCredentialsNeedUpdate() override { return blocked; }
    void setAlwaysOn(bool on) override { alwaysOnSwitch = on; }
    void onAuthenticationFailedError() override { ++authenticationFailures; }

    bool ready = true;
    bool isEnabled = true;
    bool blocked = false;
    bool alwaysOnSwitch = false;
    int needUpdateCalls = 0;
    int authenticationFailures = 0;
    QString user = QStringLiteral("alice");
    QString policy;
    QString certificatePassword;
    ExchangeActiveSync::ProtocolVersion preferred = ExchangeActiveSync::ProtocolVersionUnknown;
    QStringList knownVersions;
    QStringList knownCommands;
    QSharedPointer<ScriptedConnection> connection;
    QSharedPointer<MailStorage> mails;
    QSharedPointer<CalendarStorage> events;
    QSharedPointer<ContactStorage> people;
};
