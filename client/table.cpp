// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/table.h"

#include "client/output.h"
#include "client/textwidth.h"
#include "client/timetext.h"

#include <QJsonObject>
#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

constexpr int Gap = 2;
/** A column is not made narrower than this. */
constexpr int NarrowestColumn = 8;

/** Takes from the widest column, one by one, until the line fits. */
void fit(QVector<int> &widths, int width)
{
    int surplus = std::accumulate(widths.cbegin(), widths.cend(), Gap * (widths.size() - 1)) - width;
    while (surplus > 0) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= NarrowestColumn)
            return;
        --*widest;
        --surplus;
    }
}

} // namespace

QString Table::text(const QJsonValue &value)
{
    if (value.isBool())
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    if (value.isArray()) {
        QStringList parts;
        const QJsonArray array = value.toArray();
        for (const QJsonValue &part : array)
            parts.append(text(part));
        return parts.join(QStringLiteral(", "));
    }
    return Output::printable(TimeText::readable(value.toVariant().toString()));
}

QStringList Table::lines(const Columns &columns, const QJsonArray &rows, int width)
{
    QVector<QStringList> cells { {} };
    for (const Column &column : columns)
        cells[0].append(QLatin1String(column.heading));
    for (const QJsonValue &row : rows) {
        QStringList line;
        for (const Column &column : columns)
            line.append(text(row.toObject().value(QLatin1String(column.key))).simplified());
        cells.append(line);
    }
    QVector<int> widths(columns.size(), 0);
    for (const QStringList &line : qAsConst(cells)) {
        for (int i = 0; i < line.size(); ++i)
            widths[i] = qMax(widths.at(i), TextWidth::of(line.at(i)));
    }
    if (width > 0)
        fit(widths, width);
    QStringList lines;
    for (const QStringList &line : qAsConst(cells)) {
        QString shown;
        for (int i = 0; i < line.size(); ++i) {
            const QString cell = TextWidth::cut(line.at(i), widths.at(i));
            shown += i + 1 < line.size() ? TextWidth::padded(cell, widths.at(i) + Gap) : cell;
        }
        lines.append(shown);
    }
    return lines;
}
