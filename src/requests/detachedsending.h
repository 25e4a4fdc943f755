// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/sentmessage.h"

#include <QObject>

class BaseProtocolCommand;
class SendMailCommand;

/**
 * Sends a message whole after its request has ended, because the server did not find the message that it
 * answers or forwards. Nobody is told of the end: a message that is sent leaves the Outbox, any other stays.
 *
 * A child of the engine; deletes itself when the command has ended. Main thread only.
 */
class DetachedSending : public QObject
{
    Q_OBJECT

public:
    DetachedSending(EasAccountId accountId, quint64 messageId, QObject *engine);
    ~DetachedSending() override;

    void start();

private:
    void onCommandFinished(bool success);

    const SentMessage mMessage;
    SendMailCommand *const mCommand;
};
