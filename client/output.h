// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/**
 * What a command prints: tables for people, JSON for programs. Texts that came from a server are made fit for
 * a terminal; JSON keeps them as they are. A value that commands pass on.
 */
class Output
{
public:
    explicit Output(bool json);

    bool isJson() const { return mJson; }

    /** One row an object; columns gives key and heading of what people see, in order. */
    void rows(const QList<QPair<QString, QString>> &columns, const QJsonArray &rows) const;
    /** One object: a line a key for people. */
    void object(const QJsonObject &object) const;
    /** A sentence on standard output; nothing with JSON. */
    void message(const QString &text) const;
    /** A sentence on standard error, in both forms. */
    static void error(const QString &text);

    /** The text without what could move a cursor or hide another text. */
    static QString printable(const QString &text);

private:
    bool mJson;
};
