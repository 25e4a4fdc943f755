// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/commandrequest.h"

class FetchItemCommand;

/** What the requests share that fetch items of the mailbox, and what each status of a fetch leads to. */
class FetchRequest : public CommandRequest
{
    Q_OBJECT

public:
    using CommandRequest::CommandRequest;

protected:
    QString commandName() const override;

    FetchItemCommand *newFetchCommand();
    FetchItemCommand *fetchCommand() const;

    /** Takes the reply of a fetch that succeeded as a whole. */
    virtual void processCommandSuccess() = 0;
    void handleFetchStatus(bool success);

private:
    void processReply() override;
};
