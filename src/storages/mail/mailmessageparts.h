// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <qmailmessage.h>

struct MailStoreContext;
struct MessagePartContent;
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
    /** Puts fetched contents into their parts and writes the message once; all or nothing. */
    bool fill(quint64 messageId, const QList<MessagePartContent> &parts) const;

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
