// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/agefilter.h"

#include <QObject>
#include <QStringList>

/**
 * The policy document of a server: what it asks of the device, one value for each element. A plain value.
 *
 * What a server leaves out reads as the most restrictive demand (nothing is allowed, bodies are cut to
 * nothing), as a new document does. -1 stands for "not set" in enumerations. No range is checked: the values
 * are kept as they came. ProvisionDocFields describes all of them.
 */
class EasProvisionDoc
{
    Q_GADGET

public:
    enum AllowBluetoothValues : int {
        BluetoothUnset = -1,
        BluetoothDisabled = 0,
        BluetoothHandsFreeOnly = 1,
        BluetoothAllowed = 2
    };
    Q_ENUM(AllowBluetoothValues)

    enum SMIMEEncryptionAlgorithmNegotiation : int {
        NegotiationUnset = -1,
        NegotiationForbidden = 0,
        StrongNegotiationOnly = 1,
        AnyNegotiation = 2
    };
    Q_ENUM(SMIMEEncryptionAlgorithmNegotiation)

    enum EncryptionSMIMEAlgorithm : int {
        EncryptionUnset = -1,
        EncryptionTripleDes = 0,
        EncryptionDes = 1,
        EncryptionRc2Bits128 = 2,
        EncryptionRc2Bits64 = 3,
        EncryptionRc2Bits40 = 4
    };
    Q_ENUM(EncryptionSMIMEAlgorithm)

    enum SignedSMIMEAlgorithm : int { SignedUnset = -1, SignedSha1 = 0, SignedMd5 = 1 };
    Q_ENUM(SignedSMIMEAlgorithm)

