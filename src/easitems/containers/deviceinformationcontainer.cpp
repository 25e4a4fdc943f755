// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/containers/deviceinformationcontainer.h"

#include "application/base/deviceinformation.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmltokens.h"

namespace {

void appendIfFilled(WbxmlEncoder &encoder, Wbxml::Token tag, const QString &text)
{
    if (!text.isEmpty())
        encoder.appendTextElement(tag, text);
}

} // namespace

DeviceInformationContainer::DeviceInformationContainer(QObject *parent)
    : AsProtocolItem(parent)
{
}

DeviceInformationContainer::~DeviceInformationContainer() = default;

bool DeviceInformationContainer::enableOutboundSMS() const
{
    return mEnableOutboundSMS;
}

void DeviceInformationContainer::setEnableOutboundSMS(bool enable)
{
    mEnableOutboundSMS = enable;
}

QString DeviceInformationContainer::model() const
{
    return mModel;
}

void DeviceInformationContainer::setModel(const QString &model)
{
    mModel = model;
}

QString DeviceInformationContainer::IMEI() const
{
    return mIMEI;
}

void DeviceInformationContainer::setIMEI(const QString &imei)
{
    mIMEI = imei;
}

QString DeviceInformationContainer::friendlyName() const
{
    return mFriendlyName;
}

void DeviceInformationContainer::setFriendlyName(const QString &friendlyName)
{
    mFriendlyName = friendlyName;
}

QString DeviceInformationContainer::OS() const
{
    return mOS;
}

void DeviceInformationContainer::setOS(const QString &os)
{
    mOS = os;
}

QString DeviceInformationContainer::OSLanguage() const
{
    return mOSLanguage;
}

void DeviceInformationContainer::setOSLanguage(const QString &language)
{
    mOSLanguage = language;
}

QString DeviceInformationContainer::phoneNumber() const
{
    return mPhoneNumber;
}

void DeviceInformationContainer::setPhoneNumber(const QString &phoneNumber)
{
    mPhoneNumber = phoneNumber;
}

QString DeviceInformationContainer::userAgent() const
{
    return mUserAgent;
}

void DeviceInformationContainer::setUserAgent(const QString &userAgent)
{
    mUserAgent = userAgent;
}

QString DeviceInformationContainer::mobileOperator() const
{
    return mMobileOperator;
}

void DeviceInformationContainer::setMobileOperator(const QString &mobileOperator)
{
    mMobileOperator = mobileOperator;
}

void DeviceInformationContainer::defaultInitialize()
{
    mModel = DeviceInformation::model();
    mIMEI = DeviceInformation::imei();
    mFriendlyName = DeviceInformation::friendlyName();
    mOS = DeviceInformation::os();
    mOSLanguage = DeviceInformation::osLanguage();
    mUserAgent = DeviceInformation::userAgent();
}

void DeviceInformationContainer::clear()
{
    mEnableOutboundSMS = false;
    for (QString *text :
        { &mModel, &mIMEI, &mFriendlyName, &mOS, &mOSLanguage, &mPhoneNumber, &mUserAgent, &mMobileOperator })
        text->clear();
}

void DeviceInformationContainer::encode(
    WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    encoder.appendElement(Wbxml::Settings::DeviceInformation, true);
    encoder.appendElement(Wbxml::Settings::Set, true);
    encodeSet(encoder, version);
    encoder.setCurrentNodeToParent();
    encoder.setCurrentNodeToParent();
}

void DeviceInformationContainer::encodeSet(
    WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    appendIfFilled(encoder, Wbxml::Settings::Model, mModel);
    appendIfFilled(encoder, Wbxml::Settings::IMEI, mIMEI);
    appendIfFilled(encoder, Wbxml::Settings::FriendlyName, mFriendlyName);
    appendIfFilled(encoder, Wbxml::Settings::OS, mOS);
    appendIfFilled(encoder, Wbxml::Settings::OSLanguage, mOSLanguage);
    appendIfFilled(encoder, Wbxml::Settings::PhoneNumber, mPhoneNumber);
    if (!mUserAgent.isEmpty()) {
        if (version < ExchangeActiveSync::ProtocolVersion121)
            return;
        encoder.appendTextElement(Wbxml::Settings::UserAgent, mUserAgent);
    }
    if (version < ExchangeActiveSync::ProtocolVersion140)
        return;
    encoder.appendIntElement(Wbxml::Settings::EnableOutboundSMS, mEnableOutboundSMS ? 1 : 0);
    appendIfFilled(encoder, Wbxml::Settings::MobileOperator, mMobileOperator);
}
