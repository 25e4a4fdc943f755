// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/attendeesavailableresponseparser.h"
#include "protocol/baseprotocolcommand.h"

#include <QDateTime>
#include <QStringList>

/**
 * One ResolveRecipients that asks when people are free.
 *
 * Servers know that from protocol 14.0 on. The caller gives at least one address and a start before the end.
 * After a reply responseStatus() and attendees() are what the server said.
 */
class AttendeesAvailableCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    struct Options
    {
        QStringList emails;
        QDateTime startTime;
        QDateTime endTime;
    };
    using AttendeeData = AttendeesAvailableResponseParser::AttendeeData;

    AttendeesAvailableCommand(EasAccountId accountId, QObject *parent, const Options &options);

    void start() override;

    int responseStatus() const { return mResponseStatus; }
    QList<AttendeeData> attendees() const { return mAttendees; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    const Options mOptions;
    int mResponseStatus = 0;
    QList<AttendeeData> mAttendees;
};
