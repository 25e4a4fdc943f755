// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDBusArgument>
#include <QMetaType>
#include <QString>

#include <array>

/** One entry of the global address list, twelve texts. Travels as (ssssssssssss) in the order of the getters.
 */
class GalItem
{
public:
    QString alias() const;
    QString company() const;
    QString displayName() const;
    QString emailAddress() const;
    QString firstName() const;
    QString homePhone() const;
    QString lastName() const;
    QString mobilePhone() const;
    QString office() const;
    QString phone() const;
    QString title() const;
    QString pictureData() const;

    void setAlias(const QString &alias);
    void setCompany(const QString &company);
    void setDisplayName(const QString &displayName);
    void setEmailAddress(const QString &emailAddress);
    void setFirstName(const QString &firstName);
    void setHomePhone(const QString &homePhone);
    void setLastName(const QString &lastName);
    void setMobilePhone(const QString &mobilePhone);
    void setOffice(const QString &office);
    void setPhone(const QString &phone);
    void setTitle(const QString &title);
    void setPictureData(const QString &pictureData);

    bool operator==(const GalItem &other) const { return mTexts == other.mTexts; }
    bool operator!=(const GalItem &other) const { return mTexts != other.mTexts; }

private:
    friend QDBusArgument &operator<<(QDBusArgument &argument, const GalItem &item);
    friend const QDBusArgument &operator>>(const QDBusArgument &argument, GalItem &item);

    /** The order on the wire. */
    enum Field : std::size_t {
        Alias,
        Company,
        DisplayName,
        EmailAddress,
        FirstName,
        HomePhone,
        LastName,
        MobilePhone,
        Office,
        Phone,
        Title,
        PictureData,
        FieldCount
    };

    std::array<QString, FieldCount> mTexts;
};

Q_DECLARE_METATYPE(GalItem)

QDBusArgument &operator<<(QDBusArgument &argument, const GalItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, GalItem &item);
