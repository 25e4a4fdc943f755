// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"
#include "simulator/wholeitem.h"

namespace Simulator {

/** A contact in a folder. */
class ContactItem : public WholeItem
{
public:
    using Value = Contact;

    explicit ContactItem(const Contact &contact);
    static ItemPtr make(const Contact &contact) { return std::make_shared<ContactItem>(contact); }
    /** As a client sends it; null if it does not fit. */
    static ItemPtr fromUpload(const WbxmlNode &applicationData, const UploadShape &upload);

    const Contact &value() const { return mContact; }

    QString className() const override { return QStringLiteral("Contacts"); }
    QDateTime date() const override { return QDateTime(); }
    QVector<WbxmlNode> elements(const ItemShape &shape) const override;
    ItemPtr withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const override;

private:
    const Contact mContact;
};

} // namespace Simulator
