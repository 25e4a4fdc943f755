// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/sendmailcommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "easitems/easemailitem.h"
#include "protocol/base/protocolutils.h"
#include "storages/mailstorage.h"

SendMailCommand::SendMailCommand(EasAccountId accountId, QObject *parent, quint64 messageId, bool saveInSent)
    : ComposeMailCommand(accountId, parent, messageId, saveInSent)
{
}

const ComposeMailCommand::Kind &SendMailCommand::kind() const
{
    static const Kind kind { ProtocolUtils::CommandSendMail, Wbxml::ComposeMail::SendMail, "SendMail MIME",
        { "Sending send mail command via POST:", "Received send mail command reply:", nullptr } };
    return kind;
}

QByteArray SendMailCommand::mime(EasAccount &account) const
{
    const QSharedPointer<MailStorage> storage = account.mailStorage();
    if (!storage) {
        qCWarning(eas()) << "No mail storage";
        return {};
    }
    const QByteArray message = storage->queryMessage(QString::number(clientMessageId())).body().mime();
    if (message.isEmpty())
        qCWarning(eas()) << "No MIME";
    return message;
}
