// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easpolicycontainer.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QList>

/**
 * Reads the reply of a Provision, in whichever of its forms the command was: the policies, or an order to
 * wipe the device or the account. It is ready only behind the end of the root: an empty reply is no answer.
 */
class ProvisionResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit ProvisionResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** Of the whole command; 0 if the reply holds none. */
    quint32 status() const { return mStatus; }
    /** What the server made of the device information; 0 if the reply holds none. */
    quint32 deviceInformatonStatus() const { return mDeviceInformationStatus; }
    /** The whole device is to be wiped. */
    bool remoteWipeRecieved() const { return mRemoteWipe; }
    /** Nothing but the account is to be wiped. */
    bool accountOnlyRemoteWipeReceived() const { return mAccountOnlyRemoteWipe; }
    /** In the order of the reply. */
    QList<EasPolicyContainer> policyList() const { return mPolicies; }

    /** Forgets what the last reply held. */
    void reset();

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum State { AtTop, InPolicies, Done };

    void takeStatus(const QString &text);
    void takeField(uint codePage, uint token, const QString &text);

    State mState = AtTop;
    quint32 mStatus = 0;
    quint32 mDeviceInformationStatus = 0;
    bool mRemoteWipe = false;
    bool mAccountOnlyRemoteWipe = false;
    EasPolicyContainer mPolicy;
    EasProvisionDoc mDocument;
    QList<EasPolicyContainer> mPolicies;
};
