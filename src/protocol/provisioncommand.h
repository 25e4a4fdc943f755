// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easpolicycontainer.h"
#include "protocol/baseprotocolcommand.h"

#include <QList>

class ProvisionResponseParser;
class WbxmlEncoder;

/**
 * One Provision, in one of its four forms: it asks for the server's policies or for a wipe that may be
 * ordered, or tells the server what the device made of the one or the other.
 *
 * An acknowledgement needs a verdict, one of policies the key of the policy as well. After a reply its
 * contents can be read, whatever the form: a server may order a wipe in the reply to any of them.
 */
class ProvisionCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    enum ProvisionCommandType {
        InitialPolicyKey = 0,
        InitialRemoteWipe = 1,
        AcknowledgePolicyKey = 2,
        AcknowledgeRemoteWipe = 3
    };
    Q_ENUM(ProvisionCommandType)

    ProvisionCommand(EasAccountId accountId, QObject *parent, ProvisionCommandType commandType);

    ProvisionCommandType commandType() const { return mCommandType; }

    /** The temporary key that came with the policy, for its acknowledgement. */
    void setPolicyKey(const QString &policyKey) { mPolicyKey = policyKey; }
    /** The device's verdict, as decimal text, for both acknowledgements. */
    void setResultStatus(const QString &resultStatus) { mResultStatus = resultStatus; }
    /** The wipe that is acknowledged is one of the account alone. */
    void setAccountOnlyRemoteWipe(bool accountOnly) { mAcknowledgesAccountOnly = accountOnly; }

    /** In the order of the reply. */
    QList<EasPolicyContainer> policies() const { return mPolicies; }
    /** What the server made of the device information; 0 if it said nothing. */
    quint32 deviceInformationStatus() const { return mDeviceInformationStatus; }
    /** Whether the reply orders a wipe of the device. */
    bool remoteWipeTagPresence() const { return mRemoteWipeTagPresence; }
    /** Whether the reply orders a wipe of the account alone. */
    bool accountOnlyRemoteWipeTagPresence() const { return mAccountOnlyRemoteWipeTagPresence; }

    void start() override;

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool prepareRequest(QNetworkRequest &request) override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    struct Form;
    static const Form forms[];

    const Form &form() const;
    /** Whether the reply orders a wipe that is to be obeyed: not behind a certificate that failed. */
    bool mayOrderWipe(const QNetworkReply &reply, const ProvisionResponseParser &parser);
    void encodePolicyRequest(WbxmlEncoder &encoder, const EasAccount &account) const;
    void encodePolicyVerdict(WbxmlEncoder &encoder, const EasAccount &account) const;
    void encodeWipeRequest(WbxmlEncoder &encoder, const EasAccount &account) const;
    void encodeWipeVerdict(WbxmlEncoder &encoder, const EasAccount &account) const;

    QList<EasPolicyContainer> mPolicies;
    ProvisionCommandType mCommandType;
    bool mRemoteWipeTagPresence = false;
    bool mAccountOnlyRemoteWipeTagPresence = false;
    bool mAcknowledgesAccountOnly = false;
    quint32 mDeviceInformationStatus = 0;
    QString mPolicyKey;
    QString mResultStatus;
};