    bool allowBrowser() const { return mAllowBrowser; }
    void setAllowBrowser(bool value) { mAllowBrowser = value; }
    bool allowCamera() const { return mAllowCamera; }
    void setAllowCamera(bool value) { mAllowCamera = value; }
    bool allowConsumerEmail() const { return mAllowConsumerEmail; }
    void setAllowConsumerEmail(bool value) { mAllowConsumerEmail = value; }
    bool allowDesktopSync() const { return mAllowDesktopSync; }
    void setAllowDesktopSync(bool value) { mAllowDesktopSync = value; }
    bool allowHTMLEmail() const { return mAllowHTMLEmail; }
    void setAllowHTMLEmail(bool value) { mAllowHTMLEmail = value; }
    bool allowInternetSharing() const { return mAllowInternetSharing; }
    void setAllowInternetSharing(bool value) { mAllowInternetSharing = value; }
    bool allowIrDA() const { return mAllowIrDA; }
    void setAllowIrDA(bool value) { mAllowIrDA = value; }
    bool allowPOPIMAPEmail() const { return mAllowPOPIMAPEmail; }
    void setAllowPOPIMAPEmail(bool value) { mAllowPOPIMAPEmail = value; }
    bool allowRemoteDesktop() const { return mAllowRemoteDesktop; }
    void setAllowRemoteDesktop(bool value) { mAllowRemoteDesktop = value; }
    bool allowSimpleDevicePassword() const { return mAllowSimpleDevicePassword; }
    void setAllowSimpleDevicePassword(bool value) { mAllowSimpleDevicePassword = value; }
    bool allowSMIMESoftCerts() const { return mAllowSMIMESoftCerts; }
    void setAllowSMIMESoftCerts(bool value) { mAllowSMIMESoftCerts = value; }
    bool allowStorageCard() const { return mAllowStorageCard; }
    void setAllowStorageCard(bool value) { mAllowStorageCard = value; }
    bool allowTextMessaging() const { return mAllowTextMessaging; }
    void setAllowTextMessaging(bool value) { mAllowTextMessaging = value; }
    bool allowUnsignedApplications() const { return mAllowUnsignedApplications; }
    void setAllowUnsignedApplications(bool value) { mAllowUnsignedApplications = value; }
    bool allowUnsignedInstallationPackages() const { return mAllowUnsignedInstallationPackages; }
    void setAllowUnsignedInstallationPackages(bool value) { mAllowUnsignedInstallationPackages = value; }
    bool allowWiFi() const { return mAllowWiFi; }
    void setAllowWiFi(bool value) { mAllowWiFi = value; }
    bool alphanumericDevicePasswordRequired() const { return mAlphanumericDevicePasswordRequired; }
    void setAlphanumericDevicePasswordRequired(bool value) { mAlphanumericDevicePasswordRequired = value; }
    bool attachmentsEnabled() const { return mAttachmentsEnabled; }
    void setAttachmentsEnabled(bool value) { mAttachmentsEnabled = value; }
    bool devicePasswordEnabled() const { return mDevicePasswordEnabled; }
    void setDevicePasswordEnabled(bool value) { mDevicePasswordEnabled = value; }
    bool passwordRecoveryEnabled() const { return mPasswordRecoveryEnabled; }
    void setPasswordRecoveryEnabled(bool value) { mPasswordRecoveryEnabled = value; }
    bool requireDeviceEncryption() const { return mRequireDeviceEncryption; }
    void setRequireDeviceEncryption(bool value) { mRequireDeviceEncryption = value; }
    bool requireEncryptedSMIMEMessages() const { return mRequireEncryptedSMIMEMessages; }
    void setRequireEncryptedSMIMEMessages(bool value) { mRequireEncryptedSMIMEMessages = value; }
    bool requireManualSyncWhenRoaming() const { return mRequireManualSyncWhenRoaming; }
    void setRequireManualSyncWhenRoaming(bool value) { mRequireManualSyncWhenRoaming = value; }
    bool requireSignedSMIMEMessages() const { return mRequireSignedSMIMEMessages; }
    void setRequireSignedSMIMEMessages(bool value) { mRequireSignedSMIMEMessages = value; }
    bool requireStorageCardEncryption() const { return mRequireStorageCardEncryption; }
    void setRequireStorageCardEncryption(bool value) { mRequireStorageCardEncryption = value; }
    AllowBluetoothValues allowBluetooth() const { return mAllowBluetooth; }
    void setAllowBluetooth(AllowBluetoothValues value) { mAllowBluetooth = value; }
    quint32 devicePasswordExpiration() const { return mDevicePasswordExpiration; }
    void setDevicePasswordExpiration(quint32 value) { mDevicePasswordExpiration = value; }
    quint32 devicePasswordHistory() const { return mDevicePasswordHistory; }
    void setDevicePasswordHistory(quint32 value) { mDevicePasswordHistory = value; }
    quint32 maxAttachmentSize() const { return mMaxAttachmentSize; }
    void setMaxAttachmentSize(quint32 value) { mMaxAttachmentSize = value; }
    AgeFilter::FilterType maxCalendarAgeFilter() const { return mMaxCalendarAgeFilter; }
    void setMaxCalendarAgeFilter(AgeFilter::FilterType value) { mMaxCalendarAgeFilter = value; }
    quint32 maxDevicePasswordFailedAttempts() const { return mMaxDevicePasswordFailedAttempts; }
    void setMaxDevicePasswordFailedAttempts(quint32 value) { mMaxDevicePasswordFailedAttempts = value; }
    AgeFilter::FilterType maxEmailAgeFilter() const { return mMaxEmailAgeFilter; }
    void setMaxEmailAgeFilter(AgeFilter::FilterType value) { mMaxEmailAgeFilter = value; }
    quint32 maxInactivityTimeDeviceLock() const { return mMaxInactivityTimeDeviceLock; }
    void setMaxInactivityTimeDeviceLock(quint32 value) { mMaxInactivityTimeDeviceLock = value; }
    quint32 minDevicePasswordComplexCharacters() const { return mMinDevicePasswordComplexCharacters; }
    void setMinDevicePasswordComplexCharacters(quint32 value) { mMinDevicePasswordComplexCharacters = value; }
    quint32 minDevicePasswordLength() const { return mMinDevicePasswordLength; }
    void setMinDevicePasswordLength(quint32 value) { mMinDevicePasswordLength = value; }
    SMIMEEncryptionAlgorithmNegotiation allowSMIMEEncryptionAlgorithmNegotiation() const
    {
        return mAllowSMIMEEncryptionAlgorithmNegotiation;
    }
    void setAllowSMIMEEncryptionAlgorithmNegotiation(SMIMEEncryptionAlgorithmNegotiation value)
    {
        mAllowSMIMEEncryptionAlgorithmNegotiation = value;
    }
    qint32 maxEmailBodyTruncationSize() const { return mMaxEmailBodyTruncationSize; }
    void setMaxEmailBodyTruncationSize(qint32 value) { mMaxEmailBodyTruncationSize = value; }
    qint32 maxEmailHTMLBodyTruncationSize() const { return mMaxEmailHTMLBodyTruncationSize; }
    void setMaxEmailHTMLBodyTruncationSize(qint32 value) { mMaxEmailHTMLBodyTruncationSize = value; }
    EncryptionSMIMEAlgorithm requireEncryptionSMIMEAlgorithm() const
    {
        return mRequireEncryptionSMIMEAlgorithm;
    }
    void setRequireEncryptionSMIMEAlgorithm(EncryptionSMIMEAlgorithm value)
    {
        mRequireEncryptionSMIMEAlgorithm = value;
    }
    SignedSMIMEAlgorithm requireSignedSMIMEAlgorithm() const { return mRequireSignedSMIMEAlgorithm; }
    void setRequireSignedSMIMEAlgorithm(SignedSMIMEAlgorithm value) { mRequireSignedSMIMEAlgorithm = value; }
    /** Hashes of the applications that may run; empty if all may. */
    QStringList approvedApplicationList() const { return mApprovedApplicationList; }
    void setApprovedApplicationList(const QStringList &hashes) { mApprovedApplicationList = hashes; }
    void appendHash(const QString &hash) { mApprovedApplicationList.append(hash); }
    /** Names of applications of the device that may not run. */
    QStringList unapprovedInROMApplicationList() const { return mUnapprovedInROMApplicationList; }
    void setUnapprovedInROMApplicationList(const QStringList &names)
    {
        mUnapprovedInROMApplicationList = names;
    }
    void appendAppName(const QString &name) { mUnapprovedInROMApplicationList.append(name); }

