// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/appdataparserbase.h"
#include "easitems/eascalendaritem.h"
#include "easitems/fields/fieldtable.h"

/**
 * Builds an event, with the exceptions of its series, from the elements inside ApplicationData.
 *
 * A field that does not convert is logged and left out; the event survives without it. An empty subject or
 * location in an exception counts as set, because it clears what the series has.
 */
class CalendarAppDataParser : public AppDataParserBase
{
    Q_OBJECT

public:
    explicit CalendarAppDataParser(QObject *parent = nullptr);

    EasCalendarItem calendarItem() const { return mItem; }
    void setBodyContainer(const EasBodyContainer &body) { mItem.setBody(body); }
    void reset();

    void onStartElement(uint page, uint token) override;
    void onEndElement(uint page, uint token) override;
    void onContent(uint page, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum State {
        AtItem = 0,
        InLocation = 1,
        InAttachments = 2,
        InExceptions = 3,
        InExceptionLocation = 4,
        InExceptionAttachments = 5
    };

    bool inAttachments() const;
    /** The exception or the event, whichever the parser is in. */
    EasCalendarItem &levelItem();
    void startLocation();
    void endAttachments();
    FieldResult store(uint key, const QString &text, const QByteArray &raw);
    FieldResult storeDisplayName(const QString &text);
    FieldResult storeOfBody(uint key, const QString &text, const QByteArray &raw);
    void storeProposedTime(uint key, const QString &text);
    static bool isKnown(uint key);

    State mState = AtItem;
    EasCalendarItem mItem;
    EasRecurrenceContainer mRecurrence;
    EasAttachmentContainer mAttachment;
    QList<EasAttachmentContainer> mAttachments;
    EasCalendarItem mException;
    QList<EasCalendarItem> mExceptions;
    EasAttendeeContainer mAttendee;
    QList<EasAttendeeContainer> mAttendees;
    QStringList mCategories;
};
