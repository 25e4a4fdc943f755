// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/emailcontent.h"
#include "simulator/item.h"

#include <QStringList>

namespace Simulator {

/** A message with the marks that change after it arrived. */
class Email : public Item
{
public:
    using Ptr = std::shared_ptr<const Email>;

    /** From RFC 822 bytes; @p received defaults to the date of the message. A new message is unread. */
    static Ptr fromMessage(const QByteArray &message, const QDateTime &received = QDateTime());
    /** A draft as a 16.x client sends it. */
    static Ptr fromUpload(const WbxmlNode &applicationData, const UploadShape &upload);

    const EmailContent &content() const { return *mContent; }
    bool isRead() const { return mRead; }
    int flagStatus() const;
    const WbxmlNode &flag() const { return mFlag; }
    const QStringList &categories() const { return mCategories; }

    Ptr withRead(bool read) const;
    Ptr withFlagStatus(int status) const;
    Ptr withCategories(const QStringList &categories) const;

    QString className() const override { return QStringLiteral("Email"); }
    QDateTime date() const override { return mContent->received(); }
    ItemState state() const override { return mState; }
    QVector<WbxmlNode> elements(const ItemShape &shape) const override;
    QVector<WbxmlNode> changedElements(const ItemState &known, const ItemShape &shape) const override;
    ItemPtr withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const override;
    std::optional<ItemAttachment> attachment(int number) const override;

private:
    static Ptr sealed(const std::shared_ptr<Email> &email);

    std::shared_ptr<const EmailContent> mContent;
    bool mRead = false;
    WbxmlNode mFlag { QStringLiteral("Email:Flag") };
    QStringList mCategories;
    ItemState mState; ///< of the fields above; shared with what the devices know
};

} // namespace Simulator
