// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailglobal.h>

#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>

/**
 * One address of a message: an optional display name and the address proper, or a named group of addresses.
 * Encoded words of a name are left as they are; whoever reads a header decodes them first.
 */
class QMF_EXPORT QMailAddress
{
public:
    QMailAddress() = default;
    explicit QMailAddress(const QString &addressText);
    QMailAddress(const QString &name, const QString &emailAddress);

    bool isNull() const;
    QString name() const;
    QString address() const;
    bool isGroup() const;
    QList<QMailAddress> groupMembers() const;
    bool isEmailAddress() const;
    bool isPhoneNumber() const;
    QString toString(bool forceDelimited = false) const;

    bool operator==(const QMailAddress &other) const;
    bool operator!=(const QMailAddress &other) const;

    static QStringList toStringList(const QList<QMailAddress> &list, bool forceDelimited = false);
    static QList<QMailAddress> fromStringList(const QString &list);
    static QList<QMailAddress> fromStringList(const QStringList &list);

private:
    QString mName;
    QString mAddress;
    bool mGroup = false;
};

Q_DECLARE_METATYPE(QMailAddress)
