// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QHash>
#include <QList>

/**
 * Reads the reply of a ResolveRecipients that asked for availability. It is ready only behind the end of the
 * root: an empty reply is no answer.
 *
 * Each recipient is a row; a person whom the server does not know is one with the address that was asked for
 * and without a state. What no server has reason to send is bounded: more than a thousand rows refuse the
 * reply, a state longer than the protocol allows counts as none.
 */
class AttendeesAvailableResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    struct AttendeeData
    {
        QString email;
        QString name;
        /** A digit for each half hour: 0 free, 1 tentative, 2 busy, 3 out of office, 4 not known; empty if
         * the server does not tell. */
        QString status;
    };

    explicit AttendeesAvailableResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** Of the command; 0 if the reply holds none. */
    int status() const { return mStatus; }
    /** 1 if the server has found anybody, else what it said of the first one; 0 if it said nothing. */
    int responseStatus() const { return mResponseStatus; }
    QList<AttendeeData> attendees() const { return mAttendees; }
    /** Null without a row of that address, whose case does not count; holds until the next parse(). */
    const AttendeeData *findAttendee(const QString &email) const;

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    /** Whether the innermost open element stands in that one. */
    bool isIn(Wbxml::Token parent) const;
    void onStatus(int status);
    void takeResponseStatus(int status);
    void endRecipient();
    void endResponse();
    void append(const AttendeeData &attendee);

    bool mHasEnded = false;
    int mStatus = 0;
    int mResponseStatus = 0;
    QString mAskedFor;
    bool mHasRecipient = false;
    AttendeeData mCurrent;
    int mAvailabilityStatus = 0;
    QList<AttendeeData> mAttendees;
    QHash<QString, int> mIndexes;
};
