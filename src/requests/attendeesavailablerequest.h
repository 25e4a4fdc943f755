// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/attendeesavailablecommand.h"
#include "requests/commandrequest.h"

#include <QStringList>

/**
 * Asks the server when people are free.
 *
 * No address, times that are not valid and an end that is not behind the start end it with
 * RequestStatusBadRequest, a server below protocol 14.0 with RequestStatusCommandNotSupported; nothing is
 * sent then. However it ends, dataReady() goes before requestCompleted(), once. Queued and owned by the
 * RequestManager. Main thread only.
 */
class AttendeesAvailableRequest : public CommandRequest
{
    Q_OBJECT

public:
    using Options = AttendeesAvailableCommand::Options;

    AttendeesAvailableRequest(
        EasAccountId accountId, qulonglong requestId, const Options &options, QObject *parent = nullptr);

Q_SIGNALS:
    /** One entry a person in each list, where the request went well; else they are empty. A status has a
     * digit for each half hour, or is empty where the server does not tell. */
    void dataReady(qulonglong requestId, const QStringList &emails, const QStringList &names,
        const QStringList &statuses);

protected:
    void startRequest() override;
    QString commandName() const override;
    bool isCommandSupported() override;
    void onCommandFinished(bool success) override;
    void processReply() override;

private:
    bool refuseOptions();
    void startAttendeesAvailableCommand();
    void handleResponse(const AttendeesAvailableCommand &command);
    void takeAttendees(const AttendeesAvailableCommand &command);
    void refuse(const char *text);

    const Options mOptions;
    QStringList mEmails;
    QStringList mNames;
    QStringList mStatuses;
};
