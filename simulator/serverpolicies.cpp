// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/serverpolicies.h"

#include "simulator/protocolversion.h"

namespace Simulator {
namespace {

enum Complaint {
    RemoteWipeRequested = 140,
    LegacyDeviceOnStrictPolicy = 141,
    DeviceNotProvisioned = 142,
    PolicyRefresh = 143,
    InvalidPolicyKey = 144
};

/** The values of a document that asks for nothing. */
const QVector<QPair<const char *, const char *>> &harmlessValues()
{
    static const QVector<QPair<const char *, const char *>> values {
        { "DevicePasswordEnabled", "0" },
        { "AlphanumericDevicePasswordRequired", "0" },
        { "PasswordRecoveryEnabled", "0" },
        { "RequireStorageCardEncryption", "0" },
        { "AttachmentsEnabled", "1" },
        { "MinDevicePasswordLength", "" },
        { "MaxInactivityTimeDeviceLock", "" },
        { "MaxDevicePasswordFailedAttempts", "" },
        { "MaxAttachmentSize", "" },
        { "AllowSimpleDevicePassword", "1" },
        { "DevicePasswordExpiration", "" },
        { "DevicePasswordHistory", "0" },
        { "AllowStorageCard", "1" },
        { "AllowCamera", "1" },
        { "RequireDeviceEncryption", "0" },
        { "AllowUnsignedApplications", "1" },
        { "AllowUnsignedInstallationPackages", "1" },
        { "MinDevicePasswordComplexCharacters", "1" },
        { "AllowWiFi", "1" },
        { "AllowTextMessaging", "1" },
        { "AllowPOPIMAPEmail", "1" },
        { "AllowBluetooth", "2" },
        { "AllowIrDA", "1" },
        { "RequireManualSyncWhenRoaming", "0" },
        { "AllowDesktopSync", "1" },
        { "MaxCalendarAgeFilter", "0" },
        { "AllowHTMLEmail", "1" },
        { "MaxEmailAgeFilter", "0" },
        { "MaxEmailBodyTruncationSize", "-1" },
        { "MaxEmailHTMLBodyTruncationSize", "-1" },
        { "RequireSignedSMIMEMessages", "0" },
        { "RequireEncryptedSMIMEMessages", "0" },
        { "RequireSignedSMIMEAlgorithm", "0" },
        { "RequireEncryptionSMIMEAlgorithm", "0" },
        { "AllowSMIMEEncryptionAlgorithmNegotiation", "2" },
        { "AllowSMIMESoftCerts", "1" },
        { "AllowBrowser", "1" },
        { "AllowConsumerEmail", "1" },
        { "AllowRemoteDesktop", "1" },
        { "AllowInternetSharing", "1" },
        { "UnapprovedInROMApplicationList", "" },
        { "ApprovedApplicationList", "" },
    };
    return values;
}

} // namespace

Policy Policy::of(const QString &elements)
{
    QString error;
    Policy policy;
    policy.document = WbxmlNode::fromXml(
        QStringLiteral("<EASProvisionDoc xmlns='Provision'>%1</EASProvisionDoc>").arg(elements), &error);
    Q_ASSERT_X(error.isEmpty(), "Policy::of", qPrintable(error));
    return policy;
}

Policy Policy::allowing(const QMap<QString, QString> &values)
{
    Policy policy;
    policy.document = WbxmlNode(QStringLiteral("Provision:EASProvisionDoc"));
    for (const auto &value : harmlessValues()) {
        const QString name = QLatin1String(value.first);
        policy.document.append(name, values.value(name, QLatin1String(value.second)));
    }
    return policy;
}

void ServerPolicies::setPolicies(const QVector<Policy> &policies)
{
    list = policies;
    refresh();
}

void ServerPolicies::orderWipe(Wipe order)
{
    wipe = order;
    wipeVerdicts.clear();
}

Wipe ServerPolicies::wipeFor(const QString &deviceId, int version) const
{
    if (wipeVerdicts.contains(deviceId) || (wipe == Wipe::Account && version < Version161))
        return Wipe::None;
    return wipe;
}

int ServerPolicies::complaint(
    const QString &deviceId, const ProvisionState &state, const QString &key, int version) const
{
    if (wipeFor(deviceId, version) != Wipe::None)
        return RemoteWipeRequested;
    if (refusesKeyless && key.isNull())
        return LegacyDeviceOnStrictPolicy;
    if (list.isEmpty() || !checksKeys)
        return 0;
    if (key.isEmpty() || key == QLatin1String("0"))
        return DeviceNotProvisioned;
    if (forgetsKeys || key != state.key)
        return InvalidPolicyKey;
    return state.revision == revision ? 0 : PolicyRefresh;
}

} // namespace Simulator
