// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContactDetail>

#include <QFlags>

QT_BEGIN_NAMESPACE_CONTACTS

/** What the engine knows of a contact at a glance: what it has, and which change is pending on it. */
class QContactStatusFlags : public QContactDetail
{
public:
    Q_DECLARE_CUSTOM_CONTACT_DETAIL(QContactStatusFlags)

    enum { FieldFlags = 0 };

    enum Flag {
        HasPhoneNumber = 1,
        HasEmailAddress = 2,
        HasOnlineAccount = 4,
        IsOnline = 8,
        IsDeactivated = 16,
        IsAdded = 32,
        IsModified = 64,
        IsDeleted = 128
    };
    Q_DECLARE_FLAGS(Flags, Flag)

    void setFlag(Flag flag, bool b);
    void setFlags(Flags flags);
    Flags flags() const;
    bool testFlag(Flag flag) const;

    void setFlagsValue(quint64 value);
    quint64 flagsValue() const;
};

QT_END_NAMESPACE_CONTACTS

Q_DECLARE_OPERATORS_FOR_FLAGS(QTCONTACTS_PREPEND_NAMESPACE(QContactStatusFlags)::Flags)
