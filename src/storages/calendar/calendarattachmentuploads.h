// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"

#include <KCalendarCore/Event>

/**
 * The attachments that go up with local changes: files without a row of the mapping are new to the server,
 * rows whose file has gone name what is to be deleted there. The rows change with the server's answer alone:
 * an upload that failed brings the files once more, and a file that was taken never goes up again, though its
 * reference may not be known yet.
 */
namespace CalendarAttachmentUploads {

/** From 16.0 on. False if the mapping cannot be read. */
bool applyAttachments(const KCalendarCore::Event::Ptr &event, EasCalendarItem &item);
/** The server has taken what went up with an event or an exception. False if the mapping fails; it may be
 * settled again. */
bool settle(const QString &eventKey, const QList<EasAttachmentContainer> &sent);

} // namespace CalendarAttachmentUploads