    void clear() { *this = EasProvisionDoc(); }

    bool operator==(const EasProvisionDoc &other) const;
    bool operator!=(const EasProvisionDoc &other) const { return !(*this == other); }

private:
    bool mAllowBrowser = false;
    bool mAllowCamera = false;
    bool mAllowConsumerEmail = false;
    bool mAllowDesktopSync = false;
    bool mAllowHTMLEmail = false;
    bool mAllowInternetSharing = false;
    bool mAllowIrDA = false;
    bool mAllowPOPIMAPEmail = false;
    bool mAllowRemoteDesktop = false;
    bool mAllowSimpleDevicePassword = false;
    bool mAllowSMIMESoftCerts = false;
    bool mAllowStorageCard = false;
    bool mAllowTextMessaging = false;
    bool mAllowUnsignedApplications = false;
    bool mAllowUnsignedInstallationPackages = false;
    bool mAllowWiFi = false;
    bool mAlphanumericDevicePasswordRequired = false;
    bool mAttachmentsEnabled = false;
    bool mDevicePasswordEnabled = false;
    bool mPasswordRecoveryEnabled = false;
    bool mRequireDeviceEncryption = false;
    bool mRequireEncryptedSMIMEMessages = false;
    bool mRequireManualSyncWhenRoaming = false;
    bool mRequireSignedSMIMEMessages = false;
    bool mRequireStorageCardEncryption = false;
    AllowBluetoothValues mAllowBluetooth = BluetoothUnset;
    quint32 mDevicePasswordExpiration = 0;
    quint32 mDevicePasswordHistory = 0;
    quint32 mMaxAttachmentSize = 0;
    AgeFilter::FilterType mMaxCalendarAgeFilter = AgeFilter::FilterUnset;
    quint32 mMaxDevicePasswordFailedAttempts = 0;
    AgeFilter::FilterType mMaxEmailAgeFilter = AgeFilter::FilterUnset;
    quint32 mMaxInactivityTimeDeviceLock = 0;
    quint32 mMinDevicePasswordComplexCharacters = 0;
    quint32 mMinDevicePasswordLength = 0;
    SMIMEEncryptionAlgorithmNegotiation mAllowSMIMEEncryptionAlgorithmNegotiation = NegotiationUnset;
    qint32 mMaxEmailBodyTruncationSize = 0;
    qint32 mMaxEmailHTMLBodyTruncationSize = 0;
    EncryptionSMIMEAlgorithm mRequireEncryptionSMIMEAlgorithm = EncryptionUnset;
    SignedSMIMEAlgorithm mRequireSignedSMIMEAlgorithm = SignedUnset;
    QStringList mApprovedApplicationList;
    QStringList mUnapprovedInROMApplicationList;
};
