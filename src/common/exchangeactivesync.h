// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QTimeZone>

/** Constants and helpers that the engine and its clients share. */
namespace ExchangeActiveSync {

/** Protocol versions in use; the high byte is the major version, so they compare as integers. */
enum ProtocolVersion {
    ProtocolVersionUnknown = 0,
    ProtocolVersion120 = 0x1200,
    ProtocolVersion121 = 0x1201,
    ProtocolVersion140 = 0x1400,
    ProtocolVersion141 = 0x1401,
    ProtocolVersion160 = 0x1600,
    ProtocolVersion161 = 0x1601
};

// Where the daemon is found on the session bus and on its peer connections.
extern const QString EAS_DBUS_SERVICE_NAME;
extern const QString EAS_DBUS_PATH_NAME;
extern const QString EAS_DBUS_PEER_PATH_NAME;
/** "unix:path=" and a socket in the user's runtime folder; taken from the environment at start. */
extern const QString EAS_DBUS_PEER_ADDRESS;

// Custom fields of a message in the mail store, and the classes of meeting messages.
extern const QString MESSAGE_CLASS_FIELD;
extern const QString MESSAGE_GLOBAL_OBJ_ID;
extern const QString MESSAGE_CLASS_MEETING_REQUEST;
extern const QString MESSAGE_CLASS_MEETING_REQUEST_ACCEPT;
extern const QString MESSAGE_CLASS_MEETING_REQUEST_DECLINE;
extern const QString MESSAGE_CLASS_MEETING_REQUEST_TENTATIVE;
extern const QString MESSAGE_CLASS_MEETING_REQUEST_CANCELLED;

// Events in the calendar store: values and the names of their custom properties.
extern const QString CalendarICalVersion;
extern const QString CalendarBoolValueTrue;
extern const QString CalendarBoolValueFalse;
extern const QString ExchangeCalendarPluginName;
extern const QString CalendarUidParamName;
extern const QString CalendarRemoteUidParamName;
extern const QString CalendarBusyStatusParamName;
extern const QString CalendarSensitivityParamName;
extern const QString CalendarMeetingStatusParamName;
extern const QString CalendarResponseRequestedParamName;
extern const QString CalendarResponseTypeParamName;
extern const QString CalendarAppointmentReplyTimeParamName;
extern const QString CalendarDisallowCounterParamName;
extern const QString CalendarProposedStartTimeParamName;
extern const QString CalendarProposedEndTimeParamName;
extern const QString CalendarMsAlldayParamName;
extern const QString CalendarNativeBodyTypeParamName;
extern const QString CalendarMeetingExtLinkParamName;
extern const QString CalendarMeetingConfLinkParamName;

/**
 * A time as the protocol writes it: "2024-05-01T10:00:00.000Z", "20240501T100000Z" or a date alone.
 *
 * A time without an offset is UTC. The result is in the zone, or in UTC without one; invalid if the text is
 * no such time.
 */
QDateTime dateTimeFromString(const QString &text, const QTimeZone *zone);

/** The time in UTC in the form "20240501T100000Z", or an empty text for an invalid time. */
QString dateTimeToString(const QDateTime &dateTime);

/** The UID of the event that a meeting message's global object identifier (base64, as sent) stands for, or an
 * empty text if it is none. */
QString getCalendarUidFromGlobalObjId(const QByteArray &globalObjId);

/** Splits the content type of an attachment: "image/png; name=a.png" gives "image/png" and "a.png". A part
 * that is missing becomes an empty text; either pointer may be null. */
void getTypeParts(const QString &contentType, QString *mediaType, QString *name);

} // namespace ExchangeActiveSync
