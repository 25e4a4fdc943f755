// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/output.h"

#include <QJsonDocument>
#include <QTextStream>
#include <QVector>

#include <cstdio>

namespace {

QString text(const QJsonValue &value)
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
    return Output::printable(value.toVariant().toString());
}

void write(FILE *file, const QString &line)
{
    QTextStream stream(file);
    stream.setCodec("UTF-8");
    stream << line << '\n';
}

} // namespace

Output::Output(bool json)
    : mJson(json)
{
}

void Output::rows(const QList<QPair<QString, QString>> &columns, const QJsonArray &rows) const
{
    if (mJson)
        return write(
            stdout, QString::fromUtf8(QJsonDocument(rows).toJson(QJsonDocument::Indented)).trimmed());
    QVector<QStringList> lines { {} };
    for (const auto &column : columns)
        lines[0].append(column.second);
    for (const QJsonValue &row : rows) {
        QStringList line;
        for (const auto &column : columns)
            line.append(text(row.toObject().value(column.first)).simplified().left(60));
        lines.append(line);
    }
    QVector<int> widths(columns.size(), 0);
    for (const QStringList &line : qAsConst(lines)) {
        for (int i = 0; i < line.size(); ++i)
            widths[i] = qMax(widths.at(i), line.at(i).size());
    }
    for (const QStringList &line : qAsConst(lines)) {
        QString shown;
        for (int i = 0; i < line.size(); ++i)
            shown += i + 1 < line.size() ? line.at(i).leftJustified(widths.at(i) + 2) : line.at(i);
        write(stdout, shown);
    }
}

void Output::object(const QJsonObject &object) const
{
    if (mJson)
        return write(
            stdout, QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented)).trimmed());
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        write(stdout, (entry.key() + QLatin1Char(':')).leftJustified(18) + text(entry.value()));
}

void Output::message(const QString &text) const
{
    if (!mJson)
        write(stdout, printable(text));
}

void Output::error(const QString &text)
{
    write(stderr, QStringLiteral("fennel-easctl: ") + printable(text));
}

QString Output::printable(const QString &text)
{
    QString shown;
    for (const QChar character : text) {
        if (character == QLatin1Char('\n') || character == QLatin1Char('\t'))
            shown += character;
        else if (character.category() == QChar::Other_Control || character.category() == QChar::Other_Format)
            shown += QChar(QChar::ReplacementCharacter);
        else
            shown += character;
    }
    return shown;
}
