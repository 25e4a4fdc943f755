// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/smartreplycommand.h"

#include "protocol/base/protocolutils.h"

SmartReplyCommand::SmartReplyCommand(EasAccountId accountId, QObject *parent, quint64 messageId,
    const QByteArray &mime, bool saveInSent, bool replaceMime)
    : SmartMailCommand(accountId, parent, messageId, mime, saveInSent, replaceMime)
{
}

const ComposeMailCommand::Kind &SmartReplyCommand::kind() const
{
    static const Kind kind { ProtocolUtils::CommandSmartReply, Wbxml::ComposeMail::SmartReply,
        "SmartReply MIME",
        { "Sending smart reply command via POST:", "Received smart reply command reply:", nullptr } };
    return kind;
}
