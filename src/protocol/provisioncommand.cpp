// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/provisioncommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "easitems/algorithms/provisionresponseparser.h"
#include "easitems/containers/deviceinformationcontainer.h"
#include "protocol/base/protocolutils.h"
#include "protocol/requestheaders.h"
#include "protocol/tlssettings.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

/** What differs between the forms. */
struct ProvisionCommand::Form
{
    /** Which policy key goes out in the header. */
    enum KeyHeader { DefaultKey, OwnKey, AccountKey };

    ProvisionCommandType type;
    KeyHeader header;
    void (ProvisionCommand::*encode)(WbxmlEncoder &, const EasAccount &) const;
    ExchangeTexts texts;
};

const ProvisionCommand::Form ProvisionCommand::forms[] = {
    { InitialPolicyKey, Form::DefaultKey, &ProvisionCommand::encodePolicyRequest,
        { "Sending provision initial policy key command via POST:",
            "Received provision initial policy key command reply:", nullptr } },
    { InitialRemoteWipe, Form::AccountKey, &ProvisionCommand::encodeWipeRequest,
        { "Sending provision initial remote wipe command via POST:",
            "Received provision initial remote wipe command reply:", nullptr } },
    { AcknowledgePolicyKey, Form::OwnKey, &ProvisionCommand::encodePolicyVerdict,
        { "Sending provision acknowledge policy key command via POST:",
            "Received provision acknowledge policy key command reply:", nullptr } },
    { AcknowledgeRemoteWipe, Form::AccountKey, &ProvisionCommand::encodeWipeVerdict,
        { "Sending provision acknowledge remote wipe command via POST:",
            "Received provision acknowledge remote wipe command reply:", nullptr } },
};

ProvisionCommand::ProvisionCommand(EasAccountId accountId, QObject *parent, ProvisionCommandType commandType)
    : BaseProtocolCommand(accountId, parent)
    , mCommandType(commandType)
{
    Q_ASSERT(form().type == commandType);
}

const ProvisionCommand::Form &ProvisionCommand::form() const
{
    return forms[mCommandType];
}

void ProvisionCommand::start()
{
    if (isRunning()) {
        qCCritical(eas()) << "Cannot begin, probably already in progress";
        return;
    }
    BaseProtocolCommand::start();
}

QString ProvisionCommand::commandName() const
{
    return ProtocolUtils::CommandProvision;
}

BaseProtocolCommand::ExchangeTexts ProvisionCommand::texts() const
{
    return form().texts;
}

bool ProvisionCommand::prepareRequest(QNetworkRequest &request)
{
    switch (form().header) {
    case Form::DefaultKey:
        return RequestHeaders::set(
            request, ProtocolUtils::HeaderAsPolicyKey, QString(ProtocolUtils::DefaultPolicyKey).toLatin1());
    case Form::OwnKey:
        return RequestHeaders::set(request, ProtocolUtils::HeaderAsPolicyKey, mPolicyKey.toUtf8());
    case Form::AccountKey:
        break;
    }
    return true;
}

bool ProvisionCommand::encodeBody(EasAccount &account, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Provision::Provision, true);
    (this->*form().encode)(encoder, account);
    *body = encoder.encoded();
    return !body->isEmpty();
}

void ProvisionCommand::encodePolicyRequest(WbxmlEncoder &encoder, const EasAccount &account) const
{
    if (account.protocolVersion() > ExchangeActiveSync::ProtocolVersion140) {
        DeviceInformationContainer device;
        device.defaultInitialize();
        device.encode(encoder, ExchangeActiveSync::ProtocolVersion141);
    }
    encoder.appendElement(Provision::Policies, true);
    encoder.appendElement(Provision::Policy, true);
    encoder.appendTextElement(Provision::PolicyType, ProtocolUtils::PolicyType);
}

void ProvisionCommand::encodePolicyVerdict(WbxmlEncoder &encoder, const EasAccount &) const
{
    encoder.appendElement(Provision::Policies, true);
    encoder.appendElement(Provision::Policy, true);
    encoder.appendTextElement(Provision::PolicyType, ProtocolUtils::PolicyType);
    encoder.appendTextElement(Provision::PolicyKey, mPolicyKey);
    encoder.appendTextElement(Provision::Status, mResultStatus);
}

void ProvisionCommand::encodeWipeRequest(WbxmlEncoder &, const EasAccount &) const {}

void ProvisionCommand::encodeWipeVerdict(WbxmlEncoder &encoder, const EasAccount &) const
{
    encoder.appendElement(
        mAcknowledgesAccountOnly ? Provision::AccountOnlyRemoteWipe : Provision::RemoteWipe, true);
    encoder.appendTextElement(Provision::Status, mResultStatus);
}

bool ProvisionCommand::parseReply(QNetworkReply *reply, const QByteArray &body)
{
    ProvisionResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse provision command response!";
        return false;
    }
    setStatus(int(parser.status()));
    mPolicies = parser.policyList();
    mDeviceInformationStatus = parser.deviceInformatonStatus();
    const bool mayWipe = mayOrderWipe(*reply, parser);
    mRemoteWipeTagPresence = mayWipe && parser.remoteWipeRecieved();
    mAccountOnlyRemoteWipeTagPresence = mayWipe && parser.accountOnlyRemoteWipeReceived();
    return true;
}

bool ProvisionCommand::mayOrderWipe(const QNetworkReply &reply, const ProvisionResponseParser &parser)
{
    if (!parser.remoteWipeRecieved() && !parser.accountOnlyRemoteWipeReceived())
        return false;
    // An account that accepts all certificates talks to whoever answers; its data is not for them to delete.
    const QList<QSslError> errors = TlsSettings::certificateErrors(reply);
    if (errors.isEmpty())
        return true;
    qCCritical(eas()) << "an order to wipe account" << accountId()
                      << "is not obeyed, the server's certificate failed:" << TlsSettings::errorTexts(errors);
    return false;
}
