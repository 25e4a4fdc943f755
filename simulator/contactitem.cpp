// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/contactitem.h"

#include "simulator/contactshape.h"

namespace Simulator {

ContactItem::ContactItem(const Contact &contact)
    : mContact(contact)
{
}

ItemPtr ContactItem::fromUpload(const WbxmlNode &applicationData, const UploadShape &upload)
{
    const auto contact = ContactShape::changed(Contact(), applicationData, upload);
    return contact ? make(*contact) : nullptr;
}

QVector<WbxmlNode> ContactItem::elements(const ItemShape &shape) const
{
    return ContactShape::elements(mContact, shape);
}

ItemPtr ContactItem::withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const
{
    const auto contact = ContactShape::changed(mContact, applicationData, upload);
    return contact ? make(*contact) : nullptr;
}

} // namespace Simulator
