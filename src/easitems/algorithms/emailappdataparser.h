// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/appdataparserbase.h"
#include "easitems/easemailitem.h"
#include "easitems/fields/fieldtable.h"

/**
 * Builds a mail item from the elements inside ApplicationData or Properties.
 *
 * While setChangeItem() is on, each stored field is entered in the item's changed fields, and so are lists
 * and flags that came empty, which clears them. A field that does not convert is logged and left out; the
 * item survives without it.
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
    /** What of an item can be open; more than one at a time. */
    enum Place : uint {
        InItem = 1,
        InBody = 2,
        InBodyPart = 4,
        InAttachment = 8,
        InAttachments = 16,
        InFlag = 32,
        InCategories = 64,
        InMeetingRequest = 128,
        InMeetingPlace = 256,
        InRecurrences = 512,
        InRecurrence = 1024,
    };
    struct Container;
    struct Member;

    static const Container *containerOf(uint key);
    const Member *memberOf(uint key) const;
    static bool isKnown(uint key);
    void recordChange(uint key);

    template <auto Table, auto Object> FieldResult take(uint key, const QString &text, const QByteArray &raw);
    FieldResult takeCategory(uint key, const QString &text, const QByteArray &raw);
    FieldResult takeMeetingPlace(uint key, const QString &text, const QByteArray &raw);
    FieldResult dropSize(uint key, const QString &text, const QByteArray &raw);

    void beginBody() { mBody.clear(); }
    void endBody();
    void beginBodyPart() { mBodyPart.clear(); }
    void endBodyPart();
    void beginAttachment() { mAttachment.clear(); }
    void endAttachment();
    void beginAttachments() { mAttachments.clear(); }
    void endAttachments();
    void beginFlag() { mFlag.clear(); }
    void endFlag();
    void beginCategories() { mCategories.clear(); }
    void endCategories();
    void beginMeetingRequest() { mMeetingRequest.clear(); }
    void endMeetingRequest();
    void beginRecurrences() { mRecurrences.clear(); }
    void endRecurrences();
    void beginRecurrence() { mRecurrence.clear(); }
    void endRecurrence();
    void nothing() {}

    bool mIsChangeItem = false;
    uint mOpen = InItem;
    /** The element that began last; a container that still is it at its end holds nothing. */
    uint mLastStarted = 0;
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
