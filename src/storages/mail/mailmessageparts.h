// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <qmailmessage.h>

struct MailStoreContext;
class EasBodyContainer;

/**
 * The body and the attachments of one stored message, by its number in the store and the locations of its
 * parts. Of a message or a part that is not there nothing is known, which is logged where something was to
 * be written. An object of the moment; main thread only.
 */
class MailMessageParts
{
public:
    explicit MailMessageParts(const MailStoreContext &context);

    /** A fuller body that is there stays, and that is true; one that is cut short is not stored. */
    bool updateBody(quint64 messageId, const EasBodyContainer &body) const;
    /** Puts fetched content into its part. */
    bool fill(quint64 messageId, const QString &location, const QString &contentType, const QByteArray &data,
        const QString &fileName) const;

    QStringList locations(quint64 messageId, bool downloaded) const;
    bool isDownloaded(quint64 messageId, const QString &location) const;
    EasItemsCommon::TBoolean isAttachment(quint64 messageId, const QString &location) const;
    QString fileReference(quint64 messageId, const QString &location) const;
    int estimatedSize(quint64 messageId, const QString &location) const;

private:
    QMailMessage stored(quint64 messageId) const;
    template <typename Result, typename Query>
    Result fromPart(quint64 messageId, const QString &location, const Result &none, Query query) const;

    const MailStoreContext &mContext;
};
