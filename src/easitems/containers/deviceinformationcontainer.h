// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "protocol/wbxml/asprotocolitem.h"

#include <QString>

/** The block that tells a server about the device; part of the bodies of Provision and Settings. */
class DeviceInformationContainer : public AsProtocolItem
{
    Q_OBJECT

public:
    explicit DeviceInformationContainer(QObject *parent = nullptr);
    ~DeviceInformationContainer() override;

    bool enableOutboundSMS() const;
    void setEnableOutboundSMS(bool enable);
    QString model() const;
    void setModel(const QString &model);
    QString IMEI() const;
    void setIMEI(const QString &imei);
    QString friendlyName() const;
    void setFriendlyName(const QString &friendlyName);
    QString OS() const;
    void setOS(const QString &os);
    QString OSLanguage() const;
    void setOSLanguage(const QString &language);
    QString phoneNumber() const;
    void setPhoneNumber(const QString &phoneNumber);
    QString userAgent() const;
    void setUserAgent(const QString &userAgent);
    QString mobileOperator() const;
    void setMobileOperator(const QString &mobileOperator);

    /** Takes what the device knows of itself. */
    void defaultInitialize();
    void clear();

    using AsProtocolItem::encode;
    /** Writes what a server of this version understands. */
    void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

private:
    void encodeSet(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

    bool mEnableOutboundSMS = false;
    QString mModel;
    QString mIMEI;
    QString mFriendlyName;
    QString mOS;
    QString mOSLanguage;
    QString mPhoneNumber;
    QString mUserAgent;
    QString mMobileOperator;
};
