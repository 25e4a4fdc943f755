// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>
#include <QStringList>

class WbxmlEncoder;

/**
 * What a Search looks for: people of the address list by parts of their names, or mail by conditions that all
 * have to hold. With a text for the address list the conditions for mail do not count. A plain value.
 */
class SearchQuery
{
public:
    /** Looked for in subjects, senders and bodies. */
    QString freeText() const { return mFreeText; }
    void setFreeText(const QString &text) { mFreeText = text; }
    QString conversationId() const { return mConversationId; }
    void setConversationId(const QString &id) { mConversationId = id; }
    /** Received after and before these moments, as the protocol writes them. */
    QString greaterThan() const { return mGreaterThan; }
    void setGreaterThan(const QString &time) { mGreaterThan = time; }
    QString lessThan() const { return mLessThan; }
    void setLessThan(const QString &time) { mLessThan = time; }
    /** The link of a document. */
    QString equalTo() const { return mEqualTo; }
    void setEqualTo(const QString &link) { mEqualTo = link; }
    /** Parts of names or addresses of people. */
    QString galQuery() const { return mGalQuery; }
    void setGalQuery(const QString &text) { mGalQuery = text; }
    QStringList classes() const { return mClasses; }
    void appendClass(const QString &name) { mClasses.append(name); }
    /** Server identifiers of folders; none for the whole mailbox. */
    QStringList collectionIds() const { return mCollectionIds; }
    void appendCollectionId(const QString &id) { mCollectionIds.append(id); }

    void encode(WbxmlEncoder &encoder) const;

private:
    void encodeConditions(WbxmlEncoder &encoder) const;

    QString mFreeText;
    QString mConversationId;
    QString mGreaterThan;
    QString mLessThan;
    QString mEqualTo;
    QString mGalQuery;
    QStringList mClasses;
    QStringList mCollectionIds;
};
