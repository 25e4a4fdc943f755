// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailmessagewriter.h"

#include <QList>

#include <memory>
#include <vector>

struct MailStoreContext;
class EasEmailItem;
class MailRecognition;
class QMailMessage;
class QMailMessageMetaData;

/**
 * Brings the messages of items into the store. One that an interrupted run has left there is adopted: it
 * takes the item's content and keeps its id and what the user did with it meanwhile. Nothing is doubled, and
 * nothing fails for ever on the store's rule that a server uid stands once in an account. An object of the
 * moment, for one batch of items.
 */
class MailMessageAdder
{
public:
    using Messages = std::vector<std::unique_ptr<QMailMessage>>;

    explicit MailMessageAdder(const MailStoreContext &context);

    /**
     * The message of an item, not yet stored; with an id if it is in the store already. Null, logged, if it
     * has no folder, cannot be built, or bears the name of another message.
     */
    std::unique_ptr<QMailMessage> messageFor(
        const EasEmailItem &item, const MailRecognition &recognition) const;

    /** Adds those without an id and updates the others; after a failure none was added. */
    bool store(const Messages &messages) const;

private:
    bool hasFolder(const EasEmailItem &item) const;
    static void adopt(QMailMessage &fresh, const QMailMessageMetaData &stored);

    const MailStoreContext &mContext;
    MailMessageWriter mWriter;
};
