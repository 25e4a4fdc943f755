// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "easitems/containers/easmeetingrequestcontainer.h"
#include "storages/calendar/icalhandles.h"

#include <QByteArray>
#include <QString>

/**
 * The iCalendar invitation for a message that came with a MeetingRequest, so that the device's calendar can
 * show it and the user answer it.
 *
 * Times are in the zone of the meeting, if its block names one, and in UTC otherwise. A value for one use;
 * main thread only.
 */
class MeetingInvitation
{
public:
    MeetingInvitation(const EasMeetingRequestContainer &request, ExchangeActiveSync::ProtocolVersion version);

    /** The document; empty for a meeting without a start. */
    QByteArray encode(const QString &summary, const QString &description) const;

private:
    void appendIdentity(icalcomponent *event) const;
    void appendTimes(icalcomponent *event) const;
    void appendProposal(icalcomponent *event) const;
    void appendRecurrence(icalcomponent *event) const;
    icaltimetype zoned(const QString &time) const;
    void appendZoned(icalcomponent *event, icalproperty *property) const;
    QString uid() const;

    const EasMeetingRequestContainer mRequest;
    const ExchangeActiveSync::ProtocolVersion mVersion;
    const ICalZone mZone;
};
