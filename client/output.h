// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/table.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/**
 * What a command prints: tables and sentences for people, or one JSON document for programs, which finish()
 * writes. Texts that came from a server are made fit for a terminal; JSON keeps them as they are. Owned by
 * the command line, for one command.
 */
class Output
{
public:
    Output();
    Q_DISABLE_COPY(Output)

    void setJson(bool json) { mIsJson = json; }
    bool isJson() const { return mIsJson; }

    /** One row an object; the columns are what people see, in order. JSON: an array of all objects. */
    void rows(const Columns &columns, const QJsonArray &rows);
    /** People see a line for each of the columns that has a value. JSON: the object. */
    void object(const Columns &columns, const QJsonObject &object);
    /** What was done, as a sentence. JSON: the facts, with the sentence as "message". */
    void done(const QString &sentence, const QJsonObject &facts = {});
    /** A document of another format. JSON: it as a text, or in Base64 if it is none, with its content type.
     */
    void document(const QByteArray &document, const char *contentType);
    /** Adds to the object that finish() writes. */
    void addFacts(const QJsonObject &facts);

    /** A line for people; nothing with JSON. */
    void message(const QString &text);

    /** A sentence on standard error; with JSON it stands in the document as well. */
    static void error(const QString &text);
    /** A sentence on standard error that is worth knowing and is no error. */
    static void note(const QString &text);

    /**
     * Writes the JSON document, with "error" and "exitStatus" if the command failed, and looks whether all
     * that was printed has arrived. The exit status to end with.
     */
    int finish(int exitStatus);

    /** The columns of the terminal on standard output; 0 if it is none. */
    static int terminalWidth();
    /** The text without what could move a cursor or hide another text. */
    static QString printable(const QString &text);

private:
    static QStringList &errors();
    void write(const QByteArray &bytes);

    bool mIsJson = false;
    bool mHasFailed = false;
    QJsonValue mDocument = QJsonValue::Undefined;
};
