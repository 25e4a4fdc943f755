// SPDX-License-Identifier: LGPL-2.1-or-later
// To be included by one source file of each program or library that uses the detail.
#pragma once

#include "qcontactstatusflags.h"

QT_BEGIN_NAMESPACE_CONTACTS

const QContactDetail::DetailType QContactStatusFlags::Type(
    static_cast<QContactDetail::DetailType>(QContactDetail::TypeVersion + 2));

void QContactStatusFlags::setFlag(Flag flag, bool b)
{
    setFlagsValue(b ? flagsValue() | quint64(flag) : flagsValue() & ~quint64(flag));
}

void QContactStatusFlags::setFlags(Flags flags)
{
    setFlagsValue(quint64(flags));
}

QContactStatusFlags::Flags QContactStatusFlags::flags() const
{
    return Flags(QFlag(int(flagsValue())));
}

bool QContactStatusFlags::testFlag(Flag flag) const
{
    return (flagsValue() & quint64(flag)) != 0;
}

void QContactStatusFlags::setFlagsValue(quint64 value)
{
    setValue(FieldFlags, value);
}

quint64 QContactStatusFlags::flagsValue() const
{
    return value<quint64>(FieldFlags);
}

QT_END_NAMESPACE_CONTACTS
