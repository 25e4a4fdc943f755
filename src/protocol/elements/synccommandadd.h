// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easemailitem.h"
#include "protocol/elements/synccommandbase.h"

#include <QList>

/** Uploads new items of one class, whole. The server answers each with its identifier by the local one. */
class SyncCommandAdd : public SyncCommandBase
{
    Q_OBJECT

public:
    explicit SyncCommandAdd(QObject *parent = nullptr);

    QList<EasEmailItem> emailItems() const { return mEmailItems; }
    void setEmailItems(const QList<EasEmailItem> &items) { mEmailItems = items; }
    void appendEmailItem(const EasEmailItem &item) { mEmailItems.append(item); }
    QList<EasCalendarItem> calendarItems() const { return mCalendarItems; }
    void setCalendarItems(const QList<EasCalendarItem> &items) { mCalendarItems = items; }
    void appendCalendarItem(const EasCalendarItem &item) { mCalendarItems.append(item); }
    QList<EasContactsItem> contactsItems() const { return mContactsItems; }
    void setContactItems(const QList<EasContactsItem> &items) { mContactsItems = items; }
    void appendContactsItem(const EasContactsItem &item) { mContactsItems.append(item); }

    Type type() const override;

    using SyncCommandBase::encode;
    void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const override;

protected:
    /** Each opens ApplicationData under the current node, fills it and closes it. */
    virtual void encodeEmailItem(
        const EasEmailItem &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;
    virtual void encodeCalendarItem(const EasCalendarItem &item, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version) const;
    virtual void encodeContactsItem(const EasContactsItem &item, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version) const;

private:
    bool openItem(const EasGeneralItem &item, const QString &itemClass, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version) const;
    /** Each goes as a change of its own: from 16.0 on a series does not hold its exceptions. */
    void encodeChangedExceptions(const EasCalendarItem &item, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version) const;

    QList<EasEmailItem> mEmailItems;
    QList<EasCalendarItem> mCalendarItems;
    QList<EasContactsItem> mContactsItems;
};
