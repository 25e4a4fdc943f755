// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <qmailmessagebody.h>

#include <optional>

class EasBodyContainer;
class QMailMessage;
class QMailMessagePartContainer;

/** Puts the body of an item into a message and the calendar part of a meeting beside it. */
namespace MailBodyWriter {

/**
 * Sets body, preview and the two flags that tell how much of the body is there.
 *
 * A truncated body is never stored: it only sets the flags and, if asked for, the preview. A MIME body takes
 * the place of the whole message, unless it is empty; what ties the message to the store and to the server
 * stays.
 */
void setMessageBody(QMailMessage &message, const EasBodyContainer &body, bool setPreview);

/**
 * Whether the message has all of its body, and in a form that says more than this one: a whole body more than
 * one that is cut short or empty, HTML more than plain text.
 */
bool isFullerThan(const QMailMessage &message, const EasBodyContainer &body);

/** Sets a preview that stands beside a body; a plain set would be dropped at the next look at the body. */
void setPreview(QMailMessage &message, const QString &preview);

/** The text of the plain or else the HTML body; empty if there is neither. */
QString bodyText(const QMailMessage &message);

/** Moves the content into a first part and appends the iCalendar data of an invitation as the alternative to
 * it. */
void addCalendarPart(QMailMessage &message, const QByteArray &iCalendar);

/** The iCalendar data of a message, wherever they stand in it; nothing if it has none. */
std::optional<QMailMessageBody> calendarBody(const QMailMessage &message);

/** Puts the iCalendar reply to an invitation in the place of the calendar part, or beside the content. */
void setCalendarReply(QMailMessage &message, const QByteArray &iCalendar);

/**
 * Drops all attachments, inline ones too, and leaves the text body and, if there is one, the calendar part.
 * Changing them in place would wrap the structure one level deeper each time.
 */
void rebuildWithoutAttachments(QMailMessage &message);

} // namespace MailBodyWriter
