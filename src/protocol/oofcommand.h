// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easoofcontainer.h"
#include "protocol/baseprotocolcommand.h"

class OofResponseParser;
class WbxmlEncoder;

/**
 * One Settings that reads or writes the out-of-office settings of the mailbox.
 *
 * Before a write the caller gives the settings, with two times that make a span where they are for a time;
 * after a read that ended with status 1 getOofState() is what the server said.
 */
class OofCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    enum Action : int { Get = 0, Set = 1 };

    OofCommand(EasAccountId accountId, QObject *parent, Action action);

    EasOofContainer getOofState() const { return mOofState; }
    void setOofState(const EasOofContainer &state) { mOofState = state; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    static void encodeGet(WbxmlEncoder &encoder);
    void encodeSet(WbxmlEncoder &encoder) const;
    void encodeState(WbxmlEncoder &encoder) const;
    void takeSettings(const OofResponseParser &parser);

    const Action mAction;
    EasOofContainer mOofState;
};
