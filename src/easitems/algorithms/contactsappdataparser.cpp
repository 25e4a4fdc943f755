// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/contactsappdataparser.h"

#include "application/base/logging.h"
#include "easitems/fields/contactsfields.h"

#include <QDebug>

using namespace Wbxml;

ContactsAppDataParser::ContactsAppDataParser(QObject *parent)
    : AppDataParserBase(parent)
{
}

void ContactsAppDataParser::reset()
{
    mItem.clear();
    mCategories.clear();
    mChildren.clear();
}

void ContactsAppDataParser::onStartElement(uint codePage, uint token)
{
    const uint tag = key(codePage, token);
    if (tag == Contacts::Categories) {
        mCategories.clear();
    } else if (tag == Contacts::Children) {
        mChildren.clear();
    } else if (!isKnown(tag)) {
        logUnhandledElement(codePage, token);
    }
}

void ContactsAppDataParser::onEndElement(uint codePage, uint token)
{
    const uint tag = key(codePage, token);
    if (tag == Contacts::Categories) {
        mItem.setCategories(mCategories);
        mCategories.clear();
    } else if (tag == Contacts::Children) {
        mItem.setChildren(mChildren);
        mChildren.clear();
    } else if (!isKnown(tag)) {
        logUnhandledElement(codePage, token);
    }
}

void ContactsAppDataParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &data)
{
    const uint tag = key(codePage, token);
    switch (tag) {
    case Contacts::Categories:
    case Contacts::Children:
    case AirSyncBase::Body:
        return;
    case Contacts::Category:
        mCategories.append(text);
        break;
    case Contacts::Child:
        mChildren.append(text);
        break;
    default:
        switch (ContactsFields::itemFields().take(mItem, tag, text, data, mMentions)) {
        case FieldResult::Stored:
            break;
        case FieldResult::Refused:
            return;
        case FieldResult::Unknown:
            if (!storeOfBody(tag, text, data)) {
                return;
            }
        }
    }
    mItem.appendChangedField(tag);
}

bool ContactsAppDataParser::storeOfBody(uint key, const QString &text, const QByteArray &data)
{
    EasBodyContainer body = mItem.body();
    FieldResult result = FieldResult::Stored;
    if (key == AirSyncBase::BodyPart) {
        int part = 0;
        if (stringToInt(text, part)) {
            body.setPart(part);
        } else {
            if (mMentions.isFirst("number", key))
                qCWarning(eas()) << "Cannot convert to int:" << text;
            result = FieldResult::Refused;
        }
    } else {
        result = ContactsFields::bodyFields().take(body, key, text, data, mMentions);
    }
    if (result == FieldResult::Unknown) {
        logUnhandledField(text, key / 256, key % 256);
    } else {
        mItem.setBody(body);
    }
    return result == FieldResult::Stored;
}

bool ContactsAppDataParser::isKnown(uint key) const
{
    switch (key) {
    case Contacts::Categories:
    case Contacts::Category:
    case Contacts::Children:
    case Contacts::Child:
    case AirSyncBase::Body:
    case AirSyncBase::BodyPart:
        return true;
    default:
        return ContactsFields::itemFields().receives(key) || ContactsFields::bodyFields().receives(key);
    }
}
