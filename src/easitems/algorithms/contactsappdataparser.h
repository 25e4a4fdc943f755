// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/appdataparserbase.h"
#include "easitems/eascontactsitem.h"

/**
 * Builds a contact from the elements inside ApplicationData.
 *
 * Each stored field is entered in the item's changed fields. A field that does not convert is logged and left
 * out; the item survives without it.
 */
class ContactsAppDataParser : public AppDataParserBase
{
    Q_OBJECT

public:
    explicit ContactsAppDataParser(QObject *parent = nullptr);

    EasContactsItem contactItem() const { return mItem; }
    void setBodyContainer(const EasBodyContainer &body) { mItem.setBody(body); }
    void reset();

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &data) override;

private:
    bool isKnown(uint key) const;
    bool storeOfBody(uint key, const QString &text, const QByteArray &data);

    EasContactsItem mItem;
    QStringList mCategories;
    QStringList mChildren;
};
