// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/composemailcommand.h"

/** Sends a message of the mail store as it is. Reads it anew with each start(). */
class SendMailCommand : public ComposeMailCommand
{
    Q_OBJECT

public:
    SendMailCommand(EasAccountId accountId, QObject *parent, quint64 messageId, bool saveInSent);

protected:
    const Kind &kind() const override;
    QByteArray mime(EasAccount &account) const override;
};
