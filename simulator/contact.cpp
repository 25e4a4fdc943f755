// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/contact.h"

#include "simulator/contactshape.h"
#include "simulator/datetext.h"

namespace Simulator {

const QStringList &Contact::textFields()
{
    static const QStringList fields = ContactShape::textFields();
    return fields;
}

Contact &Contact::setText(const QString &field, const QString &text)
{
    Q_ASSERT_X(textFields().contains(field), "Contact", qPrintable(field));
    if (text.isEmpty())
        mTexts.remove(field);
    else
        mTexts.insert(field, text);
    return *this;
}

Contact &Contact::setDate(const QString &field, const QDate &date)
{
    const QDateTime midnight(date, QTime(0, 0), Qt::UTC);
    return setText(field, date.isValid() ? DateText::withDashes(midnight) : QString());
}

Contact &Contact::setCategories(const QStringList &categories)
{
    mCategories = categories;
    return *this;
}

Contact &Contact::setChildren(const QStringList &children)
{
    mChildren = children;
    return *this;
}

Contact &Contact::setPicture(const QByteArray &picture)
{
    mPicture = picture;
    return *this;
}

Contact &Contact::setNote(const QString &note)
{
    mNote = note;
    return *this;
}

bool Contact::operator==(const Contact &other) const
{
    return mTexts == other.mTexts && mCategories == other.mCategories && mChildren == other.mChildren
        && mPicture == other.mPicture && mNote == other.mNote;
}

} // namespace Simulator
