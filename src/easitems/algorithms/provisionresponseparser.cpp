// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/provisionresponseparser.h"

#include "application/base/logging.h"
#include "easitems/containers/provisiondocfields.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

using namespace Wbxml;

namespace {

constexpr int MostPolicies = 100;
/** The numbers beyond are the engine's own and those of the transport. */
constexpr uint HighestStatus = 999;

/** False, after a log line, if the text is no status; the value is left alone then. */
bool toServerStatus(const QString &text, quint32 &status)
{
    uint number = 0;
    if (!ParserBase::stringToUint(text, number) || number > HighestStatus) {
        qCWarning(eas()) << "Cannot convert to uint:" << text;
        return false;
    }
    status = number;
    return true;
}

} // namespace

ProvisionResponseParser::ProvisionResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool ProvisionResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mState == Done;
}

void ProvisionResponseParser::reset()
{
    mState = AtTop;
    mStatus = 0;
    mDeviceInformationStatus = 0;
    mRemoteWipe = false;
    mAccountOnlyRemoteWipe = false;
    mPolicy.clear();
    mDocument.clear();
    mPolicies.clear();
}

void ProvisionResponseParser::parse(const QByteArray &data)
{
    reset();
    if (data.isEmpty())
        qCWarning(eas()) << "data is empty";
    WbxmlParserBase::parse(data);
}

void ProvisionResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    switch (key(codePage, token)) {
    case Provision::Policies:
        mState = InPolicies;
        break;
    case Provision::Policy:
        mPolicy.clear();
        break;
    case Provision::Data:
        mDocument.clear();
        break;
    case Provision::RemoteWipe:
        mRemoteWipe = true;
        break;
    case Provision::AccountOnlyRemoteWipe:
        mAccountOnlyRemoteWipe = true;
        break;
    case Provision::Provision:
    case Provision::PolicyType:
    case Provision::PolicyKey:
    case Provision::Status:
    case Provision::EASProvisionDoc:
    case Provision::ApprovedApplicationList:
    case Provision::UnapprovedInROMApplicationList:
    case Settings::DeviceInformation:
    case Settings::Status:
        break;
    default:
        if (!ProvisionDocFields::find(key(codePage, token)) && isFirst("element", codePage, token))
            qCWarning(eas()) << "Unexpected element"
                             << ", codePage: " << codePage << ", token: " << token;
    }
}

void ProvisionResponseParser::onEndElement(uint codePage, uint token)
{
    switch (key(codePage, token)) {
    case Provision::Provision:
        mState = Done;
        break;
    case Provision::Policies:
        mState = AtTop;
        break;
    case Provision::Policy:
        if (mPolicies.size() == MostPolicies)
            refuse("more policies than a server has");
        else
            mPolicies.append(mPolicy);
        break;
    case Provision::Data:
        mPolicy.setData(mDocument);
        break;
    default:
        break;
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void ProvisionResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &)
{
    switch (key(codePage, token)) {
    case Settings::Status:
        toServerStatus(text, mDeviceInformationStatus);
        break;
    case Provision::Status:
        takeStatus(text);
        break;
    case Provision::PolicyType:
        mPolicy.setPolicyType(text);
        break;
    case Provision::PolicyKey:
        mPolicy.setPolicyKey(text);
        break;
    default:
        takeField(codePage, token, text);
    }
}

void ProvisionResponseParser::takeStatus(const QString &text)
{
    if (mState != InPolicies) {
        toServerStatus(text, mStatus);
        return;
    }
    quint32 status = 0;
    if (toServerStatus(text, status))
        mPolicy.setStatus(static_cast<EasPolicyContainer::ResponseStatus>(status));
}

void ProvisionResponseParser::takeField(uint codePage, uint token, const QString &text)
{
    const ProvisionDocField *const field = ProvisionDocFields::find(key(codePage, token));
    if (field) {
        if (!field->take(mDocument, text))
            qCWarning(eas()) << field->refusal << text;
        return;
    }
    if (isFirst("content", codePage, token))
        qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                         << ", token: " << token;
}
