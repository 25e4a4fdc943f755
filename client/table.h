// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

/** One column of a table: the key of its values, and what stands above them. */
struct Column
{
    const char *key;
    const char *heading;
};

using Columns = QList<Column>;

/** Rows of values as lines for people. */
namespace Table {

/**
 * A line of headings and one for each row. The lines fit into so many columns of a terminal, where the widest
 * cells are cut with a mark; a width of 0 cuts nothing.
 */
QStringList lines(const Columns &columns, const QJsonArray &rows, int width);

/** A value as people read it, fit for a terminal. */
QString text(const QJsonValue &value);

} // namespace Table
