// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/smartforwardcommand.h"

#include "protocol/base/protocolutils.h"

SmartForwardCommand::SmartForwardCommand(EasAccountId accountId, QObject *parent, quint64 messageId,
    const QByteArray &mime, bool saveInSent, bool replaceMime)
    : SmartMailCommand(accountId, parent, messageId, mime, saveInSent, replaceMime)
{
}

const ComposeMailCommand::Kind &SmartForwardCommand::kind() const
{
    static const Kind kind { ProtocolUtils::CommandSmartForward, Wbxml::ComposeMail::SmartForward,
        "SmartForward MIME",
        { "Sending smart forward command via POST:", "Received smart forward command reply:", nullptr } };
    return kind;
}
