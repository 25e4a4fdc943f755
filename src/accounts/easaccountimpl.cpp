// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/easaccountimpl.h"

#include "accounts/accountcredentials.h"
#include "accounts/remotewipe.h"
#include "accounts/schedulercalls.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "configurations/impls/emailaccountconfigurationimpl.h"
#include "provision/provisionmanagerimpl.h"

#include <Accounts/Account>

namespace {

constexpr char userNameKey[] = "default_credentials_username";
constexpr char serverAddressKey[] = "network/server_address";
constexpr char conflictPolicyKey[] = "conflict_policy";
constexpr char preferredVersionKey[] = "connection/preferred_protocol_version";
constexpr char firstSyncCompletedKey[] = "firstSyncCompleted";
constexpr char policyKeyKey[] = "policyKey";
constexpr char lastKnownVersionsKey[] = "last_known_versions";
constexpr char lastKnownCommandsKey[] = "last_known_supported_commands";

const QString credentialsNeedUpdateKey = QStringLiteral("CredentialsNeedUpdate");
const QString credentialsNeedUpdateFromKey = QStringLiteral("CredentialsNeedUpdateFrom");
const QString lastSynchronizedKey = QStringLiteral("lastSynchronized");
const QString persistentConnectionKey = QStringLiteral("hasPersistentConnection");

RecordScope mailService()
{
    return RecordScope::firstOfType(QStringLiteral("e-mail"));
}

QStringList splitList(const QVariant &value)
{
    return value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

EasAccountImpl::EasAccountImpl(
    Accounts::Account *account, EasAccountId id, const StorageCreator &storages, QObject *parent)
    : EasAccount(id, parent)
    , mRecord(account)
    , mCredentials(new AccountCredentials(mRecord, id, this))
    , mRemoteWipe(new RemoteWipe(mRecord, id, this))
    , mConfigurations(mRecord.account(), *this)
    , mStores(*this, storages)
{
    initialize();
}

EasAccountImpl::~EasAccountImpl() = default;

void EasAccountImpl::initialize()
{
    connectCredentials();
    connectEmailConfiguration();
    if (mRecord.account()) {
        connect(
            mRecord.account(), &Accounts::Account::enabledChanged, this, &EasAccountImpl::onEnabledChanged);
    }
    connectRemoteWipe();
    // What an account that is to be wiped would fetch and repair here would only have to go again.
    if (mRemoteWipe->isRequested()) {
        mStores.close();
        return mRemoteWipe->resume();
    }
    SchedulerCalls::ask(id());
    mStores.openCalendar();
    retrieveCredentials();
    onEmailConfigurationChanged(id());
}

void EasAccountImpl::connectCredentials()
{
    connect(mCredentials, &AccountCredentials::readyChanged, this, &EasAccount::readyChanged);
    connect(mCredentials, &AccountCredentials::passwordReceived, this, &EasAccountImpl::onPasswordReceived);
    connect(mCredentials, &AccountCredentials::sslCertificatePasswordReceived, this,
        [this] { Q_EMIT sslCertificateCredentialsChanged(id()); });
}

void EasAccountImpl::connectRemoteWipe()
{
    connect(mRemoteWipe, &RemoteWipe::ordered, this, &EasAccountImpl::onRemoteWipeOrdered);
    connect(mRemoteWipe, &RemoteWipe::begun, this, &EasAccountImpl::onRemoteWipeBegun);
}

void EasAccountImpl::connectEmailConfiguration()
{
    const EmailAccountConfigurationImpl *const email = mConfigurations.email.data();
    // Who listens to the account's signal finds the mail storage already created or dropped.
    connect(email, &EmailAccountConfiguration::emailConfigurationChanged, this,
        &EasAccountImpl::onEmailConfigurationChanged);
    connect(email, &EmailAccountConfiguration::emailConfigurationChanged, this,
        &EasAccount::emailConfigurationChanged);
    connect(email, &EmailAccountConfiguration::passwordChanged, mCredentials,
        &AccountCredentials::retrieveChanged);
    connect(mCredentials, &AccountCredentials::passwordRequested, email,
        &EmailAccountConfigurationImpl::onCredentialsRequested);
    connect(this, &EasAccount::credentialsChanged, email,
        &EmailAccountConfigurationImpl::updateCredentialsUpdateCounter);
}

void EasAccountImpl::onEmailConfigurationChanged(EasAccountId accountId)
{
    const bool enabled = mConfigurations.email->enabled();
    qCInfo(eas()) << (enabled ? "email service is enabled in account"
                              : "email service is disabled in account")
                  << accountId;
    mStores.setMailEnabled(enabled);
}

void EasAccountImpl::onAuthenticationFailedError()
{
    retrieveCredentials();
}

void EasAccountImpl::retrieveCredentials()
{
    mCredentials->retrieve();
}

void EasAccountImpl::onPasswordReceived()
{
    // The cookie is there before anyone is told that the account is ready.
    refreshAuthenticationCache();
    Q_EMIT credentialsChanged(id());
}

bool EasAccountImpl::remoteWipeRequested()
{
    return mRemoteWipe->request();
}

void EasAccountImpl::remoteWipeAcknowledged()
{
    mRemoteWipe->acknowledged();
}

bool EasAccountImpl::isRemoteWipeRequested() const
{
    return mRemoteWipe->isRequested();
}

void EasAccountImpl::onRemoteWipeOrdered()
{
    // Without a store, nothing that still comes from the server can be put back.
    mStores.close();
    setAlwaysOn(false);
    Q_EMIT remoteWipeOrdered(id());
}

void EasAccountImpl::onRemoteWipeBegun()
{
    // Whatever becomes of the wipe, nothing is synchronised any more.
    mCredentials->forget();
    clearAuthenticationCache();
    Q_EMIT remoteWipeBegun(id());
}

void EasAccountImpl::onEnabledChanged(const QString &serviceName)
{
    // The services' own switches come through the configurations.
    if (!serviceName.isEmpty())
        return;
    setAlwaysOn(alwaysOn() && enabled());
    // It was switched off with the account; what the user wants is kept by the scheduler.
    if (enabled())
        SchedulerCalls::ask(id());
}

bool EasAccountImpl::enabled() const
{
    return mRecord.enabled();
}

void EasAccountImpl::setAlwaysOn(bool on)
{
    on = on && !isRemoteWipeRequested();
    EasAccount::setAlwaysOn(on);
    if (mRecord.contains(mailService())
        && mRecord.value(mailService(), persistentConnectionKey).toBool() != on)
        writeMailValues({ { persistentConnectionKey, on } });
}

QString EasAccountImpl::userName() const
{
    return globalValue(userNameKey).toString();
}

QString EasAccountImpl::password() const
{
    return mCredentials->password();
}

QString EasAccountImpl::serverAddress() const
{
    return globalValue(serverAddressKey).toString();
}

int EasAccountImpl::serverConflictPolicy() const
{
    return globalValue(conflictPolicyKey).toInt();
}

QString EasAccountImpl::sslCertificatePassword() const
{
    return mCredentials->sslCertificatePassword();
}

QSharedPointer<CalendarAccountConfiguration> EasAccountImpl::calendarConfiguration() const
{
    return mConfigurations.calendar;
}

QSharedPointer<ContactsAccountConfiguration> EasAccountImpl::contactsConfiguration() const
{
    return mConfigurations.contacts;
}

QSharedPointer<EmailAccountConfiguration> EasAccountImpl::emailConfiguration() const
{
    return mConfigurations.email;
}

QSharedPointer<ScheduleAccountConfiguration> EasAccountImpl::scheduleConfiguration() const
{
    return mConfigurations.schedule;
}

QSharedPointer<ConnectionAccountConfiguration> EasAccountImpl::connectionConfiguration() const
{
    return mConfigurations.connection;
}

QSharedPointer<MailStorage> EasAccountImpl::mailStorage() const
{
    return mStores.mail();
}

QSharedPointer<CalendarStorage> EasAccountImpl::calendarStorage() const
{
    return mStores.calendar();
}

QSharedPointer<ContactStorage> EasAccountImpl::contactStorage()
{
    return mStores.contacts();
}

QString EasAccountImpl::deviceId() const
{
    return DeviceInformation::deviceId();
}

ExchangeActiveSync::ProtocolVersion EasAccountImpl::preferredProtocolVersion() const
{
    return toProtocolVersion(globalValue(preferredVersionKey).toString().toUtf8());
}

QString EasAccountImpl::policyKey() const
{
    return globalValue(policyKeyKey).toString();
}

void EasAccountImpl::setPolicyKey(const QString &policyKey)
{
    setGlobalValue(policyKeyKey, policyKey);
}

QDateTime EasAccountImpl::lastSyncTime(Service service) const
{
    Q_UNUSED(service)
    if (!mRecord.contains(mailService()))
        return QDateTime();
    const quint64 seconds = mRecord.value(mailService(), lastSynchronizedKey).toULongLong();
    return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(seconds), Qt::UTC);
}

void EasAccountImpl::setLastSyncTime(Service services, const QDateTime &time)
{
    if (!time.isValid() || !services.testFlag(EmailService) || !mRecord.contains(mailService()))
        return;
    qCInfo(eas()) << "Update last synchronized" << time << "for service"
                  << mRecord.serviceName(mailService());
    const auto seconds = static_cast<quint64>(time.toUTC().toSecsSinceEpoch());
    if (mRecord.value(mailService(), lastSynchronizedKey).toULongLong() != seconds)
        writeMailValues({ { lastSynchronizedKey, seconds } });
}

bool EasAccountImpl::firstSyncCompleted() const
{
    return globalValue(firstSyncCompletedKey).toBool();
}

void EasAccountImpl::setFirstSyncCompleted(bool completed)
{
    // Said after each sync, and each time the account is written its listeners wake.
    if (firstSyncCompleted() != completed)
        setGlobalValue(firstSyncCompletedKey, completed);
}

QStringList EasAccountImpl::lastKnownVersions() const
{
    return splitList(globalValue(lastKnownVersionsKey));
}

void EasAccountImpl::setLastKnownVersions(const QStringList &versions)
{
    setGlobalValue(lastKnownVersionsKey, versions.join(QLatin1Char(',')));
}

QStringList EasAccountImpl::lastKnownSupportedCommands() const
{
    return splitList(globalValue(lastKnownCommandsKey));
}

void EasAccountImpl::setLastKnownSupportedCommands(const QStringList &commands)
{
    setGlobalValue(lastKnownCommandsKey, commands.join(QLatin1Char(',')));
}

ProvisionManager *EasAccountImpl::provisionManager()
{
    // Not before it is asked for: making it waits for the device's authentication daemon.
    if (!mProvisionManager)
        mProvisionManager = new ProvisionManagerImpl(this, this);
    return mProvisionManager;
}

bool EasAccountImpl::isReady() const
{
    return mCredentials->isReady();
}

void EasAccountImpl::credentialsNeedUpdate()
{
    // Written once: a mark that is set again could undo a new password that is being stored right now.
    if (isCredentialsNeedUpdate())
        return;
    qInfo() << "fennel-eas: setting CredentialsNeedUpdate on account:" << id();
    writeMailValues({ { credentialsNeedUpdateKey, true },
        { credentialsNeedUpdateFromKey, QStringLiteral("fenel-eas") } });
}

bool EasAccountImpl::isCredentialsNeedUpdate()
{
    return mRecord.value(mailService(), credentialsNeedUpdateKey).toBool();
}

QVariant EasAccountImpl::globalValue(const char *key) const
{
    return mRecord.value(RecordScope::global(), QLatin1String(key));
}

void EasAccountImpl::setGlobalValue(const char *key, const QVariant &value)
{
    if (!mRecord.write(RecordScope::global(), QLatin1String(key), value))
        qCWarning(eas()) << "failed to write" << key << "of account" << id();
}

void EasAccountImpl::writeMailValues(const AccountRecord::Values &values)
{
    if (!mRecord.write(mailService(), values))
        qCWarning(eas()) << "failed to write" << values.first().first << "of account" << id();
}
