// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

struct MailStoreContext;
class EasEmailItem;
class QMailMessage;

/** Applies the changed fields of an item to a stored message, and nothing but those. */
class MailMessageChanges
{
public:
    explicit MailMessageChanges(const MailStoreContext &context);

    void setChangesToEmailMessage(QMailMessage &message, const EasEmailItem &item) const;

private:
    const MailStoreContext &mContext;
};
