// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarwholeitem.h"

#include "easitems/eascalendaritem.h"

namespace {

struct Absence
{
    EasCalendarItem::CalendarItemParameter parameter;
    void (*clear)(EasCalendarItem &item);
};

/** Values that a server leaves out where there are none; it always sends the others. */
const Absence absences[] = {
    { EasCalendarItem::SubjectParameter,
        [](EasCalendarItem &item) {
            item.setSubject(QString());
        } },
    { EasCalendarItem::LocationParameter,
        [](EasCalendarItem &item) {
            item.setLocation(QString());
        } },
    { EasCalendarItem::BodyParameter,
        [](EasCalendarItem &item) {
            item.setBody(EasBodyContainer());
        } },
    { EasCalendarItem::CategoriesParameter,
        [](EasCalendarItem &item) {
            item.setCategories({});
        } },
    { EasCalendarItem::AttendeesParameter,
        [](EasCalendarItem &item) {
            item.setAttendees({});
        } },
    { EasCalendarItem::ReminderParameter,
        [](EasCalendarItem &item) {
            item.setReminder(-1);
        } },
    { EasCalendarItem::AllDayEventParameter,
        [](EasCalendarItem &item) {
            item.setAllDayEvent(EasCalendarItemCommon::NotAllDayEvent);
        } },
    { EasCalendarItem::RecurrenceParameter,
        [](EasCalendarItem &item) {
            item.setRecurrence(EasRecurrenceContainer());
        } },
    { EasCalendarItem::ExceptionsParameter,
        [](EasCalendarItem &item) {
            item.setExceptions({});
        } },
};

} // namespace

bool CalendarWholeItem::isWhole(const EasCalendarItem &item)
{
    return item.parameterHasBeenChanged(EasCalendarItem::StartTimeParameter)
        && item.parameterHasBeenChanged(EasCalendarItem::EndTimeParameter)
        && item.parameterHasBeenChanged(EasCalendarItem::DtStampParameter);
}

void CalendarWholeItem::complete(EasCalendarItem &item, bool withAttachments)
{
    if (!isWhole(item))
        return;
    for (const Absence &absence : absences) {
        if (!item.parameterHasBeenChanged(absence.parameter))
            absence.clear(item);
    }
    if (withAttachments && !item.parameterHasBeenChanged(EasCalendarItem::AttachmentsParameter))
        item.setAttachments({});
}
