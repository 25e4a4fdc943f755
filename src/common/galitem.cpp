// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/galitem.h"

QString GalItem::alias() const
{
    return mTexts[Alias];
}

QString GalItem::company() const
{
    return mTexts[Company];
}

QString GalItem::displayName() const
{
    return mTexts[DisplayName];
}

QString GalItem::emailAddress() const
{
    return mTexts[EmailAddress];
}

QString GalItem::firstName() const
{
    return mTexts[FirstName];
}

QString GalItem::homePhone() const
{
    return mTexts[HomePhone];
}

QString GalItem::lastName() const
{
    return mTexts[LastName];
}

QString GalItem::mobilePhone() const
{
    return mTexts[MobilePhone];
}

QString GalItem::office() const
{
    return mTexts[Office];
}

QString GalItem::phone() const
{
    return mTexts[Phone];
}

QString GalItem::title() const
{
    return mTexts[Title];
}

QString GalItem::pictureData() const
{
    return mTexts[PictureData];
}

void GalItem::setAlias(const QString &alias)
{
    mTexts[Alias] = alias;
}

void GalItem::setCompany(const QString &company)
{
    mTexts[Company] = company;
}

void GalItem::setDisplayName(const QString &displayName)
{
    mTexts[DisplayName] = displayName;
}

void GalItem::setEmailAddress(const QString &emailAddress)
{
    mTexts[EmailAddress] = emailAddress;
}

void GalItem::setFirstName(const QString &firstName)
{
    mTexts[FirstName] = firstName;
}

void GalItem::setHomePhone(const QString &homePhone)
{
    mTexts[HomePhone] = homePhone;
}

void GalItem::setLastName(const QString &lastName)
{
    mTexts[LastName] = lastName;
}

void GalItem::setMobilePhone(const QString &mobilePhone)
{
    mTexts[MobilePhone] = mobilePhone;
}

void GalItem::setOffice(const QString &office)
{
    mTexts[Office] = office;
}

void GalItem::setPhone(const QString &phone)
{
    mTexts[Phone] = phone;
}

void GalItem::setTitle(const QString &title)
{
    mTexts[Title] = title;
}

void GalItem::setPictureData(const QString &pictureData)
{
    mTexts[PictureData] = pictureData;
}

QDBusArgument &operator<<(QDBusArgument &argument, const GalItem &item)
{
    argument.beginStructure();
    for (const QString &text : item.mTexts)
        argument << text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, GalItem &item)
{
    argument.beginStructure();
    for (QString &text : item.mTexts)
        argument >> text;
    argument.endStructure();
    return argument;
}
