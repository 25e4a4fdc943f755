// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/emailcontent.h"
#include "simulator/eventrule.h"
#include "simulator/eventzone.h"

#include <QMap>
#include <QSet>
#include <QStringList>

namespace Simulator {

struct EventAttendee
{
    QString email;
    QString name;
    int status = 0; ///< 0 unknown, 2 tentative, 3 accepted, 4 declined, 5 not responded
    int type = 1; ///< 1 required, 2 optional, 3 resource
    QDateTime proposedStart;
    QDateTime proposedEnd;

    bool operator==(const EventAttendee &other) const;
};

/** A file of an event, which devices see from 16.0 on. */
struct EventAttachment
{
    int number = 0; ///< in the file reference; never used again in the same event
    QString name;
    QByteArray contentType;
    QByteArray bytes;
    QString contentId;
    QString clientId; ///< as the device called it that sent it
    bool isInline = false;

    bool operator==(const EventAttachment &other) const;
};

/** A place: its name, and what devices see of it from 16.0 on. */
struct EventPlace
{
    QString name;
    QMap<QString, QString> parts; ///< "Street", "City", ... as the elements are called

    bool operator==(const EventPlace &other) const { return name == other.name && parts == other.parts; }
};

/** What an event has and what can be otherwise in one of its occurrences. */
struct EventDetails
{
    /** Instants; of an all-day event the midnights of its dates as if they were in UTC, the end not included.
     */
    QDateTime start;
    QDateTime end;
    bool allDay = false;
    QString subject;
    EventPlace location;
    EmailBodies body;
    QStringList categories;
    QVector<EventAttendee> attendees;
    QVector<EventAttachment> attachments;
    int reminder = -1; ///< minutes before the start; -1 for none
    int sensitivity = 0; ///< 0 normal, 1 personal, 2 private, 3 confidential
    int busyStatus = 2; ///< 0 free, 1 tentative, 2 busy, 3 away
    int meetingStatus = 0; ///< 0 no meeting, 1 own one, 3 invited, 5 and 7 the same when cancelled
    int responseType = -1; ///< 0 none, 1 organizer, 2 to 5 as in EventAttendee; -1: from the meeting status
    QDateTime replyTime;
    QDateTime stamp;
    QString conferenceLink;
    QString externalLink;
};

/** An occurrence that is not as the others are. */
struct EventException
{
    QDateTime original; ///< where its start would be; for an all-day event as EventDetails::start
    bool isDeleted = false;
    EventDetails details; ///< of these count those in @ref own
    QSet<QString> own; ///< names of fields as in EventFields, which are those of elements: "Subject"
};

/**
 * An event or a series as the server keeps it, in a form of no protocol version. A value type, for tests as
 * well: they fill one and add it, or edit the one that is there.
 */
struct Event : EventDetails
{
    EventZone zone; ///< where it was made; a series keeps its time of day there
    QString uid;
    QString organizerName;
    QString organizerEmail;
    bool responseRequested = false;
    bool disallowNewTimeProposal = false;
    std::optional<EventRule> rule;
    QVector<EventException> exceptions; ///< in the order of their original starts
    int lastAttachment = 0; ///< highest number so far

    /** By wall times in a zone: "Europe/Berlin", 2026-03-02 09:30, 90 minutes. */
    static Event timed(const QString &subject, const QByteArray &ianaId, const QDateTime &wall, int minutes);
    static Event wholeDay(const QString &subject, const QDate &first, int days = 1);

    /** Adds a file and returns it. */
    EventAttachment &attach(const QString &name, const QByteArray &bytes);

    /** The start that the occurrence on that day has by the rule: the key of its exception. */
    QDateTime originalOn(const QDate &day) const;
    /** Whether the series has an occurrence that starts then by the rule. */
    bool hasOccurrence(const QDateTime &original) const;
    /** The exception of that occurrence, or null. */
    const EventException *exceptionAt(const QDateTime &original) const;
    /** The same, made if there is none. */
    EventException &exceptionFor(const QDateTime &original);
    /** Deletes one occurrence. */
    void deleteOccurrence(const QDate &day);
    /** Changes one occurrence: what differs afterwards from what it was is its own. */
    void editOccurrence(const QDate &day, const std::function<void(EventDetails &)> &change);
    /** All details of an exception, its own and those of the series. */
    EventDetails detailsOf(const EventException &exception) const;
    /** All details of an occurrence as it is by the rule. */
    EventDetails occurrenceAt(const QDateTime &original) const;

    /** What is different, by name, for a person to read; zones count by their offsets. Empty if nothing is.
     */
    QStringList differences(const Event &other) const;
};

} // namespace Simulator
