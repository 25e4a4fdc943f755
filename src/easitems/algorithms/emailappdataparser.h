// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/appdataparserbase.h"
#include "easitems/easemailitem.h"
#include "easitems/fields/fieldtable.h"

/**
 * Builds a mail item from the elements inside ApplicationData or Properties.
 *
 * While setChangeItem() is on, each stored field is entered in the item's changed fields. A field that does
 * not convert is logged and left out; the item survives without it.
 */
class EmailAppDataParser : public AppDataParserBase
{
    Q_OBJECT

public:
    explicit EmailAppDataParser(QObject *parent = nullptr);

    EasEmailItem mailItem() const { return mItem; }
    void setBodyContainer(const EasBodyContainer &body) { mItem.setBody(body); }
    bool isChangeItem() const { return mIsChangeItem; }
    void setChangeItem(bool isChangeItem) { mIsChangeItem = isChangeItem; }

    /** Starts the next item; whether it is a change stays as it is. */
    void reset();

    void onStartElement(uint page, uint token) override;
    void onEndElement(uint page, uint token) override;
    void onContent(uint page, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum FieldContext { NoContext = 0, InBody = 1, InBodyPart = 2, InAttachment = 3 };

    FieldResult store(uint key, const QString &text, const QByteArray &raw);
    FieldResult storeByContext(uint key, const QString &text, const QByteArray &raw);
    FieldResult storeOfMeeting(uint key, const QString &text, const QByteArray &raw);
    void endRecurrences();
    static bool isKnown(uint key);

    FieldContext mFieldContext = NoContext;
    bool mIsChangeItem = false;
    bool mInMeetingRequest = false;
    bool mInMeetingLocation = false;
    EasEmailItem mItem;

    // Under construction
    EasBodyContainer mBody;
    EasBodyPartContainer mBodyPart;
    EasAttachmentContainer mAttachment;
    EasFlagContainer mFlag;
    EasMeetingRequestContainer mMeetingRequest;
    EasRecurrenceContainer mRecurrence;
    QStringList mCategories;
    QList<EasRecurrenceContainer> mRecurrences;
    QList<EasAttachmentContainer> mAttachments;
};
