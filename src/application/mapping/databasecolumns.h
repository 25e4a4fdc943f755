// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <functional>

/** Columns of a batch statement, made from lists of items. */
namespace DatabaseColumns {

/** A text as the tables keep it: empty where the item has none, never NULL. */
inline QVariant stored(const QString &text)
{
    return text.isNull() ? QVariant(QStringLiteral("")) : QVariant(text);
}

inline QVariant stored(const QVariant &value)
{
    return value;
}

/** One value of each item, by a getter or any other function of the item. */
template <typename Item, typename Getter> QVariantList column(const QList<Item> &items, Getter getter)
{
    QVariantList values;
    values.reserve(items.size());
    std::transform(items.cbegin(), items.cend(), std::back_inserter(values),
        [&getter](const Item &item) { return stored(std::invoke(getter, item)); });
    return values;
}

/** The same value in every row. */
inline QVariantList repeated(const QVariant &value, int rows)
{
    QVariantList values;
    values.reserve(rows);
    std::fill_n(std::back_inserter(values), rows, value);
    return values;
}

/** Lets the database assign the identifiers of the rows. */
inline QVariantList assignedIds(int rows)
{
    return repeated(QVariant(QVariant::Int), rows);
}

} // namespace DatabaseColumns
