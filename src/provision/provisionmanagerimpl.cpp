// SPDX-License-Identifier: LGPL-2.1-or-later
#include "provision/provisionmanagerimpl.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "configurations/calendaraccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/containers/provisiondocfields.h"
#include "provision/authenticationdaemon.h"

#include <authdevlockclient.h>
#include <displaysettings.h>

using namespace Wbxml;

namespace {

constexpr char PasswordMethod[] = "password";
/** A demand from here on is none. */
constexpr quint32 NoInactivityLimit = 9999;

bool isTrue(const QVariant &value, const EasAccount &)
{
    return value.toBool();
}

bool isFalse(const QVariant &value, const EasAccount &)
{
    return !value.toBool();
}

template <int Wanted> bool isNot(const QVariant &value, const EasAccount &)
{
    return value.toInt() != Wanted;
}

bool isNotZero(const QVariant &value, const EasAccount &)
{
    return value.toUInt() != 0;
}

bool isNotOne(const QVariant &value, const EasAccount &)
{
    return value.toUInt() != 1;
}

bool holdsNames(const QVariant &value, const EasAccount &)
{
    return !value.toStringList().isEmpty();
}

/** Both are filters: the larger, the older; 0 for all. */
template <typename Configuration>
bool isYounger(const QVariant &filter, const QSharedPointer<Configuration> &configuration)
{
    return filter.toInt() != AgeFilter::NoFilter && configuration
        && filter.toInt() < configuration->syncPastTime();
}

bool hidesEvents(const QVariant &filter, const EasAccount &account)
{
    return isYounger(filter, account.calendarConfiguration());
}

bool hidesMail(const QVariant &filter, const EasAccount &account)
{
    return isYounger(filter, account.emailConfiguration());
}

/** A value of the document that the device does not meet if the predicate holds. */
struct PolicyRow
{
    Token element;
    bool (*fails)(const QVariant &value, const EasAccount &account);
};

/** Where two rows have the number of a policy in common, the value of the last one counts. */
constexpr PolicyRow rows[] = {
    { Provision::AllowBluetooth, isNot<EasProvisionDoc::BluetoothAllowed> },
    { Provision::AllowBrowser, isFalse },
    { Provision::AllowCamera, isFalse },
    { Provision::AllowConsumerEmail, isFalse },
    { Provision::AllowHTMLEmail, isFalse },
    { Provision::AllowInternetSharing, isFalse },
    { Provision::AllowPOPIMAPEmail, isFalse },
    { Provision::AllowRemoteDesktop, isFalse },
    { Provision::RequireEncryptedSMIMEMessages, isTrue },
    { Provision::RequireSignedSMIMEMessages, isTrue },
    { Provision::RequireDeviceEncryption, isTrue },
    { Provision::RequireManualSyncWhenRoaming, isTrue },
    { Provision::AllowTextMessaging, isFalse },
    { Provision::AllowUnsignedInstallationPackages, isFalse },
    { Provision::AllowWiFi, isFalse },
    { Provision::ApplicationName, holdsNames },
    { Provision::Hash, holdsNames },
    { Provision::AttachmentsEnabled, isFalse },
    { Provision::MaxAttachmentSize, isNotZero },
    { Provision::MaxCalendarAgeFilter, hidesEvents },
    { Provision::MaxEmailAgeFilter, hidesMail },
    { Provision::MaxEmailBodyTruncationSize, isNot<-1> },
    { Provision::MaxEmailHTMLBodyTruncationSize, isNot<-1> },
    { Provision::AlphanumericDevicePasswordRequired, isTrue },
    { Provision::MinDevicePasswordComplexCharacters, isNotOne },
    { Provision::DevicePasswordExpiration, isNotZero },
    { Provision::DevicePasswordHistory, isNotZero },
    { Provision::AllowUnsignedApplications, isFalse },
};

void addFailed(Token element, const EasProvisionDoc &doc, FailedPolicyMap &failed)
{
    const ProvisionDocField *const field = ProvisionDocFields::find(element);
    Q_ASSERT(field && field->failedPolicy != 0);
    failed.insert(field->failedPolicy, field->value(doc));
}

bool locksInTime(const EasProvisionDoc &doc)
{
    const quint32 limit = doc.maxInactivityTimeDeviceLock();
    const auto timeout = static_cast<quint32>(DisplaySettings().devicelockTimeout());
    return limit == 0 || limit >= NoInactivityLimit || timeout <= limit;
}

} // namespace

ProvisionManagerImpl::ProvisionManagerImpl(EasAccount *account, QObject *parent)
    : ProvisionManager(account, parent)
{
    AuthenticationDaemon daemon;
    const auto option = [&daemon](const char *name) {
        return daemon.getMethodOption(QLatin1String(PasswordMethod), QLatin1String(name)).toInt();
    };
    mPasswordLength = option("new-length");
    mMaxAttempts = option("max-attempts");
    mPasswordLengthUpperLimit = option("new-length-upper-limit");
}

ProvisionManagerImpl::~ProvisionManagerImpl() = default;

EasPolicyContainer::RequestStatus ProvisionManagerImpl::verifyPolicy(
    const EasProvisionDoc &doc, FailedPolicyMap &failed) const
{
    for (const PolicyRow &row : rows) {
        if (row.fails(ProvisionDocFields::find(row.element)->value(doc), *account()))
            addFailed(row.element, doc, failed);
    }
    const bool isPasswordGood = !doc.devicePasswordEnabled() || verifyPassword(doc, failed);
    for (auto policy = failed.cbegin(); policy != failed.cend(); ++policy)
        qCDebug(eas()) << "Failed policy:" << policy.key() << "with value" << policy.value();
    if (!isPasswordGood)
        return EasPolicyContainer::RequestStatusCriticalNotApplied;
    return failed.isEmpty() ? EasPolicyContainer::RequestStatusAllApplied
                            : EasPolicyContainer::RequestStatusPartlyApplied;
}

bool ProvisionManagerImpl::verifyPassword(const EasProvisionDoc &doc, FailedPolicyMap &failed) const
{
    const bool isInTime = locksInTime(doc);
    const bool isLocked = AuthDevlockClient().enabled();
    if (isInTime && isLocked && hasLongPasswords(doc) && limitsAttempts(doc))
        return true;
    qCWarning(eas()) << "some or all critical password policies are not applied";
    if (!isLocked)
        addFailed(Provision::DevicePasswordEnabled, doc, failed);
    if (!canDemandLength(doc) || !hasLongPasswords(doc))
        addFailed(Provision::MinDevicePasswordLength, doc, failed);
    if (!limitsAttempts(doc))
        addFailed(Provision::MaxDevicePasswordFailedAttempts, doc, failed);
    if (!isInTime)
        addFailed(Provision::MaxInactivityTimeDeviceLock, doc, failed);
    return false;
}

bool ProvisionManagerImpl::hasLongPasswords(const EasProvisionDoc &doc) const
{
    return static_cast<int>(doc.minDevicePasswordLength()) <= mPasswordLength;
}

bool ProvisionManagerImpl::canDemandLength(const EasProvisionDoc &doc) const
{
    return mPasswordLengthUpperLimit <= 0
        || static_cast<int>(doc.minDevicePasswordLength()) <= mPasswordLengthUpperLimit;
}

bool ProvisionManagerImpl::limitsAttempts(const EasProvisionDoc &doc) const
{
    return static_cast<int>(doc.maxDevicePasswordFailedAttempts()) <= mMaxAttempts;
}
