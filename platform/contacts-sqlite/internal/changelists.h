// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qcontactstatusflags_impl.h>

#include <QList>

/** Where changed items go, by their flags: deleted beats added beats modified. Null for what is not asked
 * for. */
template <typename Item> struct ChangeLists
{
    QList<Item> *added;
    QList<Item> *modified;
    QList<Item> *deleted;
    QList<Item> *unmodified;

    void sortIn(const Item &item, int flags) const
    {
        QList<Item> *list = flags & QtContacts::QContactStatusFlags::IsDeleted ? deleted
            : flags & QtContacts::QContactStatusFlags::IsAdded                 ? added
            : flags & QtContacts::QContactStatusFlags::IsModified              ? modified
                                                                               : unmodified;
        if (list)
            list->append(item);
    }
};
