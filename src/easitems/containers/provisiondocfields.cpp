// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/containers/provisiondocfields.h"

#include "easitems/containers/easprovisiondoc.h"
#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmltable.h"

#include <algorithm>
#include <type_traits>
#include <utility>

using namespace Wbxml;

namespace {

using Doc = EasProvisionDoc;

constexpr char NoBool[] = "Cannot convert to bool: ";
constexpr char NoInt[] = "Cannot convert to int: ";
constexpr char NoNumber[] = "Cannot convert to uint:";
constexpr char NoBluetooth[] = "Cannot convert to uint: ";

struct Field : ProvisionDocField
{
    Field number(int failedPolicyNumber) const
    {
        Field field = *this;
        field.failedPolicy = failedPolicyNumber;
        return field;
    }
    Field named(const char *name) const
    {
        Field field = *this;
        field.publishedName = name;
        return field;
    }
    Field refusedWith(const char *text) const
    {
        Field field = *this;
        field.refusal = text;
        return field;
    }
};

template <auto Get> using Value = std::decay_t<decltype((std::declval<const Doc &>().*Get)())>;

template <auto Get> QVariant value(const Doc &doc)
{
    if constexpr (std::is_enum_v<Value<Get>>)
        return static_cast<int>((doc.*Get)());
    else
        return (doc.*Get)();
}

/** True for 1 and above. */
template <auto Get, auto Set> Field flag(Token tag)
{
    const auto take = [](Doc &doc, const QString &text) {
        bool converted = false;
        const int number = text.toInt(&converted);
        if (converted)
            (doc.*Set)(number > 0);
        return converted;
    };
    return { { tag, tag, NoBool, take, value<Get> } };
}

template <auto Get, auto Set> Field unsignedNumber(Token tag)
{
    const auto take = [](Doc &doc, const QString &text) {
        bool converted = false;
        const uint number = text.toUInt(&converted);
        if (converted)
            (doc.*Set)(static_cast<Value<Get>>(number));
        return converted;
    };
    return { { tag, tag, NoNumber, take, value<Get> } };
}

template <auto Get, auto Set> Field signedNumber(Token tag)
{
    const auto take = [](Doc &doc, const QString &text) {
        bool converted = false;
        const int number = text.toInt(&converted);
        if (converted)
            (doc.*Set)(number);
        return converted;
    };
    return { { tag, tag, NoNumber, take, value<Get> } };
}

/** A list, which takes the texts of one element wherever it stands. */
template <auto Get, auto Append> Field texts(Token entry, Token list)
{
    const auto take = [](Doc &doc, const QString &text) {
        (doc.*Append)(text);
        return true;
    };
    return { { entry, list, nullptr, take, value<Get> } };
}

const QVector<ProvisionDocField> &table()
{
    static const QVector<ProvisionDocField> fields {
        flag<&Doc::allowBrowser, &Doc::setAllowBrowser>(Provision::AllowBrowser).number(7),
        flag<&Doc::allowCamera, &Doc::setAllowCamera>(Provision::AllowCamera).number(8),
        flag<&Doc::allowConsumerEmail, &Doc::setAllowConsumerEmail>(Provision::AllowConsumerEmail).number(9),
        flag<&Doc::allowDesktopSync, &Doc::setAllowDesktopSync>(Provision::AllowDesktopSync),
        flag<&Doc::allowHTMLEmail, &Doc::setAllowHTMLEmail>(Provision::AllowHTMLEmail).number(11),
        flag<&Doc::allowInternetSharing, &Doc::setAllowInternetSharing>(Provision::AllowInternetSharing)
            .number(12),
        flag<&Doc::allowIrDA, &Doc::setAllowIrDA>(Provision::AllowIrDA),
        flag<&Doc::allowPOPIMAPEmail, &Doc::setAllowPOPIMAPEmail>(Provision::AllowPOPIMAPEmail).number(14),
        flag<&Doc::allowRemoteDesktop, &Doc::setAllowRemoteDesktop>(Provision::AllowRemoteDesktop).number(15),
        flag<&Doc::allowSimpleDevicePassword, &Doc::setAllowSimpleDevicePassword>(
            Provision::AllowSimpleDevicePassword),
        flag<&Doc::allowSMIMESoftCerts, &Doc::setAllowSMIMESoftCerts>(Provision::AllowSMIMESoftCerts),
        flag<&Doc::allowStorageCard, &Doc::setAllowStorageCard>(Provision::AllowStorageCard),
        flag<&Doc::allowTextMessaging, &Doc::setAllowTextMessaging>(Provision::AllowTextMessaging).number(20),
        flag<&Doc::allowUnsignedApplications, &Doc::setAllowUnsignedApplications>(
            Provision::AllowUnsignedApplications)
            .number(21),
        flag<&Doc::allowUnsignedInstallationPackages, &Doc::setAllowUnsignedInstallationPackages>(
            Provision::AllowUnsignedInstallationPackages)
            .number(22),
        flag<&Doc::allowWiFi, &Doc::setAllowWiFi>(Provision::AllowWiFi).number(23),
        flag<&Doc::alphanumericDevicePasswordRequired, &Doc::setAlphanumericDevicePasswordRequired>(
            Provision::AlphanumericDevicePasswordRequired)
            .number(2),
        flag<&Doc::attachmentsEnabled, &Doc::setAttachmentsEnabled>(Provision::AttachmentsEnabled).number(24),
        flag<&Doc::devicePasswordEnabled, &Doc::setDevicePasswordEnabled>(Provision::DevicePasswordEnabled)
            .number(1)
            .refusedWith(NoInt),
        flag<&Doc::passwordRecoveryEnabled, &Doc::setPasswordRecoveryEnabled>(
            Provision::PasswordRecoveryEnabled),
        flag<&Doc::requireDeviceEncryption, &Doc::setRequireDeviceEncryption>(
            Provision::RequireDeviceEncryption)
            .number(26),
        flag<&Doc::requireEncryptedSMIMEMessages, &Doc::setRequireEncryptedSMIMEMessages>(
            Provision::RequireEncryptedSMIMEMessages)
            .number(27),
        flag<&Doc::requireManualSyncWhenRoaming, &Doc::setRequireManualSyncWhenRoaming>(
            Provision::RequireManualSyncWhenRoaming)
            .number(28),
        flag<&Doc::requireSignedSMIMEMessages, &Doc::setRequireSignedSMIMEMessages>(
            Provision::RequireSignedSMIMEMessages)
            .number(29),
        flag<&Doc::requireStorageCardEncryption, &Doc::setRequireStorageCardEncryption>(
            Provision::RequireStorageCardEncryption)
            .named("RequireStorageCardEncryption"),
        unsignedNumber<&Doc::allowBluetooth, &Doc::setAllowBluetooth>(Provision::AllowBluetooth)
            .number(6)
            .refusedWith(NoBluetooth),
        unsignedNumber<&Doc::devicePasswordExpiration, &Doc::setDevicePasswordExpiration>(
            Provision::DevicePasswordExpiration)
            .number(31),
        unsignedNumber<&Doc::devicePasswordHistory, &Doc::setDevicePasswordHistory>(
            Provision::DevicePasswordHistory)
            .number(32),
        unsignedNumber<&Doc::maxAttachmentSize, &Doc::setMaxAttachmentSize>(Provision::MaxAttachmentSize)
            .number(33),
        unsignedNumber<&Doc::maxCalendarAgeFilter, &Doc::setMaxCalendarAgeFilter>(
            Provision::MaxCalendarAgeFilter)
            .number(34),
        unsignedNumber<&Doc::maxDevicePasswordFailedAttempts, &Doc::setMaxDevicePasswordFailedAttempts>(
            Provision::MaxDevicePasswordFailedAttempts)
            .number(35),
        unsignedNumber<&Doc::maxEmailAgeFilter, &Doc::setMaxEmailAgeFilter>(Provision::MaxEmailAgeFilter)
            .number(36),
        unsignedNumber<&Doc::maxInactivityTimeDeviceLock, &Doc::setMaxInactivityTimeDeviceLock>(
            Provision::MaxInactivityTimeDeviceLock)
            .number(5),
        unsignedNumber<&Doc::minDevicePasswordComplexCharacters, &Doc::setMinDevicePasswordComplexCharacters>(
            Provision::MinDevicePasswordComplexCharacters)
            .number(2),
        unsignedNumber<&Doc::minDevicePasswordLength, &Doc::setMinDevicePasswordLength>(
            Provision::MinDevicePasswordLength)
            .number(3),
        unsignedNumber<&Doc::allowSMIMEEncryptionAlgorithmNegotiation,
            &Doc::setAllowSMIMEEncryptionAlgorithmNegotiation>(
            Provision::AllowSMIMEEncryptionAlgorithmNegotiation),
        signedNumber<&Doc::maxEmailBodyTruncationSize, &Doc::setMaxEmailBodyTruncationSize>(
            Provision::MaxEmailBodyTruncationSize)
            .number(37),
        signedNumber<&Doc::maxEmailHTMLBodyTruncationSize, &Doc::setMaxEmailHTMLBodyTruncationSize>(
            Provision::MaxEmailHTMLBodyTruncationSize)
            .number(38),
        unsignedNumber<&Doc::requireEncryptionSMIMEAlgorithm, &Doc::setRequireEncryptionSMIMEAlgorithm>(
            Provision::RequireEncryptionSMIMEAlgorithm),
        unsignedNumber<&Doc::requireSignedSMIMEAlgorithm, &Doc::setRequireSignedSMIMEAlgorithm>(
            Provision::RequireSignedSMIMEAlgorithm),
        texts<&Doc::approvedApplicationList, &Doc::appendHash>(
            Provision::Hash, Provision::ApprovedApplicationList)
            .number(42),
        texts<&Doc::unapprovedInROMApplicationList, &Doc::appendAppName>(
            Provision::ApplicationName, Provision::UnapprovedInROMApplicationList)
            .number(42),
    };
    return fields;
}

} // namespace

QString ProvisionDocField::name() const
{
    if (publishedName)
        return QString::fromLatin1(publishedName);
    const WBXMLTagEntry *const entry = WbxmlTable::tagEntry(title.page, title.token);
    return entry ? QString::fromLatin1(entry->xmlName) : QString();
}

const QVector<ProvisionDocField> &ProvisionDocFields::all()
{
    return table();
}

const ProvisionDocField *ProvisionDocFields::find(uint elementKey)
{
    const QVector<ProvisionDocField> &fields = all();
    const auto found = std::find_if(fields.cbegin(), fields.cend(),
        [elementKey](const ProvisionDocField &field) { return field.element.key() == elementKey; });
    return found == fields.cend() ? nullptr : &*found;
}

QVariantMap ProvisionDocFields::values(const EasProvisionDoc &doc)
{
    QVariantMap values;
    for (const ProvisionDocField &field : all())
        values.insert(field.name(), field.value(doc));
    return values;
}
